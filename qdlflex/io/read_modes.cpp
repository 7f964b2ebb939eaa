#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "format/version.h"
#include "io/block_reader.h"
#include "record/lookups.h"
#include "record/units.h"

namespace qdlflex {
namespace {

/// A file of version 1.0 holds the eigenvalue alone.
void derive_from_eigenvalue(EigenEntry &entry) {
  entry.circular_frequency = signed_sqrt(entry.eigenvalue);
  entry.frequency = entry.circular_frequency / kTwoPi;
  entry.generalized_mass = 1.0;
  entry.generalized_stiffness = entry.eigenvalue;
}

/// Single precision rounds the mark of an infinite eigenvalue, which must stay recognisable.
double restore_mark(double eigenvalue) {
  return eigenvalue == static_cast<double>(static_cast<float>(kInfiniteEigenvalue))
             ? kInfiniteEigenvalue
             : eigenvalue;
}

std::vector<std::int32_t> counted_from_one(std::int32_t count) {
  std::vector<std::int32_t> numbers(static_cast<std::size_t>(std::max(count, 0)));
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

bool has_repeats(std::vector<std::int32_t> ids) {
  std::ranges::sort(ids);
  return std::ranges::adjacent_find(ids) != ids.end();
}

}  // namespace

bool BlockReader::eigenvalues() {
  return read(Block::kEigenvalues, "Out of memory while reading Eigenvalues block",
              &BlockReader::read_eigenvalues);
}

Reading BlockReader::read_eigenvalues() {
  const Encoding &encoding = source_.encoding();
  const std::int32_t real = encoding.real_bytes();
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.fits(count, 4 + 5 * real))
    return Reading::kProblem;
  record_.eigenvalues.reserve(static_cast<std::size_t>(count));
  const bool read = source_.records(count, 4 + 5 * real, [&](const unsigned char *bytes) {
    double values[5];
    decode_reals(values, bytes + 4, 5, encoding);
    EigenEntry &entry = record_.eigenvalues.emplace_back();
    entry = {decode_i32(bytes, encoding),
             restore_mark(values[0]),
             values[1],
             values[2],
             values[3],
             values[4]};
    if (version_number(record_.file_version_code) == 10)
      derive_from_eigenvalue(entry);
    return true;
  });
  return read ? Reading::kDone : Reading::kProblem;
}

/// The common head of blocks 8, 18 and 29. The end of the mode data is compared with the end of the
/// file here: a model whose last modes can't be fetched is not opened.
bool BlockReader::read_mode_head(ModeHead &head, std::vector<std::int32_t> &ids) {
  if (!source_.i32(head.modes) || !source_.i32(head.nodes))
    return false;
  if (head.modes < 0 || !source_.fits(head.nodes, 4))
    return false;
  ids.resize(static_cast<std::size_t>(head.nodes));
  if (!source_.i32s(ids.data(), ids.size()))
    return false;
  head.values_start = source_.tell();
  const std::int64_t number = has_mode_numbers(record_.file_version_code) ? 4 : 0;
  head.mode_bytes =
      number + std::int64_t{kComponents} * head.nodes * source_.encoding().real_bytes();
  return head_fits(head);
}

bool BlockReader::head_fits(const ModeHead &head) const {
  // Modes without values would take no bytes, so that nothing would bound their number.
  if (head.nodes == 0 && head.modes > 0)
    return false;
  return source_.fits(head.modes, head.mode_bytes);
}

/// Records where each mode's values start and the mode numbers that stand before them.
bool BlockReader::locate_modes(std::int32_t kind, const ModeHead &head,
                               std::vector<std::int32_t> &numbers) {
  Backing &backing = record_.mode_data[static_cast<std::size_t>(kind)].backing;
  const bool numbered = has_mode_numbers(record_.file_version_code);
  backing.channel = record_.source;
  backing.stride = head.nodes;
  backing.starts.reserve(static_cast<std::size_t>(head.modes));
  for (std::int32_t mode = 0; mode < head.modes; ++mode) {
    const std::int64_t start = head.values_start + mode * head.mode_bytes;
    unsigned char number[4];
    if (numbered) {
      if (!record_.source.file->read_at(start, number, sizeof number))
        return false;
      numbers.push_back(decode_i32(number, source_.encoding()));
    }
    backing.starts.push_back(start + (numbered ? 4 : 0));
  }
  return true;
}

bool BlockReader::mode_shapes() {
  return read(Block::kModeShapes, "Out of memory while reading Mode Shape block",
              &BlockReader::read_mode_shapes);
}

Reading BlockReader::read_mode_shapes() {
  ModeHead head;
  if (!source_.i32(head.modes))
    return Reading::kProblem;
  const auto eigenvalues = static_cast<std::int32_t>(record_.eigenvalues.size());
  if (in_file(record_, Block::kEigenvalues) && head.modes != eigenvalues) {
    QDL_Error("Number of mode shapes does not match the number of eigenvalues");
    return Reading::kReported;
  }
  std::vector<std::int32_t> ids;
  if (!source_.seek(source_.tell() - 4) || !read_mode_head(head, ids))
    return Reading::kProblem;
  if (!order_nodes(ids))
    return Reading::kProblem;
  record_.mode_node_limit = head.nodes;

  std::vector<std::int32_t> numbers;
  if (!locate_modes(kModeShapes, head, numbers))
    return Reading::kProblem;
  const std::uint32_t version = version_number(record_.file_version_code);
  const bool numbers_count = version != 10 && version != 20;
  record_.mode_numbers = numbers_count ? std::move(numbers) : counted_from_one(head.modes);
  if (!numbers_count && eigenvalues > 0) {
    std::ranges::transform(record_.eigenvalues, record_.mode_numbers.begin(),
                           &EigenEntry::mode_number);
  }
  return Reading::kDone;
}

/// Brings the nodes into the order of the mode shapes' nodes: each position swaps with the holder
/// of the identifier wanted there. Nodes that the mode shapes don't have come last.
bool BlockReader::order_nodes(const std::vector<std::int32_t> &ids) {
  if (has_repeats(ids))
    return false;
  std::vector<Node> &nodes = record_.nodes;
  if (!in_file(record_, Block::kNodalCoordinates)) {
    for (const std::int32_t id : ids)
      nodes.emplace_back().id = id;
  }
  if (ids.size() > nodes.size())
    return false;
  std::unordered_map<std::int32_t, std::size_t> place;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (nodes[i].id == ids[i])
      continue;
    if (place.empty()) {
      place.reserve(nodes.size());
      for (std::size_t n = 0; n < nodes.size(); ++n)
        place.try_emplace(nodes[n].id, n);
    }
    const auto wanted = place.find(ids[i]);
    if (wanted == place.end() || wanted->second < i)
      return false;
    const std::size_t holder = std::exchange(wanted->second, i);
    std::swap(nodes[i], nodes[holder]);
    place[nodes[holder].id] = holder;
  }
  return true;
}

/// The mode list of a file without mode shapes: loads and preloads still belong to its modes.
bool BlockReader::mode_list() {
  if (in_file(record_, Block::kModeShapes))
    return true;
  const bool had_memory = with_memory([&] {
    if (!in_file(record_, Block::kEigenvalues)) {
      // A count that the file has no room for is reported where its block is read.
      const bool plausible = record_.file_mode_count <= record_.source.file->size() / 4;
      record_.mode_numbers = counted_from_one(plausible ? record_.file_mode_count : 0);
      return;
    }
    for (const EigenEntry &entry : record_.eigenvalues) {
      record_.mode_numbers.push_back(entry.mode_number);
    }
  });
  if (!had_memory)
    QDL_Error("Out of memory while reading Eigenvalues block");
  return had_memory;
}

bool BlockReader::modal_stress() {
  return read(Block::kModalStress, "Out of memory while reading Modal Stress Block",
              &BlockReader::read_modal_stress);
}

bool BlockReader::modal_strain() {
  return read(Block::kModalStrain, "Out of memory while reading Modal Strain Block",
              &BlockReader::read_modal_strain);
}

Reading BlockReader::read_modal_stress() {
  return read_stress_like(kModalStress);
}

Reading BlockReader::read_modal_strain() {
  return read_stress_like(kModalStrain);
}

Reading BlockReader::read_stress_like(std::int32_t kind) {
  const bool stress = kind == kModalStress;
  const bool have_modes =
      in_file(record_, Block::kEigenvalues) || in_file(record_, Block::kModeShapes);
  ModeHead head;
  if (!source_.i32(head.modes))
    return Reading::kProblem;
  if (head.modes != (have_modes ? mode_count(record_) : 0)) {
    QDL_Error("%s", stress ? "Number of stress modes does not match the number of eigenvalues"
                           : "Number of strain modes does not match the number of eigenvalues");
    return Reading::kReported;
  }
  if (!in_file(record_, Block::kModeShapes)) {
    QDL_Warning("%s", stress ? "Stress modes are being processed before mode shapes"
                             : "Strain modes are being processed before mode shapes");
  }
  std::vector<std::int32_t> ids;
  std::vector<std::int32_t> numbers;
  if (!source_.seek(source_.tell() - 4) || !read_mode_head(head, ids) || !set_node_set(kind, ids) ||
      !locate_modes(kind, head, numbers)) {
    return Reading::kProblem;
  }
  const std::uint32_t version = version_number(record_.file_version_code);
  if (version != 10 && version != 20 && numbers != record_.mode_numbers) {
    QDL_Error("%s", stress ? "Stress modes are in a different order than mode shapes"
                           : "Strain modes are in a different order than mode shapes");
    return Reading::kReported;
  }
  return Reading::kDone;
}

/// False for an identifier that comes twice.
bool BlockReader::set_node_set(std::int32_t kind, const std::vector<std::int32_t> &ids) {
  if (has_repeats(ids))
    return false;
  NodeSet &set = record_.mode_data[static_cast<std::size_t>(kind)].nodes;
  set.foreign_ids = ids;
  set.node_of_slot.reserve(ids.size());
  set.slot_of_node.assign(record_.nodes.size(), kNoIndex);
  for (const std::int32_t id : ids) {
    const std::int32_t node = find_node(record_, id);
    if (node != kNoIndex) {
      set.slot_of_node[static_cast<std::size_t>(node)] =
          static_cast<std::int32_t>(set.node_of_slot.size());
    }
    set.node_of_slot.push_back(node);
  }
  return true;
}

bool BlockReader::modal_statistics() {
  return read(Block::kModalStatistics, "Out of memory while reading Modal Statistics Block",
              &BlockReader::read_modal_statistics);
}

Reading BlockReader::read_modal_statistics() {
  StatisticsTable &table = record_.statistics;
  std::int32_t count = 0;
  constexpr auto kSlots = static_cast<std::int64_t>(kStatisticSlots);
  const std::int64_t mode_bytes = kSlots * (4 + source_.encoding().real_bytes());
  if (!source_.i32(count) || !source_.fits(count, mode_bytes))
    return Reading::kProblem;
  table.modes.resize(static_cast<std::size_t>(count));
  table.present = true;
  // The getters report a count that disagrees; the rest of the model is sound.
  table.inconsistent = count != mode_count(record_);
  const bool read = source_.records(
      count, mode_bytes, [&, mode = std::size_t{0}](const unsigned char *bytes) mutable {
        ModalStatistics &statistics = table.modes[mode++];
        decode_i32s(statistics.node_ids.data(), bytes, kStatisticSlots, source_.encoding());
        decode_reals(statistics.values.data(), bytes + 4 * kStatisticSlots, kStatisticSlots,
                     source_.encoding());
        return true;
      });
  return read ? Reading::kDone : Reading::kProblem;
}

bool BlockReader::pre_stress() {
  return read(Block::kPreStress, "Out of memory while processing Pre-Stress Block",
              &BlockReader::read_pre_stress);
}

bool BlockReader::pre_strain() {
  return read(Block::kPreStrain, "Out of memory while processing Pre-Strain Block",
              &BlockReader::read_pre_strain);
}

Reading BlockReader::read_pre_stress() {
  return read_pre_vectors(kModalStress, record_.pre_stress);
}

Reading BlockReader::read_pre_strain() {
  return read_pre_vectors(kModalStrain, record_.pre_strain);
}

Reading BlockReader::read_pre_vectors(std::int32_t kind, std::vector<Vector6> &vectors) {
  const bool stress = kind == kModalStress;
  std::int32_t count = 0;
  if (!source_.i32(count)) {
    QDL_Error("%s", stress ? "Problem occurred while reading Pre-Stress info"
                           : "Problem occurred while reading Pre-Strain info");
    return Reading::kReported;
  }
  if (count != mode_node_count(record_, kind)) {
    QDL_Error("%s", stress ? "Number of nodes in pre-stress does not match that in stress modes"
                           : "Number of nodes in pre-strain does not match that in strain modes");
    return Reading::kReported;
  }
  if (!source_.fits(count, kComponents * source_.encoding().real_bytes()))
    return Reading::kProblem;
  vectors.resize(static_cast<std::size_t>(count));
  for (Vector6 &vector : vectors) {
    if (!source_.reals(vector.data(), vector.size()))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

}  // namespace qdlflex
