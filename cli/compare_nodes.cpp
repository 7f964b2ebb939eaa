// Header, nodes, masses, faces and interface nodes of two bodies.

#include <array>
#include <memory>
#include <span>
#include <tuple>

#include "body_pair.h"
#include "faces.h"

namespace qdlflex::cli {

namespace {

constexpr std::array<const char *, 3> kAxes = {"x", "y", "z"};

// Indices of blocks.
constexpr int32_t kNodalMasses = 8;
constexpr int32_t kNodalInertias = 9;

std::string node_name(const NodePair &node) {
  return "node " + std::to_string(node.id);
}

/// The nodes of one body that the other lacks.
Listing nodes_missing(QDL_Record *from, QDL_Record *in) {
  Listing missing;
  for (int32_t index = 0; index < QDL_NodeCount(in); ++index) {
    const int32_t id = QDL_NodeID(in, index);
    if (QDL_NodeIndex(from, id) < 0) {
      missing.add(std::to_string(id));
    }
  }
  return missing;
}

std::vector<NodePair> pair_nodes(QDL_Record *a, QDL_Record *b) {
  std::vector<NodePair> pairs;
  for (int32_t index = 0; index < QDL_NodeCount(a); ++index) {
    const int32_t id = QDL_NodeID(a, index);
    if (const int32_t other = QDL_NodeIndex(b, id); other >= 0) {
      pairs.push_back({id, index, other});
    }
  }
  return pairs;
}

using Triple = std::array<double, 3>;

Triple coordinates(QDL_Record *record, int32_t index) {
  Triple xyz{};
  QDL_NodeCoordinates(record, index, xyz.data());
  return xyz;
}

double largest_coordinate(const BodyPair &bodies) {
  double largest = 0.0;
  for (const NodePair &node : bodies.nodes) {
    for (const double value : coordinates(bodies.a, node.a)) {
      largest = std::max(largest, std::abs(value));
    }
  }
  return largest;
}

BlockDifference compare_coordinates(BodyPair &bodies) {
  BlockDifference block = bodies.block("nodal coordinates");
  for (const auto &[from, in, where] :
       {std::tuple(bodies.b, bodies.a, "only in A"), std::tuple(bodies.a, bodies.b, "only in B")}) {
    if (const Listing missing = nodes_missing(from, in); missing.count() > 0) {
      block.remark(missing.text(where));
    }
  }
  bodies.nodes = pair_nodes(bodies.a, bodies.b);
  bodies.size = largest_coordinate(bodies);
  for (const NodePair &node : bodies.nodes) {
    const Triple a = coordinates(bodies.a, node.a);
    const Triple b = coordinates(bodies.b, node.b);
    for (size_t k = 0; k < 3; ++k) {
      block.compare(a[k], b[k], bodies.size, [&] { return node_name(node) + ", " + kAxes[k]; });
    }
  }
  return block;
}

BlockDifference compare_global_mass(const BodyPair &bodies) {
  BlockDifference block = bodies.block("global body properties");
  struct Global {
    double mass = 0.0;
    Triple centre{};
    std::array<double, 9> inertia{};
  };
  const auto read = [](QDL_Record *record) {
    Global global;
    QDL_TotalMassInertia(record, &global.mass, global.centre.data(), global.inertia.data());
    return global;
  };
  const Global a = read(bodies.a);
  const Global b = read(bodies.b);
  block.compare(a.mass, b.mass, 0.0, [] { return "mass"; });
  for (size_t k = 0; k < 3; ++k) {
    block.compare(a.centre[k], b.centre[k], bodies.size,
                  [k] { return std::string("centre of mass, ") + kAxes[k]; });
  }
  const double largest = largest_magnitude({a.inertia.begin(), a.inertia.end()});
  for (size_t k = 0; k < 9; ++k) {
    block.compare(a.inertia[k], b.inertia[k], largest,
                  [k] { return std::string("inertia, ") + kAxes[k / 3] + kAxes[k % 3]; });
  }
  return block;
}

BlockDifference compare_masses(const BodyPair &bodies) {
  BlockDifference block = bodies.block("nodal masses");
  if (block.both(QDL_Exists(bodies.a, kNodalMasses) != 0,
                 QDL_Exists(bodies.b, kNodalMasses) != 0)) {
    for (const NodePair &node : bodies.nodes) {
      block.compare(QDL_NodalMass(bodies.a, node.a), QDL_NodalMass(bodies.b, node.b), 0.0,
                    [&] { return node_name(node); });
    }
  }
  return block;
}

BlockDifference compare_inertias(const BodyPair &bodies) {
  BlockDifference block = bodies.block("nodal inertias");
  if (!block.both(QDL_Exists(bodies.a, kNodalInertias) != 0,
                  QDL_Exists(bodies.b, kNodalInertias) != 0)) {
    return block;
  }
  for (const NodePair &node : bodies.nodes) {
    std::vector<double> a(9);
    std::vector<double> b(9);
    const int32_t any =
        QDL_NodalInertia(bodies.a, node.a, a.data()) | QDL_NodalInertia(bodies.b, node.b, b.data());
    const double largest = largest_magnitude(a);
    for (size_t k = 0; any != 0 && k < 9; ++k) {
      block.compare(a[k], b[k], largest,
                    [&] { return node_name(node) + ", " + kAxes[k / 3] + kAxes[k % 3]; });
    }
  }
  return block;
}

/// Faces by node identifiers, each from its smallest one on, in an order of their own.
class FaceSet {
 public:
  using Face = std::span<const int32_t>;

  explicit FaceSet(QDL_Record *record) {
    const std::vector<int32_t> list = read_faces(record);
    ids_.reserve(list.size());
    for_each_face(list, [&](Face nodes) {
      const auto first = std::ssize(ids_);
      for (const int32_t node : nodes) {
        ids_.push_back(QDL_NodeID(record, node));
      }
      std::rotate(ids_.begin() + first, std::min_element(ids_.begin() + first, ids_.end()),
                  ids_.end());
      faces_.push_back(Face(ids_).last(nodes.size()));
    });
    std::ranges::sort(faces_, [](const Face &a, const Face &b) {
      return std::ranges::lexicographical_compare(a, b);
    });
  }

  const std::vector<Face> &faces() const { return faces_; }

 private:
  std::vector<int32_t> ids_;
  std::vector<Face> faces_;
};

Listing faces_missing(const FaceSet &from, const FaceSet &in) {
  Listing missing;
  auto other = from.faces().begin();
  for (const FaceSet::Face &face : in.faces()) {
    while (other != from.faces().end() && std::ranges::lexicographical_compare(*other, face)) {
      ++other;
    }
    if (other != from.faces().end() && std::ranges::equal(*other, face)) {
      ++other;
      continue;
    }
    std::string nodes;
    for (const int32_t node : face) {
      nodes += (nodes.empty() ? "" : "-") + std::to_string(node);
    }
    missing.add(nodes);
  }
  return missing;
}

std::vector<int32_t> interface_nodes(QDL_Record *record) {
  int32_t count = 0;
  int32_t *const ids = QDL_InterfaceNodeIDs(record, &count);
  std::vector<int32_t> sorted(ids, ids + count);
  QDL_FreeMemory(ids);
  std::ranges::sort(sorted);
  return sorted;
}

void remark_missing(BlockDifference &block, const std::vector<int32_t> &from,
                    const std::vector<int32_t> &in, const char *where) {
  Listing missing;
  for (const int32_t id : in) {
    if (!std::ranges::binary_search(from, id)) {
      missing.add(std::to_string(id));
    }
  }
  if (missing.count() > 0) {
    block.remark(missing.text(where));
  }
}

}  // namespace

void compare_header(const BodyPair &bodies, BlockDifferences &blocks) {
  struct Header {
    std::array<char, 129> title{}, input{}, type{};
    std::array<std::array<char, 81>, 3> comments{};
  };
  const auto read = [](QDL_Record *record) {
    Header header;
    QDL_Header(record, header.title.data(), nullptr, header.input.data(), header.type.data(),
               header.comments[0].data(), header.comments[1].data(), header.comments[2].data());
    return header;
  };
  const Header a = read(bodies.a);
  const Header b = read(bodies.b);
  BlockDifference block = bodies.block("header");
  block.compare_texts("title", a.title.data(), b.title.data());
  block.compare_texts("input file", a.input.data(), b.input.data());
  block.compare_texts("input type", a.type.data(), b.type.data());
  for (size_t k = 0; k < 3; ++k) {
    block.compare_texts("comment " + std::to_string(k + 1), a.comments[k].data(),
                        b.comments[k].data());
  }
  blocks.push_back(block);
}

void compare_nodes(BodyPair &bodies, BlockDifferences &blocks) {
  blocks.push_back(compare_coordinates(bodies));
  blocks.push_back(compare_global_mass(bodies));
  blocks.push_back(compare_masses(bodies));
  blocks.push_back(compare_inertias(bodies));
}

void compare_faces(const BodyPair &bodies, BlockDifferences &blocks) {
  BlockDifference faces = bodies.block("element faces");
  const FaceSet a(bodies.a);
  const FaceSet b(bodies.b);
  if (const Listing missing = faces_missing(b, a); missing.count() > 0) {
    faces.remark(missing.text("only in A"));
  }
  if (const Listing missing = faces_missing(a, b); missing.count() > 0) {
    faces.remark(missing.text("only in B"));
  }
  blocks.push_back(faces);

  BlockDifference interface = bodies.block("interface nodes");
  const std::vector<int32_t> ids_a = interface_nodes(bodies.a);
  const std::vector<int32_t> ids_b = interface_nodes(bodies.b);
  remark_missing(interface, ids_b, ids_a, "only in A");
  remark_missing(interface, ids_a, ids_b, "only in B");
  blocks.push_back(interface);
}

}  // namespace qdlflex::cli
