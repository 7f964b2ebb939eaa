#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <bit>

#include "io/block_reader.h"
#include "record/lookups.h"

// Generalized matrices, loads, monitor points and operators.

namespace qdlflex {
namespace {

constexpr std::int32_t kLoadBit = 8;

/// Files may hold any index; they are kept zero-based and users skip those outside their matrix.
std::int32_t zero_based(std::int32_t index) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(index) - 1u);
}

/// Displacement, velocity and acceleration have one row block each, the load operator the rest. A
/// mask that does not account for the blocks is replaced by one that takes them in that order.
void settle_operators(MonitorPoint &point, std::int32_t blocks) {
  const std::int32_t plain =
      std::popcount(static_cast<std::uint32_t>(point.mask) & (kLoadBit - 1u));
  const bool has_load = (point.mask & kLoadBit) != 0;
  const bool known_bits = (point.mask & ~(2 * kLoadBit - 1)) == 0;
  const bool accounts = known_bits && (has_load ? blocks > plain : blocks == plain);
  if (!accounts) {
    point.mask = (1 << std::min(blocks, 3)) - 1 + (blocks > 3 ? kLoadBit : 0);
    point.load_operators = std::max(blocks - 3, 0);
  } else {
    point.load_operators = has_load ? blocks - plain : 0;
  }
}

}  // namespace

bool BlockReader::generalized_stiffness() {
  return read(Block::kGeneralizedStiffness,
              "Out of memory while reading Generalized Stiffness block",
              &BlockReader::read_generalized_stiffness);
}

bool BlockReader::generalized_mass() {
  return read(Block::kGeneralizedMass, "Out of memory while reading Generalized Mass block",
              &BlockReader::read_generalized_mass);
}

bool BlockReader::generalized_damping() {
  return read(Block::kGeneralizedDamping, "Out of memory while reading Generalized Damping Block",
              &BlockReader::read_generalized_damping);
}

Reading BlockReader::read_generalized_stiffness() {
  return read_generalized(record_.stiffness);
}

Reading BlockReader::read_generalized_mass() {
  return read_generalized(record_.mass);
}

Reading BlockReader::read_generalized_damping() {
  return read_generalized(record_.damping);
}

Reading BlockReader::read_generalized(GeneralizedMatrix &matrix) {
  const Encoding &encoding = source_.encoding();
  const std::int32_t real = encoding.real_bytes();
  GeneralizedMatrix made;
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.i32(made.header) || !source_.fits(count, 12 + real)) {
    return Reading::kProblem;
  }
  made.entries.reserve(static_cast<std::size_t>(count));
  const bool read = source_.records(count, 12 + real, [&](const unsigned char *bytes) {
    made.entries.push_back(
        {zero_based(decode_i32(bytes, encoding)), zero_based(decode_i32(bytes + 4, encoding)),
         decode_real(bytes + 8, encoding), decode_i32(bytes + 8 + real, encoding)});
    return true;
  });
  if (!read)
    return Reading::kProblem;
  matrix = std::move(made);
  return Reading::kDone;
}

bool BlockReader::transformation() {
  return read(Block::kModeShapeTransformation,
              "Out of memory while reading Mode Shape Transformation Block",
              &BlockReader::read_transformation);
}

Reading BlockReader::read_transformation() {
  Transformation &made = record_.transformation;
  std::int32_t dimension = 0;
  if (!source_.i32(dimension) || dimension < 0)
    return Reading::kProblem;
  const std::int64_t row_bytes = 4 + std::int64_t{dimension} * source_.encoding().real_bytes();
  if (!source_.fits(dimension, row_bytes))
    return Reading::kProblem;
  const auto size = static_cast<std::size_t>(dimension);
  made.dimension = dimension;
  made.matrix.resize(size * size);
  made.row_integers.resize(size);
  made.present = true;
  for (std::size_t row = 0; row < size; ++row) {
    if (!source_.i32(made.row_integers[row]))
      return Reading::kProblem;
    if (!source_.reals(made.matrix.data() + row * size, size))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

bool BlockReader::modal_preload() {
  return read(Block::kModalPreload, "Out of memory while reading Modal Preload Block",
              &BlockReader::read_modal_preload);
}

Reading BlockReader::read_modal_preload() {
  ModalPreload &preload = record_.preload;
  std::int32_t count = 0;
  if (!source_.i32(count))
    return Reading::kProblem;
  if (count != mode_count(record_)) {
    QDL_Error("Number of modal preloads does not match the number of modes");
    return Reading::kReported;
  }
  if (!source_.i32(preload.processed))
    return Reading::kProblem;
  if (!source_.fits(count, source_.encoding().real_bytes()))
    return Reading::kProblem;
  preload.values.resize(static_cast<std::size_t>(count));
  preload.present = true;
  return source_.reals(preload.values.data(), preload.values.size()) ? Reading::kDone
                                                                     : Reading::kProblem;
}

bool BlockReader::modal_loads() {
  return read(Block::kModalLoads, "Out of memory while reading Modal Loads Block",
              &BlockReader::read_modal_loads);
}

Reading BlockReader::read_modal_loads() {
  std::int32_t modes = 0;
  std::int32_t cases = 0;
  if (!source_.i32(modes))
    return Reading::kProblem;
  if (modes != mode_count(record_)) {
    QDL_Error("Number of modal load components does not match the number of modes");
    return Reading::kReported;
  }
  const Encoding &encoding = source_.encoding();
  const std::int64_t case_bytes =
      4 + 256 * encoding.character_bytes() + std::int64_t{modes} * encoding.real_bytes();
  if (!source_.i32(cases) || !source_.fits(cases, case_bytes))
    return Reading::kProblem;
  record_.modal_loads.resize(static_cast<std::size_t>(cases));
  for (ModalLoadCase &load_case : record_.modal_loads) {
    if (!read_modal_load(load_case, modes))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

bool BlockReader::read_modal_load(ModalLoadCase &load_case, std::int32_t modes) {
  load_case.values.resize(static_cast<std::size_t>(modes));
  return text(load_case.label) && source_.i32(load_case.processed) &&
         source_.reals(load_case.values.data(), load_case.values.size());
}

bool BlockReader::nodal_loads() {
  return read(Block::kModalLoadNodal, nullptr, &BlockReader::read_nodal_loads);
}

Reading BlockReader::read_nodal_loads() {
  std::int32_t cases = 0;
  if (!source_.i32(cases) || !source_.fits(cases, 4))
    return Reading::kProblem;
  record_.nodal_loads.resize(static_cast<std::size_t>(cases));
  for (NodalLoadCase &load_case : record_.nodal_loads) {
    if (!read_nodal_load(load_case))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

bool BlockReader::read_nodal_load(NodalLoadCase &load_case) {
  const Encoding &encoding = source_.encoding();
  const std::int64_t entry_bytes = 8 + encoding.real_bytes();
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.fits(count, entry_bytes))
    return false;
  load_case.entries.reserve(static_cast<std::size_t>(count));
  return source_.records(count, entry_bytes, [&](const unsigned char *bytes) {
    load_case.entries.push_back({find_node(record_, decode_i32(bytes, encoding)),
                                 decode_i32(bytes + 4, encoding),
                                 decode_real(bytes + 8, encoding)});
    return true;
  });
}

bool BlockReader::matrix_operators() {
  return read(Block::kMatrixOperators, nullptr, &BlockReader::read_matrix_operators);
}

Reading BlockReader::read_matrix_operators() {
  const std::int64_t smallest = 8 + 8 * source_.encoding().character_bytes();
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.fits(count, smallest))
    return Reading::kProblem;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!read_matrix_operator(record_.matrix_operators.emplace_back()))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

bool BlockReader::read_matrix_operator(MatrixOperator &matrix_operator) {
  const Encoding &encoding = source_.encoding();
  std::int32_t rows = 0;
  std::int32_t sub_operators = 0;
  if (!source_.i32(rows) || !text(matrix_operator.name, 8))
    return false;
  if (!source_.fits(rows, 80 * encoding.character_bytes()))
    return false;
  matrix_operator.row_labels.resize(static_cast<std::size_t>(rows));
  for (std::string &label : matrix_operator.row_labels) {
    if (!text(label, 80))
      return false;
  }
  const std::int64_t smallest = 4 + 8 * encoding.character_bytes();
  if (!source_.i32(sub_operators) || !source_.fits(sub_operators, smallest))
    return false;
  for (std::int32_t i = 0; i < sub_operators; ++i) {
    SubOperator &sub = matrix_operator.sub_operators.emplace_back();
    if (!source_.i32(sub.columns) || sub.columns < 0 || !text(sub.tag, 8))
      return false;
    if (!source_.fits(sub.columns, std::int64_t{rows} * encoding.real_bytes()))
      return false;
    sub.data.resize(static_cast<std::size_t>(sub.columns) * static_cast<std::size_t>(rows));
    if (!source_.reals(sub.data.data(), sub.data.size()))
      return false;
  }
  return true;
}

bool BlockReader::monitor_points() {
  const Block block =
      in_file(record_, Block::kMonitorPoints) ? Block::kMonitorPoints : Block::kOldMonitorPoints;
  return read(block, nullptr, &BlockReader::read_monitor_points);
}

Reading BlockReader::read_monitor_points() {
  const std::int64_t smallest = 24 + 64 * source_.encoding().character_bytes();
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.fits(count, smallest))
    return Reading::kProblem;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!read_monitor_point(record_.monitor_points.emplace_back()))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

bool BlockReader::read_monitor_point(MonitorPoint &point) {
  std::int32_t blocks = 0;
  if (!source_.i32(point.type) || !source_.i32(point.result_type) ||
      !source_.i32(point.component) || !text(point.name, 8) || !text(point.label, 56) ||
      !source_.i32(point.rows) || !source_.i32(blocks) || !source_.i32(point.mask)) {
    return false;
  }
  if (point.rows < 0 || blocks < 0)
    return false;
  point.columns = record_.file_mode_count;
  const std::int64_t row_bytes = std::int64_t{point.columns} * source_.encoding().real_bytes();
  const std::int64_t rows = std::int64_t{point.rows} * blocks;
  if (!source_.fits(rows, row_bytes))
    return false;
  settle_operators(point, blocks);
  const std::size_t size =
      static_cast<std::size_t>(point.rows) * static_cast<std::size_t>(point.columns);
  for (std::size_t number = 0; number < point.operators.size(); ++number) {
    if ((point.mask & (1 << number)) == 0)
      continue;
    const bool load = number == 3;
    point.operators[number].resize(load ? size * static_cast<std::size_t>(point.load_operators)
                                        : size);
    if (!source_.reals(point.operators[number].data(), point.operators[number].size())) {
      return false;
    }
  }
  return true;
}

bool BlockReader::rotor_dynamics() {
  return read(Block::kRotorDynamics, nullptr, &BlockReader::read_rotor_dynamics);
}

Reading BlockReader::read_rotor_dynamics() {
  RotorDynamics &rotor = record_.rotor;
  std::int32_t count = 0;
  if (!source_.i32(count) || count < 0)
    return Reading::kProblem;
  if (!source_.reals(rotor.centre.data(), 3) || !source_.reals(rotor.direction.data(), 3)) {
    return Reading::kProblem;
  }
  const std::int32_t modes = record_.file_mode_count;
  const auto dimension = static_cast<std::size_t>(modes);
  const std::int64_t row_bytes = std::int64_t{modes} * source_.encoding().real_bytes();
  for (std::size_t i = 0; i < std::min(kRotorMatrices, static_cast<std::size_t>(count)); ++i) {
    RotorMatrix &matrix = rotor.matrices[i];
    if (!source_.i32(matrix.integer) || !source_.fits(modes, row_bytes))
      return Reading::kProblem;
    matrix.dimension = modes;
    matrix.values.resize(dimension * dimension);
    matrix.present = true;
    if (!source_.reals(matrix.values.data(), matrix.values.size()))
      return Reading::kProblem;
  }
  return Reading::kDone;
}

}  // namespace qdlflex
