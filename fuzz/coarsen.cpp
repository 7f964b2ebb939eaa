// Any faces and any argument of coarsening: the nodes of the new faces are nodes of the old ones,
// the nodes that are to stay stay, and the same happens again.

#include <algorithm>
#include <set>

#include "support/surface.h"

using namespace qdlfuzz;

namespace {

std::set<std::int32_t> nodes_of(const std::vector<std::vector<std::int32_t>> &faces) {
  std::set<std::int32_t> nodes;
  for (const auto &face : faces)
    nodes.insert(face.begin(), face.end());
  return nodes;
}

bool all_polygons(const std::vector<std::vector<std::int32_t>> &faces) {
  return std::ranges::all_of(faces, [](const auto &face) { return face.size() > 2; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  Bytes in(data, size);
  const Surface surface = take_surface(in);
  const std::string argument(in.rest());
  QDL_Record *const model = make_model(surface);
  const auto before = faces_of(model);
  const bool trimmed = QDL_TrimGeometry(model, argument.c_str()) == 1;
  const auto after = faces_of(model);
  if (!trimmed) {
    require(messages().errors > 0 && after == before, "a failure is silent or changes faces");
    return 0;
  }
  require(QDL_IsCoarsened(model) == 1, "the model tells otherwise");
  const std::set<std::int32_t> nodes = nodes_of(after), old_nodes = nodes_of(before);
  require(std::ranges::includes(old_nodes, nodes), "a face has a node that no face had");
  require(after.size() <= before.size(), "there are more faces");
  // A face may consist of co-linear corners alone.
  require(messages().tell_of_dropped_corners || !all_polygons(before) || all_polygons(after),
          "a face has fewer than three nodes");
  QDL_Record *const second = make_model(surface);
  require(QDL_TrimGeometry(second, argument.c_str()) == 1 && faces_of(second) == after,
          "the same model is coarsened otherwise");
  return 0;
}
