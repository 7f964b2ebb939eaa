// Free edges of any faces: those that plain loops find, by the classes and by the C interface, also
// after internal geometry was removed.

#include <qdlflex/free_edges.hpp>

#include "geometry/free_edges_model.h"
#include "support/surface.h"

using namespace qdlfuzz;

namespace {

qdltest::Chains chains_of(QDL_Record *model) {
  qdltest::Chains chains(static_cast<std::size_t>(QDL_GetFreeEdgeCount(model)));
  for (std::size_t i = 0; i < chains.size(); ++i) {
    const auto chain = static_cast<std::int32_t>(i);
    chains[i].resize(static_cast<std::size_t>(QDL_GetFreeEdgeSize(model, chain)));
    require(QDL_GetFreeEdge(model, chain, chains[i].data()) ==
                static_cast<std::int32_t>(chains[i].size()),
            "a chain has two lengths");
  }
  return chains;
}

void require_chains_of_classes(const Surface &surface) {
  std::vector<std::int32_t> list = face_list(surface);
  cQDLFreeEdges edges;
  edges.FindFreeEdges(static_cast<int>(surface.faces.size()), list.data());
  qdltest::Chains chains;
  for (const std::list<int> &chain : edges.GetFreeEdges())
    chains.emplace_back(chain.begin(), chain.end());
  require(chains == qdltest::free_edges_of(surface.faces), "the classes find other chains");
}

void require_chains_of_model(QDL_Record *model) {
  const qdltest::Chains found = chains_of(model);
  qdltest::Chains expected = qdltest::free_edges_of(faces_of(model));
  for (auto &chain : expected) {
    for (int &node : chain)
      node = QDL_NodeID(model, node);
  }
  require(found == expected, "the model has other chains");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  Bytes in(data, size);
  const Surface surface = take_surface(in);
  require_chains_of_classes(surface);
  QDL_Record *const model = make_model(surface);
  require(QDL_GenerateFreeEdges(model) == 1, "free edges can't be found");
  require_chains_of_model(model);
  return 0;
}
