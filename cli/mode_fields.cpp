#include "mode_fields.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <span>
#include <utility>

#include "text_input.h"
#include "units.h"

namespace qdlflex::cli {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

[[noreturn]] void fail_on_list(std::string_view text) {
  throw Failure("\"" + std::string(text) +
                "\" is no list of modes: all, none, or numbers and ranges such as 1,7-12");
}

int32_t parse_number(std::string_view number, std::string_view text) {
  const auto value = parse_integer(number);
  if (!value) {
    fail_on_list(text);
  }
  return *value;
}

struct FieldUnits {
  std::string length;
  std::string stress;
  std::string frequency;
};

FieldUnits field_units(QDL_Record *record) {
  const Units units = read_units(record);
  const std::string length = abbreviation_of(units.length);
  const std::string time = abbreviation_of(units.time);
  return {length, abbreviation_of(units.force) + "/" + length + "^2",
          time == "s" ? "Hz" : "1/" + time};
}

std::string formatted(const char *format, auto... values) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

/// "Mode 07 (812.5 Hz)"; numbers get equal widths so that viewers sort them.
std::string mode_title(QDL_Record *record, int32_t mode, size_t width, const FieldUnits &units) {
  std::string title = formatted("Mode %0*d", static_cast<int>(width), mode);
  double frequency = 0.0;
  if (QDL_Eigenvalue(record, mode, nullptr, &frequency, nullptr, nullptr, nullptr) == 0) {
    return title;
  }
  return title + formatted(" (%.6g ", frequency) + units.frequency + ")";
}

/// Reads modes of one record and keeps the one read last.
class ModeReader {
 public:
  explicit ModeReader(QDL_Record *record) : record_(record) {}

  const std::vector<double> &half(int32_t mode, int32_t kind, int32_t part) {
    Held &held = held_.at(static_cast<size_t>(part));
    if (!held.valid || held.mode != mode || held.kind != kind) {
      held.valid = false;
      read_half_mode(record_, mode, kind, part, held.values);
      held = {true, mode, kind, std::move(held.values)};
    }
    return held.values;
  }

 private:
  struct Held {
    bool valid = false;
    int32_t mode = 0;
    int32_t kind = 0;
    std::vector<double> values;
  };

  QDL_Record *record_;
  std::array<Held, 2> held_;
};

/// What the arrays need when they are written.
struct Source {
  ModeReader reader;
  // Of the nodes in a half-mode; -1 where a kind lacks the node.
  std::vector<int32_t> shape_places;
  std::vector<int32_t> stress_places;
};

using Tensor = std::array<double, 6>;  // xx, yy, zz, xy, xz, yz

std::array<double, 3> triple(const std::vector<double> &half, int32_t place) {
  if (place < 0) {
    return {kNoValue, kNoValue, kNoValue};
  }
  const size_t at = 3 * static_cast<size_t>(place);
  return {half[at], half[at + 1], half[at + 2]};
}

Tensor tensor(Source &source, int32_t mode, int32_t place) {
  const auto direct = triple(source.reader.half(mode, QDL_MODE_STRESS, 0), place);
  const auto shear = triple(source.reader.half(mode, QDL_MODE_STRESS, 1), place);
  return {direct[0], direct[1], direct[2], shear[0], shear[1], shear[2]};
}

double von_mises(const Tensor &t) {
  const auto square = [](double value) { return value * value; };
  const double direct = square(t[0] - t[1]) + square(t[1] - t[2]) + square(t[2] - t[0]);
  return std::sqrt(0.5 * direct + 3.0 * (square(t[3]) + square(t[4]) + square(t[5])));
}

/// Writes the values of `at(place)` for every place, some thousand at a time.
template <size_t n, class At>
void write_at(OutputFile &file, const std::vector<int32_t> &places, At at) {
  constexpr size_t kTuples = 4096;
  std::vector<double> values;
  values.reserve(n * std::min(kTuples, places.size()));
  for (const int32_t place : places) {
    const std::array<double, n> tuple = at(place);
    values.insert(values.end(), tuple.begin(), tuple.end());
    if (values.size() == n * kTuples) {
      file.write_values(std::span<const double>(values));
      values.clear();
    }
  }
  file.write_values(std::span<const double>(values));
}

using SharedSource = std::shared_ptr<Source>;

VtkArray vectors(std::string name, const SharedSource &source, int32_t mode, int32_t part,
                 double scale) {
  return {"Float64",
          std::move(name),
          {"X", "Y", "Z"},
          std::ssize(source->shape_places),
          [source, mode, part, scale](OutputFile &file) {
            const auto &half = source->reader.half(mode, QDL_MODE_SHAPE, part);
            write_at<3>(file, source->shape_places, [&](int32_t place) {
              const auto [x, y, z] = triple(half, place);
              return std::array<double, 3>{scale * x, scale * y, scale * z};
            });
          }};
}

/// VTK orders the last two the other way round.
VtkArray tensors(std::string name, const SharedSource &source, int32_t mode) {
  return {"Float64",
          std::move(name),
          {"XX", "YY", "ZZ", "XY", "YZ", "XZ"},
          std::ssize(source->stress_places),
          [source, mode](OutputFile &file) {
            write_at<6>(file, source->stress_places, [&](int32_t place) {
              const Tensor t = tensor(*source, mode, place);
              return Tensor{t[0], t[1], t[2], t[3], t[5], t[4]};
            });
          }};
}

VtkArray mises_values(std::string name, const SharedSource &source, int32_t mode) {
  return {"Float64",
          std::move(name),
          {""},
          std::ssize(source->stress_places),
          [source, mode](OutputFile &file) {
            write_at<1>(file, source->stress_places, [&](int32_t place) {
              return std::array<double, 1>{von_mises(tensor(*source, mode, place))};
            });
          }};
}

/// A file may list shapes for its first nodes only.
std::vector<int32_t> shape_places(QDL_Record *record, std::vector<int32_t> nodes) {
  const int32_t count = QDL_ModeNodeCount(record, QDL_MODE_SHAPE);
  std::ranges::replace_if(
      nodes, [count](int32_t node) { return node >= count; }, -1);
  return nodes;
}

std::vector<int32_t> stress_places(QDL_Record *record, const std::vector<int32_t> &nodes) {
  std::vector<int32_t> places;
  places.reserve(nodes.size());
  for (const int32_t node : nodes) {
    places.push_back(QDL_ModeNodeIndex(record, QDL_MODE_STRESS, QDL_NodeID(record, node)));
  }
  return places;
}

bool has_rotation(ModeReader &reader, int32_t mode) {
  return std::ranges::any_of(reader.half(mode, QDL_MODE_SHAPE, 1),
                             [](double value) { return value != 0.0; });
}

}  // namespace

ModeSelection::ModeSelection(std::string_view text) {
  if (text == "all" || text == "none") {
    all_ = text == "all";
    return;
  }
  for (const std::string_view item : split(text, ',')) {
    const size_t dash = item.find('-', 1);
    const int32_t first = parse_number(item.substr(0, dash), text);
    const bool single = dash == std::string_view::npos;
    ranges_.push_back({first, single ? first : parse_number(item.substr(dash + 1), text)});
  }
}

std::vector<int32_t> ModeSelection::of(QDL_Record *record) const {
  std::vector<int32_t> modes;
  std::vector<bool> found(ranges_.size());
  for (int32_t index = 0; index < QDL_ModeCount(record); ++index) {
    const int32_t number = QDL_ModeNumber(record, index);
    bool selected = all_;
    for (size_t k = 0; k < ranges_.size(); ++k) {
      if (ranges_[k].first <= number && number <= ranges_[k].last) {
        selected = true;
        found[k] = true;
      }
    }
    if (selected) {
      modes.push_back(number);
    }
  }
  const auto missing = std::ranges::find(found, false) - found.begin();
  if (missing < std::ssize(found)) {
    const auto [first, last] = ranges_[static_cast<size_t>(missing)];
    throw Failure("the model has no mode " + std::to_string(first) +
                  (first == last ? "" : " to " + std::to_string(last)));
  }
  return modes;
}

void read_half_mode(QDL_Record *record, int32_t mode, int32_t kind, int32_t part,
                    std::vector<double> &values) {
  values.resize(3 * static_cast<size_t>(QDL_ModeNodeCount(record, kind)));
  if (QDL_Mode(record, mode, kind, values.data(), part) == 0) {
    throw Failure("mode " + std::to_string(mode) + " cannot be read");
  }
}

std::vector<VtkArray> mode_fields(QDL_Record *record, const std::vector<int32_t> &modes,
                                  const std::vector<int32_t> &nodes,
                                  const ModeFieldOptions &options) {
  // One half-mode here is all that is needed; the library's cache would keep every mode.
  QDL_SetKeepModesInMemory(record, 0);
  const bool shapes = QDL_ModeExist(record, QDL_MODE_SHAPE) != 0;
  if (options.stress && QDL_ModeExist(record, QDL_MODE_STRESS) == 0) {
    throw Failure("the model has no modal stress");
  }
  const auto source =
      std::make_shared<Source>(Source{ModeReader(record), shape_places(record, nodes), {}});
  if (options.stress) {
    source->stress_places = stress_places(record, nodes);
  }
  const FieldUnits units = field_units(record);
  std::string displacement = " displacement";
  if (options.scale != 1.0) {
    displacement += formatted(" x %.6g", options.scale);
  }
  displacement += " [" + units.length + "]";
  size_t width = 1;
  for (const int32_t mode : modes) {
    width = std::max(width, std::to_string(mode).size());
  }
  std::vector<VtkArray> fields;
  for (const int32_t mode : modes) {
    const std::string title = mode_title(record, mode, width, units);
    if (shapes) {
      fields.push_back(vectors(title + displacement, source, mode, 0, options.scale));
      if (has_rotation(source->reader, mode)) {
        fields.push_back(vectors(title + " rotation [rad]", source, mode, 1, 1.0));
      }
    }
    if (options.stress) {
      fields.push_back(tensors(title + " stress [" + units.stress + "]", source, mode));
      fields.push_back(
          mises_values(title + " von Mises stress [" + units.stress + "]", source, mode));
    }
  }
  return fields;
}

}  // namespace qdlflex::cli
