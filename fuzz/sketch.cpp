// Any text as a sketch file: exactly its faces take the place of those there were, or nothing
// changes and there is a warning.

#include <algorithm>
#include <charconv>
#include <optional>
#include <vector>

#include "support/surface.h"

using namespace qdlfuzz;

namespace {

constexpr std::int32_t kNodes = 9;

// Reads the text once more, with the standard library's numbers.
class Sketch {
 public:
  explicit Sketch(std::string_view text) : left_(text) {}

  // The face list that the model gets; none for a text that isn't a sketch.
  std::optional<std::vector<std::int32_t>> face_list() {
    const auto count = number();
    if (!count)
      return std::nullopt;
    std::vector<std::int32_t> list;
    for (std::int32_t face = 0; face < *count; ++face) {
      const auto nodes = number();
      if (!nodes)
        return std::nullopt;
      list.push_back(*nodes);
      for (std::int32_t i = 0; i < *nodes; ++i) {
        const auto id = number();
        if (!id || *id < 1 || *id > kNodes)
          return std::nullopt;
        list.push_back(*id - 1);
      }
    }
    return list;
  }

 private:
  std::optional<std::int32_t> number() {
    left_.remove_prefix(std::min(left_.find_first_not_of(" \t\n\v\f\r"), left_.size()));
    if (left_.starts_with('+') && !left_.starts_with("+-"))
      left_.remove_prefix(1);
    std::int32_t value = 0;
    const auto read = std::from_chars(left_.data(), left_.data() + left_.size(), value);
    if (read.ec != std::errc())
      return std::nullopt;
    left_.remove_prefix(static_cast<std::size_t>(read.ptr - left_.data()));
    return value;
  }

  std::string_view left_;
};

QDL_Record *make_body() {
  QDL_Record *const model = QDL_Create(kNodes, 0);
  for (std::int32_t id = 1; id <= kNodes; ++id)
    QDL_SetNodeCoordinates(model, id, id, 2.0, 3.0);
  QDL_SetFace(model, 3, 1, 2, 3);
  return model;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  const std::string path = write_file("sketch.txt", data, size);
  const auto expected =
      Sketch(std::string_view(reinterpret_cast<const char *>(data), size)).face_list();
  QDL_Record *const model = make_body();
  QDL_SketchGrid(model, path.c_str());
  std::int32_t count = 0;
  std::int32_t length = 0;
  QDL_FaceListSize(model, &count, &length);
  std::vector<std::int32_t> list(static_cast<std::size_t>(length));
  QDL_ElementFaces(model, list.data());
  require(QDL_IsCoarsened(model) == (expected ? 1 : 0), "a sketch counts, or doesn't, wrongly");
  require(list == expected.value_or(std::vector<std::int32_t>{3, 0, 1, 2}), "other faces");
  require(messages().warnings == (expected ? 0 : 1) && messages().errors == 0,
          "not one warning for a bad sketch and none for a good one");
  QDL_RemoveInternalGeometry(model);
  QDL_GenerateFreeEdges(model);
  return 0;
}
