#include "free_edges.h"

#include "text_input.h"

namespace qdlflex::cli {

std::vector<std::vector<int32_t>> read_free_edges(QDL_Record *record) {
  if (QDL_GenerateFreeEdges(record) == 0) {
    throw Failure("the free edges cannot be found");
  }
  std::vector<std::vector<int32_t>> chains(static_cast<size_t>(QDL_GetFreeEdgeCount(record)));
  for (size_t k = 0; k < chains.size(); ++k) {
    const auto chain = static_cast<int32_t>(k);
    chains[k].resize(static_cast<size_t>(QDL_GetFreeEdgeSize(record, chain)));
    QDL_GetFreeEdge(record, chain, chains[k].data());
  }
  return chains;
}

}  // namespace qdlflex::cli
