#include "modes/temporary_backing.h"

#include <algorithm>
#include <vector>

#include "modes/mode_store.h"
#include "record/lookups.h"
#include "record/open_models.h"
#include "support/environment.h"
#include "support/messages.h"

namespace qdlflex {
namespace {

constexpr const char *kDirectoryVariable = "TMP";

const char *name_variable(std::int32_t kind) {
  switch (kind) {
    case kModeShapes:
      return "ZEB_TMP_MOD";
    case kModalStress:
      return "ZEB_TMP_STR";
    default:
      return "ZEB_TMP_STN";
  }
}

/// Opening a file that another kind or another model uses would destroy live data, so such a name
/// is passed over.
std::string requested_name(std::int32_t kind) {
  std::string name = environment_text(name_variable(kind));
  return !name.empty() && in_use_by_open_model(identity_of(name)) ? std::string() : name;
}

void report_unable_to_open(std::int32_t kind, const std::string &name) {
  const char *file = name.c_str();
  switch (kind) {
    case kModeShapes:
      QDL_Error(
          "Unable to open temporary mode shape file %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_MOD.",
          file, kDirectoryVariable);
      break;
    case kModalStress:
      QDL_Error(
          "Unable to open temporary modal stress file %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_STR.",
          file, kDirectoryVariable);
      break;
    default:
      QDL_Error(
          "Unable to open temporary modal strain file %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_STN.",
          file, kDirectoryVariable);
      break;
  }
}

void announce(std::int32_t kind, const std::string &name) {
  switch (kind) {
    case kModeShapes:
      QDL_Info("Temp modeshape file: %s", name.c_str());
      break;
    case kModalStress:
      QDL_Info("Temp modal stress file: %s", name.c_str());
      break;
    default:
      QDL_Info("Temp modal strain file: %s", name.c_str());
      break;
  }
}

/// -1 when the product does not fit 64 bits.
std::int64_t mode_bytes(std::int64_t nodes, std::int32_t real_bytes) {
  std::int64_t bytes = 0;
  const bool overflow = __builtin_mul_overflow(nodes, kComponents * real_bytes, &bytes);
  return overflow ? -1 : bytes;
}

/// Takes the space for `modes` modes of `nodes` nodes.
bool reserve_layout(Backing &backing, std::int64_t modes, std::int64_t nodes) {
  // Room for one node at least: a number of modes that no disk has room for shows at once.
  const std::int64_t one =
      mode_bytes(std::max<std::int64_t>(nodes, 1), encoding_of(backing.channel).real_bytes());
  std::int64_t all = 0;
  if (one < 0 || __builtin_mul_overflow(one, modes, &all))
    return false;
  return backing.channel.file->reserve(all);
}

void set_layout(Backing &backing, std::int64_t modes, std::int64_t nodes) {
  const std::int64_t one = mode_bytes(nodes, encoding_of(backing.channel).real_bytes());
  backing.stride = static_cast<std::int32_t>(nodes);
  backing.starts.resize(static_cast<std::size_t>(modes));
  for (std::int64_t mode = 0; mode < modes; ++mode) {
    backing.starts[static_cast<std::size_t>(mode)] = mode * one;
  }
  backing.mapping = backing.channel.file->map(modes * one);
}

/// Moves the modes apart for a larger stride, each with zeros behind its values. The last mode goes
/// first, so that none is written over before it has moved; the starts follow one by one, so that
/// every value stays where it is looked for if a write fails on the way.
bool spread_modes(Backing &backing, std::int64_t nodes) {
  File &file = *backing.channel.file;
  const std::int32_t real_bytes = encoding_of(backing.channel).real_bytes();
  const std::int64_t old_bytes = mode_bytes(backing.stride, real_bytes);
  const std::int64_t new_bytes = mode_bytes(nodes, real_bytes);
  std::vector<std::byte> mode(static_cast<std::size_t>(new_bytes));
  for (auto index = static_cast<std::int64_t>(backing.starts.size()) - 1; index >= 0; --index) {
    std::int64_t &start = backing.starts[static_cast<std::size_t>(index)];
    const std::int64_t target = index * new_bytes;
    if (!file.read_at(start, mode.data(), static_cast<std::size_t>(old_bytes)) ||
        !file.write_at(target, mode.data(), mode.size())) {
      return false;
    }
    start = target;
  }
  return true;
}

/// Gives every mode room for a node at this position, and for as many again as it has.
bool widen_modes(Backing &backing, std::int32_t position) {
  const std::int64_t nodes = std::min<std::int64_t>(
      std::max<std::int64_t>(position + std::int64_t{1}, std::int64_t{2} * backing.stride),
      INT32_MAX);
  const auto modes = static_cast<std::int64_t>(backing.starts.size());
  const bool reserved = reserve_layout(backing, modes, nodes);
  if (!reserved || !spread_modes(backing, nodes)) {
    // Modes that have moved may lie beyond what was mapped.
    if (reserved)
      backing.mapping = backing.channel.file->map(backing.channel.file->size());
    return false;
  }
  set_layout(backing, modes, nodes);
  return true;
}

/// Adds modes of zeros. The file may be longer than its modes and hold what others left there.
bool append_modes(Backing &backing, std::int64_t modes) {
  File &file = *backing.channel.file;
  const std::int64_t one = mode_bytes(backing.stride, encoding_of(backing.channel).real_bytes());
  const std::int64_t end = static_cast<std::int64_t>(backing.starts.size()) * one;
  const std::int64_t left_over = file.size() - end;
  if (!reserve_layout(backing, modes, backing.stride))
    return false;
  if (left_over > 0 && !file.zero_at(end, std::min(left_over, modes * one - end)))
    return false;
  set_layout(backing, modes, backing.stride);
  return true;
}

/// Copies the modes of a kind that lies in the record's source, values as stored.
bool copy_modes(QDL_Record &record, std::int32_t kind, const Backing &target) {
  const std::int64_t nodes = mode_data(record, kind).backing.stride;
  const Encoding encoding = encoding_of(target.channel);
  std::vector<double> six(static_cast<std::size_t>(nodes * kComponents));
  std::vector<unsigned char> bytes(six.size() * static_cast<std::size_t>(encoding.real_bytes()));
  const auto modes = static_cast<std::int32_t>(mode_data(record, kind).backing.starts.size());
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    if (!read_stored_rows(record, kind, mode, 0, nodes, six.data())) {
      report_unreadable_mode(kind, record.mode_numbers[static_cast<std::size_t>(mode)]);
      return false;
    }
    encode_reals(bytes.data(), six.data(), six.size(), encoding);
    const std::int64_t start = target.starts[static_cast<std::size_t>(mode)];
    if (!target.channel.file->write_at(start, bytes.data(), bytes.size())) {
      report_no_disk_space(kind, target.channel.file->name());
      return false;
    }
  }
  return true;
}

}  // namespace

void report_no_disk_space(std::int32_t kind, const std::string &name) {
  const char *file = name.c_str();
  switch (kind) {
    case kModeShapes:
      QDL_Error(
          "Insufficient disk space for temporary mode shape file  %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_MOD",
          file, kDirectoryVariable);
      break;
    case kModalStress:
      QDL_Error(
          "Insufficient disk space for temporary modal stress file %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_STR",
          file, kDirectoryVariable);
      break;
    default:
      QDL_Error(
          "Insufficient disk space for temporary modal strain file %s.\n"
          "To write elsewhere, specify directory name in environment variable %s,\n"
          "or specify path name (file name) in environment variable ZEB_TMP_STN",
          file, kDirectoryVariable);
      break;
  }
}

Backing create_temporary_backing(const QDL_Record &record, std::int32_t kind, std::int64_t modes,
                                 std::int64_t nodes) {
  Backing backing;
  backing.channel.double_precision = record.source.double_precision;
  backing.base = record.units.cumulative;
  std::string name = requested_name(kind);
  backing.channel.file = File::create_temporary(name);
  if (backing.channel.file == nullptr) {
    report_unable_to_open(kind, name);
    return {};
  }
  announce(kind, name);
  if (!lay_out(backing, modes, nodes)) {
    report_no_disk_space(kind, name);
    return {};
  }
  return backing;
}

bool ensure_temporary_backing(QDL_Record &record, std::int32_t kind) {
  Backing &present = mode_data(record, kind).backing;
  const bool backed = present.channel.file != nullptr;
  if (backed && present.channel.file->temporary())
    return true;
  const std::int32_t modes = std::max(record.planned_modes, mode_count(record));
  const std::int32_t nodes =
      std::max({record.planned_nodes, mode_node_count(record, kind), backed ? present.stride : 0});
  Backing made = create_temporary_backing(record, kind, modes, nodes);
  if (made.channel.file == nullptr)
    return false;
  if (backed) {
    made.base = present.base;
    if (!copy_modes(record, kind, made))
      return false;
  }
  present = std::move(made);
  return true;
}

bool lay_out(Backing &backing, std::int64_t modes, std::int64_t nodes) {
  if (!reserve_layout(backing, modes, nodes))
    return false;
  set_layout(backing, modes, nodes);
  return true;
}

bool ensure_room_for(QDL_Record &record, std::int32_t kind, std::int32_t mode_index,
                     std::int32_t position) {
  Backing &backing = mode_data(record, kind).backing;
  const bool has_mode = static_cast<std::size_t>(mode_index) < backing.starts.size();
  if (has_mode && position < backing.stride)
    return true;
  const bool made =
      (has_mode || append_modes(backing, std::max(record.planned_modes, mode_index + 1))) &&
      (position < backing.stride || widen_modes(backing, position));
  if (!made)
    report_no_disk_space(kind, backing.channel.file->name());
  return made;
}

}  // namespace qdlflex
