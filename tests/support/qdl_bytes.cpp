#include "support/qdl_bytes.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace qdltest {

namespace {

constexpr int kLastBlock = 37;
constexpr std::size_t kSummaryBytes = 100;

std::int32_t version_number(std::int32_t version_code) {
  return version_code & 0xff;
}

}  // namespace

Encoding encoding_of(std::int32_t version_code) {
  const std::int32_t number = version_number(version_code);
  const bool xdr = number < 60 ? number % 10 == 1 : (version_code & kXdrBit) != 0;
  return xdr ? Encoding::kXdr : Encoding::kNative;
}

Precision precision_of(std::int32_t version_code) {
  const std::int32_t number = version_number(version_code);
  const bool single = number < 60 ? number >= 50 : (version_code & kSingleBit) != 0;
  return single ? Precision::kSingle : Precision::kDouble;
}

void QdlBytes::put_word(std::uint64_t word, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t place = encoding_ == Encoding::kXdr ? width - 1 - i : i;
    bytes_.push_back(static_cast<std::uint8_t>(word >> (8 * place)));
  }
}

void QdlBytes::put_i32(std::int32_t value) {
  put_word(static_cast<std::uint32_t>(value), 4);
}

void QdlBytes::put_count(const std::string &name, std::size_t value) {
  counts_.push_back({name, bytes_.size()});
  put_i32(static_cast<std::int32_t>(value));
}

void QdlBytes::put_real(double value) {
  reals_.push_back(bytes_.size());
  if (precision_ == Precision::kSingle)
    put_word(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4);
  else
    put_word(std::bit_cast<std::uint64_t>(value), 8);
}

void QdlBytes::put_reals(const std::vector<double> &values) {
  for (const double value : values)
    put_real(value);
}

void QdlBytes::put_byte(std::int32_t value) {
  if (encoding_ == Encoding::kXdr)
    put_i32(static_cast<std::int8_t>(value));  // widened with its sign
  else
    bytes_.push_back(static_cast<std::uint8_t>(value));
}

void QdlBytes::put_chars(std::string_view text, std::size_t width) {
  if (text.size() > width)
    throw std::invalid_argument("text is wider than its field");
  for (std::size_t i = 0; i < width; ++i)
    put_byte(i < text.size() ? text[i] : 0);
}

int summary_byte(int block_id) {
  if (block_id < 4)
    return -1;
  if (block_id <= 10)
    return block_id - 4;
  if (block_id <= 13)
    return block_id - 3;
  return block_id - 2;
}

std::set<int> usual_blocks(std::int32_t version_code) {
  const std::int32_t number = version_number(version_code);
  const int last = number < 40 ? 18 : kLastBlock;
  std::set<int> blocks;
  for (int id = 4; id <= last; ++id)
    blocks.insert(id);
  blocks.erase(33);
  blocks.erase(number == 10 || number == 20 ? 14 : 5);
  return blocks;
}

namespace {

void put_version(QdlBytes &out, std::int32_t version_code) {
  out.put_i32(version_code);
}

void put_header(QdlBytes &out, const Header &header) {
  out.put_chars(header.title, 128);
  out.put_chars(header.date, 32);
  out.put_chars(header.input_name, 128);
  out.put_chars(header.input_type, 16);
  for (const std::string &comment : header.comments)
    out.put_chars(comment, 80);
}

void put_summary(QdlBytes &out, const std::set<int> &blocks) {
  std::array<int, kSummaryBytes> summary{};
  for (const int id : blocks)
    if (id >= 4)
      summary.at(static_cast<std::size_t>(summary_byte(id))) = 1;
  for (const int byte : summary)
    out.put_byte(byte);
}

void put_nodes(QdlBytes &out, const SampleModel &model) {
  out.put_count("4.N", model.nodes.size());
  out.put_count("4.d", static_cast<std::size_t>(model.coordinates_per_node));
  for (const Node &node : model.nodes) {
    out.put_i32(node.id);
    for (const double coordinate : node.xyz)
      out.put_real(coordinate);
  }
}

void put_element_groups(QdlBytes &out, const SampleModel &model) {
  out.put_i32(model.topology_lead);
  out.put_count("5.G", model.element_groups.size());
  for (const ElementGroup &group : model.element_groups) {
    out.put_i32(group.kind);
    out.put_count("5.e", group.elements.size());
    out.put_count("5.k", group.nodes_per_element);
    for (const auto &element : group.elements)
      for (const std::int32_t number : element)
        out.put_i32(number);
  }
}

void put_eigenvalues(QdlBytes &out, const SampleModel &model) {
  out.put_count("7.M", model.eigenvalues.size());
  for (const Eigenvalue &entry : model.eigenvalues) {
    out.put_i32(entry.mode);
    out.put_reals(
        {entry.eigenvalue, entry.frequency, entry.circular_frequency, entry.mass, entry.stiffness});
  }
}

void put_modes(QdlBytes &out, const std::string &id, const ModeTable &table, bool numbered) {
  out.put_count(id + ".M", table.values.size());
  out.put_count(id + ".N", table.node_ids.size());
  for (const std::int32_t node_id : table.node_ids)
    out.put_i32(node_id);
  for (std::size_t mode = 0; mode < table.values.size(); ++mode) {
    if (numbered)
      out.put_i32(table.numbers.at(mode));
    out.put_reals(table.values[mode]);
  }
}

void put_nodal_masses(QdlBytes &out, const SampleModel &model) {
  out.put_count("9.N", model.nodal_masses.size());
  out.put_count("9.k", model.nodal_masses.empty() ? 1 : model.nodal_masses[0].values.size());
  for (const NodalMass &mass : model.nodal_masses) {
    out.put_i32(mass.node_id);
    out.put_reals(mass.values);
  }
}

void put_nodal_inertias(QdlBytes &out, const SampleModel &model) {
  out.put_count("10.E", model.nodal_inertias.size());
  for (const NodalInertia &entry : model.nodal_inertias) {
    out.put_i32(entry.node_id);
    out.put_byte(entry.row);
    out.put_byte(entry.column);
    out.put_real(entry.value);
  }
}

void put_entry_list(QdlBytes &out, const std::string &id, const EntryList &list) {
  out.put_count(id + ".E", list.entries.size());
  out.put_i32(list.second);
  for (const MatrixEntry &entry : list.entries) {
    out.put_i32(entry.row);
    out.put_i32(entry.column);
    out.put_real(entry.value);
    out.put_i32(entry.tail);
  }
}

void put_faces(QdlBytes &out, const SampleModel &model) {
  out.put_count("14.T", 4 + 4 * model.faces.size());
  std::size_t left_of_face = 0;
  for (const std::int32_t entry : model.faces) {
    if (left_of_face == 0) {
      left_of_face = static_cast<std::size_t>(entry);
      out.put_count("14.k", left_of_face);
    } else {
      out.put_i32(entry);
      --left_of_face;
    }
  }
}

void put_transformation(QdlBytes &out, const SampleModel &model) {
  out.put_count("16.M", model.transformation.size());
  for (const TransformationRow &row : model.transformation) {
    out.put_i32(row.lead);
    out.put_reals(row.values);
  }
}

void put_interface_nodes(QdlBytes &out, const SampleModel &model) {
  out.put_count("17.K", model.interface_nodes.size());
  for (const std::int32_t node_id : model.interface_nodes)
    out.put_i32(node_id);
}

void put_invariant(QdlBytes &out, int block_id, const SampleModel &model) {
  const int number = block_id < 24 ? block_id - 18 : block_id - 17;
  const bool per_mode = number != 1 && number != 2 && number != 7;
  if (per_mode)
    out.put_count(std::to_string(block_id) + ".M", model.mode_count);
  out.put_reals(model.invariants.at(static_cast<std::size_t>(number)));
}

void put_preload(QdlBytes &out, const SampleModel &model) {
  out.put_count("27.M", model.preload.size());
  out.put_i32(model.preload_processed);
  out.put_reals(model.preload);
}

void put_load_cases(QdlBytes &out, const SampleModel &model) {
  out.put_count("28.M", model.mode_count);
  out.put_count("28.L", model.load_cases.size());
  for (const LoadCase &load_case : model.load_cases) {
    out.put_chars(load_case.label, 256);
    out.put_i32(load_case.processed);
    out.put_reals(load_case.values);
  }
}

void put_statistics(QdlBytes &out, const SampleModel &model) {
  out.put_count("30.M", model.statistics.size());
  for (const ModeStatistics &mode : model.statistics) {
    for (const std::int32_t node_id : mode.node_ids)
      out.put_i32(node_id);
    for (const double value : mode.values)
      out.put_real(value);
  }
}

void put_prestress(QdlBytes &out, const std::string &id, const std::vector<double> &values) {
  out.put_count(id + ".N", values.size() / 6);
  out.put_reals(values);
}

void put_monitor_points(QdlBytes &out, const std::string &id, const SampleModel &model) {
  out.put_count(id + ".count", model.monitor_points.size());
  for (const MonitorPoint &point : model.monitor_points) {
    out.put_i32(point.type);
    out.put_i32(point.result_type);
    out.put_i32(point.component);
    out.put_chars(point.name, 8);
    out.put_chars(point.label, 56);
    out.put_count(id + ".a", point.rows);
    out.put_count(id + ".b", point.row_blocks);
    out.put_i32(point.mask);
    out.put_reals(point.values);
  }
}

void put_matrix_operators(QdlBytes &out, const SampleModel &model) {
  out.put_count("34.count", model.matrix_operators.size());
  for (const MatrixOperator &matrix : model.matrix_operators) {
    out.put_count("34.r", matrix.row_labels.size());
    out.put_chars(matrix.name, 8);
    for (const std::string &label : matrix.row_labels)
      out.put_chars(label, 80);
    out.put_count("34.subs", matrix.subs.size());
    for (const SubOperator &sub : matrix.subs) {
      out.put_count("34.c", sub.columns);
      out.put_chars(sub.tag, 8);
      out.put_reals(sub.data);
    }
  }
}

void put_nodal_loads(QdlBytes &out, const SampleModel &model) {
  out.put_count("35.count", model.nodal_load_cases.size());
  for (const auto &load_case : model.nodal_load_cases) {
    out.put_count("35.n", load_case.size());
    for (const NodalLoad &load : load_case) {
      out.put_i32(load.node_id);
      out.put_i32(load.component);
      out.put_real(load.value);
    }
  }
}

void put_rotor(QdlBytes &out, const SampleModel &model) {
  out.put_count("37.count", model.rotor_matrices.size());
  for (const double coordinate : model.rotor_axis)
    out.put_real(coordinate);
  for (const RotorMatrix &matrix : model.rotor_matrices) {
    out.put_i32(matrix.lead);
    out.put_reals(matrix.values);
  }
}

}  // namespace

void append_block(QdlBytes &out, int block_id, const SampleModel &model, std::int32_t version_code,
                  const std::set<int> &blocks) {
  const std::string id = std::to_string(block_id);
  const bool numbered = version_number(version_code) != 10;
  switch (block_id) {
    case 1:
      return put_version(out, version_code);
    case 2:
      return put_header(out, model.header);
    case 3:
      return put_summary(out, blocks);
    case 4:
      return put_nodes(out, model);
    case 5:
      return put_element_groups(out, model);
    case 6:
      return out.put_reals(model.global_mass);
    case 7:
      return put_eigenvalues(out, model);
    case 8:
      return put_modes(out, id, model.mode_shapes, numbered);
    case 9:
      return put_nodal_masses(out, model);
    case 10:
      return put_nodal_inertias(out, model);
    case 11:
      for (const std::string &unit : model.units)
        out.put_chars(unit, 16);
      return;
    case 12:
      return put_entry_list(out, id, model.stiffness);
    case 13:
      return put_entry_list(out, id, model.mass);
    case 14:
      return put_faces(out, model);
    case 15:
      return put_entry_list(out, id, model.damping);
    case 16:
      return put_transformation(out, model);
    case 17:
      return put_interface_nodes(out, model);
    case 18:
      return put_modes(out, id, model.stress, numbered);
    case 27:
      return put_preload(out, model);
    case 28:
      return put_load_cases(out, model);
    case 29:
      return put_modes(out, id, model.strain, numbered);
    case 30:
      return put_statistics(out, model);
    case 31:
      return put_prestress(out, id, model.pre_stress);
    case 32:
      return put_prestress(out, id, model.pre_strain);
    case 33:
    case 36:
      return put_monitor_points(out, id, model);
    case 34:
      return put_matrix_operators(out, model);
    case 35:
      return put_nodal_loads(out, model);
    case 37:
      return put_rotor(out, model);
    default:
      if (block_id < 19 || block_id > 26)
        throw std::invalid_argument("no such block");
      return put_invariant(out, block_id, model);
  }
}

SampleFile build_file(std::int32_t version_code, const std::set<int> &blocks,
                      const SampleModel &model) {
  SampleFile file{};
  file.version_code = version_code;
  file.encoding = encoding_of(version_code);
  file.precision = precision_of(version_code);
  file.blocks = blocks;
  QdlBytes out(file.encoding, file.precision);
  for (int id = 1; id <= kLastBlock; ++id) {
    file.offset.at(static_cast<std::size_t>(id)) = out.size();
    if (id <= 3 || blocks.contains(id))
      append_block(out, id, model, version_code, blocks);
  }
  file.offset.back() = out.size();
  file.bytes = out.bytes();
  file.counts = out.counts();
  file.reals = out.reals();
  return file;
}

SampleFile build_file(std::int32_t version_code) {
  return build_file(version_code, usual_blocks(version_code));
}

std::size_t SampleFile::count_offset(std::string_view name) const {
  const auto found =
      std::find_if(counts.begin(), counts.end(), [&](const auto &c) { return c.name == name; });
  if (found == counts.end())
    throw std::invalid_argument("the file has no count " + std::string(name));
  return found->offset;
}

void SampleFile::patch_i32(std::size_t at, std::int32_t value) {
  QdlBytes word(encoding, precision);
  word.put_i32(value);
  std::copy(word.bytes().begin(), word.bytes().end(),
            bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

void SampleFile::patch_count(std::string_view name, std::int32_t value) {
  patch_i32(count_offset(name), value);
}

namespace {

std::uint64_t word_at(const SampleFile &file, std::size_t at, std::size_t width) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t place = file.encoding == Encoding::kXdr ? width - 1 - i : i;
    word |= static_cast<std::uint64_t>(file.bytes.at(at + i)) << (8 * place);
  }
  return word;
}

}  // namespace

std::int32_t SampleFile::i32_at(std::size_t at) const {
  return static_cast<std::int32_t>(word_at(*this, at, 4));
}

double SampleFile::real_at(std::size_t at) const {
  if (precision == Precision::kSingle)
    return std::bit_cast<float>(static_cast<std::uint32_t>(word_at(*this, at, 4)));
  return std::bit_cast<double>(word_at(*this, at, 8));
}

std::vector<std::size_t> telling_places(const SampleFile &file) {
  constexpr std::size_t kLongRun = 16;
  constexpr std::size_t kOneIn = 23;
  std::vector<std::size_t> places;
  std::size_t zeros_before = 0;
  for (std::size_t at = 0; at < file.bytes.size(); ++at) {
    zeros_before = file.bytes[at] == 0 ? zeros_before + 1 : 0;
    const bool in_summary = at >= file.offset[3] && at < file.offset[4];
    if (zeros_before < kLongRun || in_summary || at % kOneIn == 0)
      places.push_back(at);
  }
  return places;
}

const std::vector<std::int32_t> &every_version_code() {
  static const std::vector<std::int32_t> codes = {
      10, 20, 30, 31, 40, 41, 50, 51, 60, 60 | kXdrBit, 60 | kSingleBit, 60 | kXdrBit | kSingleBit};
  return codes;
}

std::string version_name(std::int32_t version_code) {
  std::string name = std::to_string(version_number(version_code));
  name += encoding_of(version_code) == Encoding::kXdr ? "_xdr" : "_native";
  name += precision_of(version_code) == Precision::kSingle ? "_single" : "_double";
  if ((version_code & kCoarsenedBit) != 0)
    name += "_coarsened";
  return name;
}

}  // namespace qdltest
