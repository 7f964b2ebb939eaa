#include "ccx_frd.h"

#include <algorithm>
#include <cmath>

namespace qdlflex::cli {

namespace {

// Columns of the long text format.
constexpr size_t kIdBegin = 3;
constexpr size_t kIdWidth = 10;
constexpr size_t kValuesBegin = kIdBegin + kIdWidth;
constexpr size_t kValueWidth = 12;
constexpr size_t kShortWidth = 5;
constexpr std::string_view kLongText = "1";

struct FieldLayout {
  std::string_view name;
  std::vector<std::string_view> components;
};

const FieldLayout &layout_of(FrdField field) {
  static const std::array<FieldLayout, frd_field_count> layouts = {{
      {"DISP", {"D1", "D2", "D3"}},
      {"STRESS", {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"}},
      {"TOSTRAIN", {"EXX", "EYY", "EZZ", "EXY", "EYZ", "EZX"}},
  }};
  return layouts[field];
}

std::optional<FrdField> field_named(std::string_view name) {
  for (const FrdField field : {frd_displacement, frd_stress, frd_strain}) {
    if (layout_of(field).name == name) {
      return field;
    }
  }
  return {};
}

std::optional<SolidType> solid_type(int32_t code) {
  switch (code) {
    case 1:
      return SolidType::hex8;
    case 2:
      return SolidType::wedge6;
    case 3:
      return SolidType::tet4;
    case 4:
      return SolidType::hex20;
    case 5:
      return SolidType::wedge15;
    case 6:
      return SolidType::tet10;
    default:
      return {};
  }
}

/// A field of fixed columns; columns past the end of the line are blank.
std::string_view column(std::string_view line, size_t begin, size_t width) {
  return begin < line.size() ? line.substr(begin, width) : std::string_view();
}

std::string_view id_column(std::string_view line) {
  return column(line, kIdBegin, kIdWidth);
}

std::string_view value_column(std::string_view line, size_t position) {
  return column(line, kValuesBegin + position * kValueWidth, kValueWidth);
}

bool starts_block(std::string_view line, std::string_view key) {
  return trim(line.substr(0, 6)) == key;
}

}  // namespace

FrdFile::FrdFile(const std::string &path) : lines_(path) {
  scan();
  if (nodes_.empty()) {
    throw Failure(path + ": no nodes");
  }
  if (elements_.empty()) {
    throw Failure(path + ": no solid elements");
  }
  if (modes_.empty()) {
    throw Failure(path + ": no modes (the deck needs *FREQUENCY and *NODE FILE with U)");
  }
}

std::string_view FrdFile::next_line() {
  const auto line = lines_.next();
  if (!line) {
    throw Failure(lines_.path() + ": the file ends before its closing line (9999): truncated?");
  }
  return *line;
}

void FrdFile::scan() {
  if (trim(column(next_line(), 0, 6)) != "1C") {
    lines_.fail("this is not a CalculiX result file in text form (no 1C in the first line)");
  }
  for (;;) {
    const std::string line(next_line());
    if (starts_block(line, "9999")) {
      return;
    }
    if (line.starts_with("    1U")) {
      read_user_line(line);
    } else if (line.starts_with("    1P")) {
      read_parameter(line);
    } else if (starts_block(line, "2C")) {
      read_nodes(line);
    } else if (starts_block(line, "3C")) {
      read_elements(line);
    } else if (line.starts_with("  100C")) {
      read_result_block(line);
    } else {
      lines_.fail("unexpected line \"" + std::string(trim(line).substr(0, 40)) + "\"");
    }
  }
}

void FrdFile::read_user_line(std::string_view line) {
  constexpr std::string_view material = "    1UMAT";
  if (line.starts_with(material)) {
    const int32_t number = lines_.integer(column(line, material.size(), kShortWidth));
    materials_[number] =
        upper(trim(column(line, material.size() + kShortWidth, std::string_view::npos)));
  } else if (title_.empty()) {
    title_ = trim(line.substr(6));
  }
}

void FrdFile::read_parameter(std::string_view line) {
  const std::string key(trim(column(line, 4, 8)));
  if (key == "1PSTEP") {
    parameters_.clear();
  }
  parameters_[key] = trim(column(line, 12, std::string_view::npos));
}

void FrdFile::check_count(int64_t found, int64_t announced, const char *what) const {
  if (found != announced) {
    lines_.fail("the block announces " + std::to_string(announced) + " " + what + " and holds " +
                std::to_string(found));
  }
}

void FrdFile::read_nodes(std::string_view header) {
  const int32_t announced = lines_.integer(column(header, 24, kValueWidth));
  if (trim(column(header, 36, 38)) != kLongText) {
    lines_.fail("only the long text format is read (*NODE FILE, not *NODE OUTPUT)");
  }
  if (!nodes_.empty()) {
    lines_.fail("a second block of nodes");
  }
  for (auto line = next_line(); !line.starts_with(" -3"); line = next_line()) {
    if (!line.starts_with(" -1")) {
      lines_.fail("a node was expected");
    }
    FrdNode node = {lines_.integer(id_column(line)), {}};
    for (size_t k = 0; k < 3; ++k) {
      node.position[k] = lines_.real(value_column(line, k));
    }
    if (!node_index_.emplace(node.id, nodes_.size()).second) {
      lines_.fail("node " + std::to_string(node.id) + " comes twice");
    }
    nodes_.push_back(node);
  }
  check_count(static_cast<int64_t>(nodes_.size()), announced, "nodes");
}

void FrdFile::read_elements(std::string_view header) {
  const int32_t announced = lines_.integer(column(header, 24, kValueWidth));
  if (!elements_.empty()) {
    lines_.fail("a second block of elements");
  }
  for (auto line = next_line(); !line.starts_with(" -3"); line = next_line()) {
    if (line.starts_with(" -1")) {
      read_element(line);
    } else if (!line.starts_with(" -2")) {
      lines_.fail("an element was expected");
    }
  }
  const int64_t found = static_cast<int64_t>(elements_.size()) + other_element_count_;
  check_count(found, announced, "elements");
}

/// Reads one element with the lines of its nodes; other elements than solids are counted only, and
/// the caller passes over the lines of their nodes.
void FrdFile::read_element(std::string_view header) {
  FrdElement element{};
  element.id = lines_.integer(id_column(header));
  const int32_t code = lines_.integer(column(header, kValuesBegin, kShortWidth));
  element.material = lines_.integer(column(header, kValuesBegin + 2 * kShortWidth, kShortWidth));
  const auto type = solid_type(code);
  if (!type) {
    ++other_element_count_;
    return;
  }
  element.type = *type;
  constexpr size_t per_line = 10;
  std::string_view line;
  for (size_t k = 0; k < static_cast<size_t>(node_count(*type)); ++k) {
    if (k % per_line == 0) {
      line = next_line();
      if (!line.starts_with(" -2")) {
        lines_.fail("the nodes of element " + std::to_string(element.id) + " were expected");
      }
    }
    element.nodes[k] = lines_.integer(column(line, kIdBegin + (k % per_line) * kIdWidth, kIdWidth));
    if (!node_index_.contains(element.nodes[k])) {
      lines_.fail("element " + std::to_string(element.id) + " has the node " +
                  std::to_string(element.nodes[k]) + ", which is not in the mesh");
    }
  }
  elements_.push_back(element);
}

/// The mode that the block belongs to. Modes of a later step replace those of an earlier one.
FrdMode &FrdFile::current_mode(std::string_view header) {
  const int32_t number = lines_.integer(parameters_["1PMODE"]);
  if (number < 1) {
    lines_.fail("mode number " + std::to_string(number) + " is not positive");
  }
  const auto step_fields = words(parameters_["1PSTEP"]);
  const int32_t step = step_fields.size() < 3 ? 1 : lines_.integer(step_fields[2]);
  if (modal_step_count_ == 0 || step != modal_step_) {
    modes_.clear();
    modal_step_ = step;
    ++modal_step_count_;
  }
  FrdMode &mode = modes_[number];
  mode.number = number;
  mode.frequency = lines_.real(column(header, 12, kValueWidth));
  mode.generalized_mass = lines_.real(parameters_["1PGM"]);
  mode.generalized_stiffness = lines_.real(parameters_["1PGK"]);
  return mode;
}

/// Reads the name of a result, its components and the line after them. Empty for a result that
/// is of no use here.
std::optional<FrdField> FrdFile::read_result_name() {
  std::string_view line = next_line();
  if (!line.starts_with(" -4")) {
    lines_.fail("the name of a result was expected");
  }
  const auto field = field_named(trim(column(line, 5, 8)));
  std::vector<std::string> components;
  for (line = next_line(); line.starts_with(" -5"); line = next_line()) {
    components.emplace_back(trim(column(line, 5, 8)));
  }
  if (field) {
    const auto &expected = layout_of(*field).components;
    if (components.size() < expected.size() ||
        !std::equal(expected.begin(), expected.end(), components.begin())) {
      lines_.fail("the components of " + std::string(layout_of(*field).name) +
                  " are not the expected ones");
    }
  }
  return field;
}

void FrdFile::read_result_block(std::string_view header) {
  const int32_t announced = lines_.integer(column(header, 24, kValueWidth));
  FrdMode *const mode = parameters_.contains("1PMODE") ? &current_mode(header) : nullptr;
  const auto field = read_result_name();
  lines_.go_to(lines_.place());  // before the first line of values, read by now
  FrdBlock block = {lines_.place(), 0};
  for (auto line = next_line(); !line.starts_with(" -3"); line = next_line()) {
    if (line.starts_with(" -1")) {
      ++block.count;
    } else if (!line.starts_with(" -2")) {
      lines_.fail("a line of values was expected");
    }
  }
  check_count(block.count, announced, "nodes");
  if (mode && field) {
    mode->fields[*field] = block;
  }
}

void FrdFile::refine_positions(const std::unordered_map<int32_t, Point> &deck) {
  constexpr double rounding = 5.1e-6;  // of six digits, seen from the smallest mantissa
  for (FrdNode &node : nodes_) {
    const auto typed = deck.find(node.id);
    if (typed == deck.end()) {
      continue;
    }
    bool same = true;
    for (size_t k = 0; k < 3; ++k) {
      const double difference = std::abs(typed->second[k] - node.position[k]);
      same = same && difference <= rounding * std::abs(typed->second[k]);
    }
    if (same) {
      node.position = typed->second;
    }
  }
}

std::vector<FrdValue> FrdFile::read(FrdField field, const FrdBlock &block) {
  const size_t component_count = layout_of(field).components.size();
  std::vector<FrdValue> values;
  values.reserve(static_cast<size_t>(block.count));
  std::vector<bool> seen(nodes_.size());
  lines_.go_to(block.place);
  for (int64_t i = 0; i < block.count; ++i) {
    const auto line = next_line();
    FrdValue value = {lines_.integer(id_column(line)), {}};
    const auto node = node_index_.find(value.node);
    if (node == node_index_.end() || seen[node->second]) {
      lines_.fail("node " + std::to_string(value.node) +
                  (node == node_index_.end() ? " is not in the mesh" : " comes twice"));
    }
    seen[node->second] = true;
    for (size_t k = 0; k < component_count; ++k) {
      value.components[k] = lines_.real(value_column(line, k));
    }
    values.push_back(value);
  }
  return values;
}

}  // namespace qdlflex::cli
