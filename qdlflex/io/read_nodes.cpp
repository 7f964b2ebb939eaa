#include <qdlflex/qdlflex.h>

#include <numeric>

#include "io/block_reader.h"
#include "record/lookups.h"

namespace qdlflex {

bool BlockReader::nodal_coordinates() {
  return read(Block::kNodalCoordinates, "Out of memory while reading Nodal Coordinate block",
              &BlockReader::read_nodal_coordinates);
}

Reading BlockReader::read_nodal_coordinates() {
  std::int32_t count = 0;
  std::int32_t dimension = 0;
  if (!source_.i32(count) || !source_.i32(dimension))
    return Reading::kProblem;
  if (count <= 0) {
    QDL_Error("Out of memory while reading Nodal Coordinate block");
    return Reading::kReported;
  }
  if (dimension != 3) {
    QDL_Error("Node location should only be specified with 3 coordinates, not %ld",
              static_cast<long>(dimension));
  }
  const Encoding &encoding = source_.encoding();
  const std::int64_t record_bytes = 4 + 3 * encoding.real_bytes();
  if (!source_.fits(count, record_bytes))
    return Reading::kProblem;
  record_.nodes.reserve(static_cast<std::size_t>(count));
  const bool read = source_.records(count, record_bytes, [&](const unsigned char *bytes) {
    Node &node = record_.nodes.emplace_back();
    node.id = decode_i32(bytes, encoding);
    decode_reals(node.xyz.data(), bytes + 4, 3, encoding);
    return true;
  });
  return read ? Reading::kDone : Reading::kProblem;
}

bool BlockReader::global_body_properties() {
  return read(Block::kGlobalBodyProperties, nullptr, &BlockReader::read_global_body_properties);
}

Reading BlockReader::read_global_body_properties() {
  GlobalMass &global = record_.global_mass;
  const bool read = source_.real(global.mass) &&
                    source_.reals(global.centre.data(), global.centre.size()) &&
                    source_.reals(global.inertia.data(), global.inertia.size());
  return read ? Reading::kDone : Reading::kProblem;
}

Node *BlockReader::node_of(std::int32_t id) {
  if (next_node_ >= record_.nodes.size() || record_.nodes[next_node_].id != id) {
    const std::int32_t index = find_node(record_, id);
    const bool file_lists_nodes =
        in_file(record_, Block::kNodalCoordinates) || in_file(record_, Block::kModeShapes);
    if (index == kNoIndex && file_lists_nodes)
      return nullptr;
    if (index == kNoIndex) {
      record_.nodes.emplace_back().id = id;
      note_added_node(record_);
    }
    next_node_ = index == kNoIndex ? record_.nodes.size() - 1 : static_cast<std::size_t>(index);
  }
  return &record_.nodes[next_node_++];
}

bool BlockReader::nodal_masses() {
  return read(Block::kNodalMasses, nullptr, &BlockReader::read_nodal_masses);
}

Reading BlockReader::read_nodal_masses() {
  std::int32_t count = 0;
  std::int32_t values = 0;
  if (!source_.i32(count) || !source_.i32(values) || values < 1)
    return Reading::kProblem;
  if (values > 1) {
    QDL_Warning("Each node must possess a single scalar mass");
    QDL_Warning("Generating scalar by averaging %d values", values);
  }
  const Encoding &encoding = source_.encoding();
  const std::int64_t record_bytes = 4 + std::int64_t{values} * encoding.real_bytes();
  if (!source_.fits(count, record_bytes))
    return Reading::kProblem;
  if (count == 0)
    return Reading::kDone;
  std::vector<double> masses(static_cast<std::size_t>(values));
  next_node_ = 0;
  const bool read = source_.records(count, record_bytes, [&](const unsigned char *bytes) {
    Node *node = node_of(decode_i32(bytes, encoding));
    if (node == nullptr)
      return false;
    if (node->mass != 0.0)
      QDL_Warning("Redefining mass of Node %d", node->id);
    decode_reals(masses.data(), bytes + 4, masses.size(), encoding);
    node->mass = std::accumulate(masses.begin() + 1, masses.end(), masses[0]) / values;
    return true;
  });
  return read ? Reading::kDone : Reading::kProblem;
}

bool BlockReader::nodal_inertias() {
  return read(Block::kNodalInertias, nullptr, &BlockReader::read_nodal_inertias);
}

Reading BlockReader::read_nodal_inertias() {
  std::int32_t count = 0;
  if (!source_.i32(count))
    return Reading::kProblem;
  const Encoding &encoding = source_.encoding();
  const std::int64_t record_bytes = 4 + 2 * encoding.character_bytes() + encoding.real_bytes();
  if (!source_.fits(count, record_bytes))
    return Reading::kProblem;
  next_node_ = 0;
  Reading entry = Reading::kDone;
  const bool read = source_.records(count, record_bytes, [&](const unsigned char *bytes) {
    entry = read_inertia_entry(bytes);
    return entry == Reading::kDone;
  });
  return read ? Reading::kDone : entry == Reading::kDone ? Reading::kProblem : entry;
}

Reading BlockReader::read_inertia_entry(const unsigned char *bytes) {
  const Encoding &encoding = source_.encoding();
  const std::int32_t step = encoding.character_bytes();
  const int row = static_cast<signed char>(decode_character(bytes + 4, encoding));
  const int column = static_cast<signed char>(decode_character(bytes + 4 + step, encoding));
  const bool bad_row = row < 4 || row > 6;
  const bool bad_column = column < 4 || column > 6;
  if (bad_row) {
    QDL_Error("Row index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n", row);
  }
  if (bad_column) {
    QDL_Error("Column index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n",
              column);
  }
  if (bad_row || bad_column)
    return Reading::kReported;

  Node *node = node_of(decode_i32(bytes, encoding));
  if (node == nullptr)
    return Reading::kProblem;
  --next_node_;  // a node has several entries
  if (node->inertia == nullptr &&
      !with_memory([&] { node->inertia = std::make_unique<Vector6>(); })) {
    QDL_Error("Error allocating memory for inertia matrix for node %d\n", node->id);
    return Reading::kReported;
  }
  const std::size_t place =
      symmetric_place(static_cast<std::size_t>(row - 4), static_cast<std::size_t>(column - 4));
  double &value = (*node->inertia)[place];
  if (value != 0.0)
    QDL_Warning("Redefining mass of Nodal inertia %d", node->id);
  value = decode_real(bytes + 4 + 2 * step, encoding);
  return Reading::kDone;
}

bool BlockReader::interface_nodes() {
  return read(Block::kInterfaceNodes, "Out of memory while reading Interface Nodes block",
              &BlockReader::read_interface_nodes);
}

Reading BlockReader::read_interface_nodes() {
  std::int32_t count = 0;
  if (!source_.i32(count) || !source_.fits(count, 4))
    return Reading::kProblem;
  std::vector<std::int32_t> &nodes = record_.interface_nodes;
  nodes.resize(static_cast<std::size_t>(count));
  if (!source_.i32s(nodes.data(), nodes.size()))
    return Reading::kProblem;
  record_.is_interface_node.assign(record_.nodes.size(), false);
  for (std::int32_t &node : nodes) {
    node = find_node(record_, node);
    if (node != kUnknownNode)
      record_.is_interface_node[static_cast<std::size_t>(node)] = true;
  }
  return Reading::kDone;
}

bool BlockReader::faces() {
  if (in_file(record_, Block::kElementFaces)) {
    return read(Block::kElementFaces, "Out of memory while reading Element Faces Block",
                &BlockReader::read_element_faces);
  }
  return read(Block::kElementTopology, "Out of memory while reading Element Topology Block",
              &BlockReader::read_element_topology);
}

Reading BlockReader::read_element_faces() {
  std::int32_t bytes = 0;
  if (!source_.i32(bytes) || bytes < 4 || bytes % 4 != 0)
    return Reading::kProblem;
  const std::int32_t length = bytes / 4 - 1;
  if (!source_.fits(length, 4))
    return Reading::kProblem;
  std::vector<std::int32_t> list(static_cast<std::size_t>(length));
  if (!source_.i32s(list.data(), list.size()))
    return Reading::kProblem;
  std::int32_t count = 0;
  std::int64_t place = 0;
  for (; place < length; ++count) {
    const std::int32_t nodes = list[static_cast<std::size_t>(place)];
    if (nodes < 0)
      return Reading::kProblem;
    place += 1 + std::int64_t{nodes};
  }
  if (place != length)
    return Reading::kProblem;
  record_.faces = {std::move(list), count, true};
  return Reading::kDone;
}

/// Each element record of the old block is one face; what it was called there no longer matters.
Reading BlockReader::read_element_topology() {
  std::int32_t ignored = 0;
  std::int32_t groups = 0;
  if (!source_.i32(ignored) || !source_.i32(groups) || groups < 0)
    return Reading::kProblem;
  FaceList faces;
  for (std::int32_t group = 0; group < groups; ++group) {
    if (!read_face_group(faces.list, faces.count))
      return Reading::kProblem;
  }
  faces.present = true;
  record_.faces = std::move(faces);
  return Reading::kDone;
}

bool BlockReader::read_face_group(std::vector<std::int32_t> &list, std::int32_t &count) {
  std::int32_t head[3];  // kind, elements, nodes per element
  if (!source_.i32s(head, 3) || head[1] < 0 || head[2] < 0)
    return false;
  const auto nodes = static_cast<std::size_t>(head[2]);
  if (!source_.fits(head[1], 4 * (std::int64_t{head[2]} + 2)))
    return false;
  if (head[1] == 0)
    return true;
  std::vector<std::int32_t> element(nodes + 2);
  for (std::int32_t i = 0; i < head[1]; ++i, ++count) {
    if (!source_.i32s(element.data(), element.size()))
      return false;
    list.push_back(head[2]);
    for (std::size_t n = 2; n < element.size(); ++n) {
      list.push_back(find_node(record_, element[n]));
    }
  }
  return true;
}

}  // namespace qdlflex
