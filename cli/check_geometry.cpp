// Checks of what refers to nodes.

#include <span>

#include "check.h"
#include "faces.h"

namespace qdlflex::cli {

namespace {

// Helper nodes of solvers remain unused now and then; with most nodes unused a block is missing.
constexpr double kFewUnused = 0.5;

using NodeFlags = std::vector<bool>;

NodeFlags nodes_of(std::span<const int32_t> faces, QDL_Record *record) {
  NodeFlags used(static_cast<size_t>(QDL_NodeCount(record)));
  for_each_face(faces, [&](std::span<const int32_t> face) {
    for (const int32_t node : face) {
      used[static_cast<size_t>(node)] = true;
    }
  });
  return used;
}

/// The indices of the interface nodes, -1 for one that is no node of the model.
std::vector<int32_t> interface_nodes(QDL_Record *record) {
  int32_t count = 0;
  const LibraryArray<int32_t> ids(QDL_InterfaceNodeIDs(record, &count));
  std::vector<int32_t> indices;
  for (int32_t k = 0; k < count; ++k) {
    const int32_t id = ids[static_cast<size_t>(k)];
    indices.push_back(id == 0 ? -1 : QDL_NodeIndex(record, id));
  }
  return indices;
}

}  // namespace

Check check_node_references(const Body &body) {
  QDL_Record *const record = body.record;
  const int32_t nodes = QDL_NodeCount(record);
  if (nodes == 0 || (!has_block(record, kFaceBlock) && !has_block(record, kMassBlock))) {
    return {"node_references",
            Verdict::kNotApplicable,
            {},
            "There are no faces or masses that could use nodes."};
  }
  NodeFlags used = nodes_of(read_faces(record), record);
  for (const int32_t index : interface_nodes(record)) {
    if (index >= 0) {
      used[static_cast<size_t>(index)] = true;
    }
  }
  int32_t unused = 0;
  for (int32_t index = 0; index < nodes; ++index) {
    const bool needed = used[static_cast<size_t>(index)] || QDL_NodalMass(record, index) != 0.0;
    unused += needed ? 0 : 1;
  }
  Check check{"node_references",
              Verdict::kOk,
              {{"unused_nodes", unused}},
              "Every node belongs to a face or an interface or has mass."};
  if (unused > kFewUnused * nodes) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "Most nodes have neither faces nor mass. See whether elements or masses were "
        "lost on the way into the file.";
  } else if (unused > 0) {
    check.advice = "Nothing uses these nodes. \"qdlflex surface --prune\" discards them.";
  }
  return check;
}

Check check_interface_nodes(const Body &body, const ModeScan &scan) {
  QDL_Record *const record = body.record;
  const std::vector<int32_t> indices = interface_nodes(record);
  if (indices.empty()) {
    return {"interface_nodes",
            Verdict::kNotApplicable,
            {},
            "There are no interface nodes: joints and forces find no marked place."};
  }
  const bool faces = has_block(record, kFaceBlock);
  const NodeFlags surface =
      faces ? nodes_of(read_outer_faces(record), record) : NodeFlags(scan.node_moves.size(), true);
  const bool shapes = QDL_ModeExist(record, QDL_MODE_SHAPE) != 0;
  int32_t unknown = 0;
  int32_t off_surface = 0;
  int32_t loose = 0;
  for (const int32_t index : indices) {
    if (index < 0) {
      ++unknown;
      continue;
    }
    const auto node = static_cast<size_t>(index);
    off_surface += surface[node] ? 0 : 1;
    loose += shapes && !surface[node] && !scan.node_moves[node] ? 1 : 0;
  }
  Check check{"interface_nodes",
              Verdict::kOk,
              {{"count", std::ssize(indices)},
               {"unknown", unknown},
               {"off_surface", off_surface},
               {"off_surface_and_unmoved", loose}},
              faces ? "All interface nodes are corners of the surface."
                    : "All interface nodes are nodes of the body, which has no faces."};
  if (unknown > 0) {
    check.verdict = Verdict::kFailed;
    check.advice = "Some interface nodes are no nodes of the body. Make the file again with them.";
  } else if (loose > 0) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "Some interface nodes lie off the surface and no mode moves them: nothing ties "
        "them to the body. Connect them in the analysis.";
  } else if (off_surface > 0) {
    check.advice =
        "Interface nodes off the surface are midside nodes or reference nodes of rigid "
        "connections. The modes move them, so that they can be used.";
  }
  return check;
}

Check check_stress_nodes(const Body &body) {
  QDL_Record *const record = body.record;
  Check check{
      "stress_nodes", Verdict::kNotApplicable, {}, "There are no modal stresses or strains."};
  int32_t total = 0;
  int32_t all_lost = 0;
  for (const auto &[name, kind] :
       {std::pair{"stress", QDL_MODE_STRESS}, std::pair{"strain", QDL_MODE_STRAIN}}) {
    if (QDL_ModeExist(record, kind) == 0) {
      continue;
    }
    const int32_t count = QDL_ModeNodeCount(record, kind);
    int32_t lost = 0;
    for (int32_t position = 0; position < count; ++position) {
      lost += QDL_NodeIndex(record, QDL_ModeNodeID(record, kind, position)) < 0 ? 1 : 0;
    }
    check.numbers.push_back({std::string(name) + "_nodes", count});
    check.numbers.push_back({std::string(name) + "_without_node", lost});
    total += count;
    all_lost += lost;
  }
  if (total == 0) {
    return check;
  }
  check.verdict = all_lost == 0       ? Verdict::kOk
                  : all_lost == total ? Verdict::kFailed
                                      : Verdict::kDoubtful;
  check.advice = all_lost == 0
                     ? "All modal stresses and strains belong to nodes of the body."
                     : "Some modal stresses or strains belong to nodes that the body does not have "
                       "and cannot be shown. Make the file again with these nodes.";
  return check;
}

}  // namespace qdlflex::cli
