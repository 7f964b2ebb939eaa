#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "export_files.h"
#include "faces.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr size_t kHeaderSize = 80;

using Point = std::array<double, 3>;

Point operator-(const Point &a, const Point &b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point cross(const Point &a, const Point &b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// The positions of all nodes, moved by the selected mode.
std::vector<Point> positions(QDL_Record *record, const ExportOptions &options) {
  std::vector<Point> points(static_cast<size_t>(QDL_NodeCount(record)));
  for (size_t k = 0; k < points.size(); ++k) {
    QDL_NodeCoordinates(record, static_cast<int32_t>(k), points[k].data());
  }
  const std::vector<int32_t> modes = ModeSelection(options.modes).of(record);
  if (modes.empty()) {
    return points;
  }
  if (modes.size() > 1) {
    throw Failure("triangles can show one mode only; " + std::to_string(modes.size()) +
                  " are selected");
  }
  std::vector<double> half;
  read_half_mode(record, modes[0], QDL_MODE_SHAPE, 0, half);
  for (size_t k = 0; k < half.size(); ++k) {
    points[k / 3][k % 3] += options.fields.scale * half[k];
  }
  return points;
}

/// Integers and floats of the format are little-endian.
template <class Word>
void append(std::string &bytes, Word word) {
  for (size_t k = 0; k < sizeof word; ++k) {
    bytes += static_cast<char>(static_cast<unsigned char>(word >> (8 * k)));
  }
}

void append(std::string &bytes, const Point &point) {
  for (const double value : point) {
    append(bytes, std::bit_cast<uint32_t>(static_cast<float>(value)));
  }
}

class TriangleFile {
 public:
  explicit TriangleFile(const std::string &path) : file_(path) {
    std::string start = "binary triangles";
    start.resize(kHeaderSize, ' ');
    append(start, uint32_t{0});
    file_.write(start);
  }

  /// Leaves a triangle without area out: it has no normal.
  void add(const Point &a, const Point &b, const Point &c) {
    const Point normal = cross(b - a, c - a);
    const double length = std::hypot(normal[0], normal[1], normal[2]);
    if (!(length > 0.0)) {
      return;
    }
    if (count_ == std::numeric_limits<uint32_t>::max()) {
      throw Failure("there are more triangles than the format can count");
    }
    ++count_;
    std::string bytes;
    append(bytes, {normal[0] / length, normal[1] / length, normal[2] / length});
    append(bytes, a);
    append(bytes, b);
    append(bytes, c);
    append(bytes, uint16_t{0});
    file_.write(bytes);
  }

  void finish() {
    std::string count;
    append(count, count_);
    file_.overwrite(kHeaderSize, count);
    file_.finish();
  }

 private:
  OutputFile file_;
  uint32_t count_ = 0;
};

}  // namespace

void export_stl(const ExportOptions &options) {
  check_output_is_not(options.input, options.output);
  const Record record = open_record(options.input);
  const std::vector<int32_t> faces = read_outer_faces(record.get());
  const std::vector<Point> points = positions(record.get(), options);
  const auto point = [&](int32_t node) -> const Point & {
    return points[static_cast<size_t>(node)];
  };
  TriangleFile file(options.output);
  for_each_face(faces, [&](std::span<const int32_t> face) {
    for (size_t k = 2; k < face.size(); ++k) {
      file.add(point(face[0]), point(face[k - 1]), point(face[k]));
    }
  });
  file.finish();
}

}  // namespace qdlflex::cli
