#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cstring>

#include "io/block_writer.h"
#include "record/faces.h"

namespace qdlflex {

bool BlockWriter::nodal_coordinates() {
  const std::vector<Node> &nodes = record_.nodes;
  QDL_Info("\nNode info:\n   Count: %ld", static_cast<long>(nodes.size()));
  const auto at_origin = [](const Node &node) { return node.xyz == Vector3{0.0, 0.0, 0.0}; };
  if (const auto count = std::ranges::count_if(nodes, at_origin); count > 0) {
    QDL_Warning("Found %d node(s) with coordinates (0,0,0).  They are:", static_cast<int>(count));
    for (const Node &node : nodes) {
      if (at_origin(node))
        QDL_Warning("   %d", node.id);
    }
  }
  if (!sink_.i32(node_count(record_)) || !sink_.i32(3))
    return false;
  return std::ranges::all_of(nodes, [&](const Node &node) {
    return sink_.i32(node.id) && sink_.reals(node.xyz.data(), node.xyz.size());
  });
}

bool BlockWriter::global_body_properties() {
  const GlobalMass &global = record_.global_mass;
  const Vector3 &centre = global.centre;
  const Matrix3 &inertia = global.inertia;
  QDL_Info("\nGlobal body properties:");
  QDL_Info("Mass          : %lf\n", global.mass);
  QDL_Info("Center of Mass: %lf %lf %lf", centre[0], centre[1], centre[2]);
  QDL_Info("Inertia Tensor: %lf %lf %lf", inertia[0], inertia[1], inertia[2]);
  QDL_Info("                %lf %lf %lf", inertia[3], inertia[4], inertia[5]);
  QDL_Info("                %lf %lf %lf", inertia[6], inertia[7], inertia[8]);
  return sink_.real(global.mass) && sink_.reals(centre.data(), centre.size()) &&
         sink_.reals(inertia.data(), inertia.size());
}

bool BlockWriter::nodal_masses() {
  const std::vector<Node> &nodes = record_.nodes;
  if (const auto count = std::ranges::count(nodes, 0.0, &Node::mass); count > 0) {
    QDL_Warning("Found %d massless node(s)", static_cast<int>(count));
  }
  if (!sink_.i32(node_count(record_)) || !sink_.i32(1))
    return false;
  return std::ranges::all_of(
      nodes, [&](const Node &node) { return sink_.i32(node.id) && sink_.real(node.mass); });
}

bool BlockWriter::nodal_inertias() {
  // Rows and columns are rotational degrees of freedom; only values that are not zero are written.
  constexpr char kRows[6] = {4, 5, 6, 4, 4, 5};
  constexpr char kColumns[6] = {4, 5, 6, 5, 6, 6};
  std::int64_t count = 0;
  for (const Node &node : record_.nodes) {
    if (node.inertia != nullptr)
      count += 6 - std::ranges::count(*node.inertia, 0.0);
  }
  QDL_Info("\nNodal inertia info:\n   Sparse matrix entries: %ld", static_cast<long>(count));
  if (count > INT32_MAX || !sink_.i32(static_cast<std::int32_t>(count)))
    return false;
  for (const Node &node : record_.nodes) {
    for (std::size_t i = 0; node.inertia != nullptr && i < 6; ++i) {
      const double value = (*node.inertia)[i];
      if (value == 0.0)
        continue;
      if (!sink_.i32(node.id) || !sink_.byte(kRows[i]) || !sink_.byte(kColumns[i]) ||
          !sink_.real(value)) {
        return false;
      }
    }
  }
  return true;
}

bool BlockWriter::units() {
  UnitName mass{};
  UnitName length{};
  UnitName time{};
  UnitName force{};
  QDL_Units(&record_, mass.data(), length.data(), time.data(), force.data());
  QDL_Info("\nUnits:\n   Mass:   %s\n   Length: %s\n   Time:   %s\n   Force:  %s", mass.data(),
           length.data(), time.data(), force.data());
  for (const UnitName *name : {&mass, &length, &time, &force}) {
    if (!sink_.characters(name->data(), name->size()))
      return false;
  }
  return true;
}

bool BlockWriter::interface_nodes() {
  const std::vector<std::int32_t> &nodes = record_.interface_nodes;
  if (!sink_.i32(static_cast<std::int32_t>(nodes.size())))
    return false;
  return std::ranges::all_of(nodes,
                             [&](std::int32_t node) { return sink_.i32(node_id(record_, node)); });
}

bool BlockWriter::element_faces() {
  const std::vector<std::int32_t> &list = record_.faces.list;
  QDL_Info("\nNumber of Element Faces: %d", record_.faces.count);
  constexpr std::size_t kLongest = INT32_MAX / 4 - 1;
  if (list.size() > kLongest)
    return false;
  return sink_.i32(4 + 4 * static_cast<std::int32_t>(list.size())) &&
         sink_.i32s(list.data(), list.size());
}

/// Runs of faces with equal node counts make the groups, so that the order of the faces survives.
bool BlockWriter::element_topology() {
  using Face = std::span<const std::int32_t>;
  std::vector<std::vector<Face>> groups;
  for_each_face(record_.faces, [&](Face face) {
    if (groups.empty() || groups.back().front().size() != face.size())
      groups.emplace_back();
    groups.back().push_back(face);
  });
  if (!sink_.i32(0) || !sink_.i32(static_cast<std::int32_t>(groups.size())))
    return false;
  return std::ranges::all_of(groups, [&](const std::vector<Face> &group) {
    return sink_.i32(0) && sink_.i32(static_cast<std::int32_t>(group.size())) &&
           sink_.i32(static_cast<std::int32_t>(group.front().size())) && face_group(group);
  });
}

bool BlockWriter::face_group(std::span<const std::span<const std::int32_t>> faces) {
  return std::ranges::all_of(faces, [&](std::span<const std::int32_t> face) {
    return sink_.i32(0) && sink_.i32(0) && std::ranges::all_of(face, [&](std::int32_t node) {
             return sink_.i32(node_id(record_, node));
           });
  });
}

}  // namespace qdlflex
