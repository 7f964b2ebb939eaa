#include "geometry/qdlcoarse.h"

#include <optional>

#include <qdlflex/qdlflex.h>

#include "geometry/qdlcoarse_arguments.h"
#include "geometry/qdlcoarse_merge.h"
#include "geometry/qdlcoarse_mesh.h"
#include "record/derived.h"
#include "record/lookups.h"
#include "support/boundary.h"
#include "support/time_monitor.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlcoarse";

std::optional<CoarseMesh> working_mesh(const QDL_Record &record) {
  std::optional<CoarseMesh> mesh;
  if (CoarseMesh::accepts(record)) {
    guarded(kArea, false, [&] {
      mesh.emplace(record);
      return true;
    });
  }
  return mesh;
}

/// Keeps nodes out of the coarsening and reports each of them at its first mention.
class Preserver {
 public:
  Preserver(const QDL_Record &record, CoarseMesh &mesh)
      : record_(record), mesh_(mesh), preserved_(record.nodes.size()) {
    QDL_Info("Preserving nodes: ");
  }

  void preserve(std::int32_t node) {
    const auto index = static_cast<std::size_t>(node);
    if (!is_node_index(record_, node) || preserved_[index])
      return;
    preserved_[index] = true;
    any_ = true;
    mesh_.nodes[index].removable = false;
    QDL_Info("%d ", node_id(record_, node));
  }

  bool any() const { return any_; }

 private:
  const QDL_Record &record_;
  CoarseMesh &mesh_;
  std::vector<bool> preserved_;
  bool any_ = false;
};

void preserve_nodes(QDL_Record &record, const TrimArguments &arguments, CoarseMesh &mesh) {
  Preserver preserver(record, mesh);
  for (const std::int32_t node : record.interface_nodes)
    preserver.preserve(node);
  for (const std::int32_t id : arguments.preserved_ids)
    preserver.preserve(find_node(record, id));
  if (arguments.preserve_stress) {
    for (const std::int32_t kind : {kModalStress, kModalStrain}) {
      for (const std::int32_t node :
           record.mode_data[static_cast<std::size_t>(kind)].nodes.node_of_slot)
        preserver.preserve(node);
    }
  }
  if (!preserver.any())
    QDL_Info(" NONE");
}

void report_start(const TrimArguments &arguments) {
  const auto percent = static_cast<int>(arguments.resolution * 100.0);
  // The doubled percent signs are part of the text.
  if (arguments.drop_colinear)
    QDL_Info(
        "Coarsening to resolution %d%%%% with face-angle %5.2lf deg and co-linear vertex removal",
        percent, arguments.angle);
  else
    QDL_Info("Coarsening to resolution %d%%%% with face-angle %5.2lf deg", percent,
             arguments.angle);
}

void merge_faces(const TrimArguments &arguments, CoarseMesh &mesh) {
  constexpr int kStamps = 100;
  const double reach = arguments.resolution * mesh.diagonal();
  FaceMerger merger(mesh, reach * reach, arguments.angle);
  const TimeMonitor monitor(kStamps);
  const auto count = static_cast<std::int32_t>(mesh.nodes.size());
  const bool stamped = count > kStamps;
  for (std::int32_t node = 0; node < count; ++node) {
    if (stamped && node % (count / kStamps) == 0)
      monitor.stamp();
    merger.visit(node);
  }
}

void replace_faces(QDL_Record &record, FaceList faces) {
  const std::int32_t before = record.faces.count;
  record.faces = std::move(faces);
  record.coarsened = true;
  note_faces_changed(record);
  QDL_Info("\nFace reduction from %d to %d", before, record.faces.count);
}

}  // namespace

bool trim_geometry(QDL_Record &record, const std::string &text) {
  std::optional<CoarseMesh> mesh = working_mesh(record);
  if (!mesh) {
    QDL_Error("Problem encountered while trimming geometry\n");
    return false;
  }
  return guarded(kArea, false, [&] {
    const TrimArguments arguments = parse_trim_arguments(text);
    report_start(arguments);
    preserve_nodes(record, arguments, *mesh);
    merge_faces(arguments, *mesh);
    if (arguments.drop_colinear)
      drop_colinear_corners(*mesh);
    replace_faces(record, mesh->face_list());
    return true;
  });
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_TrimGeometry(QDL_Record *model, const char *arguments) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return arguments == nullptr || trim_geometry(record, arguments);
  });
}
