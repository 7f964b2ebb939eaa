#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <numeric>

#include "export_files.h"
#include "faces.h"
#include "free_edges.h"

namespace qdlflex::cli {

namespace {

/// Cells by the places of their points; VTK wants the end of each cell in the list.
struct Cells {
  std::vector<int32_t> connectivity;
  std::vector<int32_t> ends;

  void add(std::span<const int32_t> points) {
    connectivity.insert(connectivity.end(), points.begin(), points.end());
    ends.push_back(static_cast<int32_t>(connectivity.size()));
  }

  int64_t count() const { return std::ssize(ends); }
};

VtkSection cell_section(std::string name, Cells cells) {
  return {std::move(name),
          {vtk_array("connectivity", 1, std::move(cells.connectivity)),
           vtk_array("offsets", 1, std::move(cells.ends))}};
}

uint8_t cell_type(size_t point_count) {
  constexpr std::array<uint8_t, 5> kTypes = {0, 1, 3, 5, 9};  // vertex, line, triangle, quad
  constexpr uint8_t kPolygon = 7;
  return point_count < kTypes.size() ? kTypes[point_count] : kPolygon;
}

VtkSection points(QDL_Record *record, const std::vector<int32_t> &nodes) {
  std::vector<double> positions(3 * nodes.size());
  for (size_t k = 0; k < nodes.size(); ++k) {
    QDL_NodeCoordinates(record, nodes[k], positions.data() + 3 * k);
  }
  return {"Points", {vtk_array("Points", 3, std::move(positions))}};
}

VtkSection point_data(QDL_Record *record, const ExportOptions &options,
                      const std::vector<int32_t> &nodes) {
  std::vector<int32_t> identifiers;
  identifiers.reserve(nodes.size());
  for (const int32_t node : nodes) {
    identifiers.push_back(QDL_NodeID(record, node));
  }
  VtkSection section = {"PointData", {vtk_array("Node", 1, std::move(identifiers))}};
  for (VtkArray &field :
       mode_fields(record, ModeSelection(options.modes).of(record), nodes, options.fields)) {
    section.arrays.push_back(std::move(field));
  }
  return section;
}

void write(const ExportOptions &options, const VtkDocument &document) {
  OutputFile file(options.output);
  write_vtk(document, file);
  file.finish();
}

// --- Surface ----------------------------------------------------------------------------------

/// Indices of nodes given by their identifiers, without unknown ones.
std::vector<int32_t> indices(QDL_Record *record, std::span<const int32_t> identifiers) {
  std::vector<int32_t> nodes;
  nodes.reserve(identifiers.size());
  for (const int32_t identifier : identifiers) {
    nodes.push_back(QDL_NodeIndex(record, identifier));
  }
  std::erase(nodes, -1);
  return nodes;
}

std::vector<int32_t> interface_nodes(QDL_Record *record) {
  int32_t count = 0;
  const std::unique_ptr<int32_t, decltype(&QDL_FreeMemory)> identifiers(
      QDL_InterfaceNodeIDs(record, &count), QDL_FreeMemory);
  return indices(record, {identifiers.get(), static_cast<size_t>(count)});
}

/// The nodes that the surface uses, and their places among its points.
class SurfacePoints {
 public:
  explicit SurfacePoints(QDL_Record *record)
      : places_(static_cast<size_t>(QDL_NodeCount(record)), kUnused) {}

  void use(std::span<const int32_t> nodes) {
    for (const int32_t node : nodes) {
      places_[static_cast<size_t>(node)] = kUsed;
    }
  }

  bool uses(int32_t node) const { return places_[static_cast<size_t>(node)] != kUnused; }

  /// The nodes in use, in the order of the model, from now on with places.
  std::vector<int32_t> number() {
    std::vector<int32_t> nodes;
    for (size_t node = 0; node < places_.size(); ++node) {
      if (places_[node] != kUnused) {
        places_[node] = static_cast<int32_t>(nodes.size());
        nodes.push_back(static_cast<int32_t>(node));
      }
    }
    return nodes;
  }

  std::vector<int32_t> places(std::span<const int32_t> nodes) const {
    std::vector<int32_t> places;
    places.reserve(nodes.size());
    for (const int32_t node : nodes) {
      places.push_back(places_[static_cast<size_t>(node)]);
    }
    return places;
  }

 private:
  static constexpr int32_t kUnused = -1;
  static constexpr int32_t kUsed = 0;

  std::vector<int32_t> places_;
};

/// Cells of a polygonal data set by their kinds, with points by place.
struct SurfaceCells {
  Cells vertices;
  Cells lines;
  Cells polygons;

  void add(std::span<const int32_t> cell) {
    (cell.size() == 1 ? vertices : cell.size() == 2 ? lines : polygons).add(cell);
  }
};

}  // namespace

void export_vtu(const ExportOptions &options) {
  check_output_is_not(options.input, options.output);
  const Record record = open_record(options.input);
  std::vector<int32_t> nodes(static_cast<size_t>(QDL_NodeCount(record.get())));
  std::iota(nodes.begin(), nodes.end(), 0);

  Cells cells;
  std::vector<uint8_t> types;
  std::vector<bool> used(nodes.size());
  const auto add = [&](std::span<const int32_t> cell) {
    cells.add(cell);
    types.push_back(cell_type(cell.size()));
    for (const int32_t node : cell) {
      used[static_cast<size_t>(node)] = true;
    }
  };
  for_each_face(read_faces(record.get()), add);
  for (const int32_t node : nodes) {
    if (!used[static_cast<size_t>(node)]) {
      add({&node, 1});
    }
  }
  const int64_t cell_count = cells.count();
  VtkSection cell_arrays = cell_section("Cells", std::move(cells));
  cell_arrays.arrays.push_back(vtk_array("types", 1, std::move(types)));
  write(options, {"UnstructuredGrid",
                  {{"NumberOfPoints", std::ssize(nodes)}, {"NumberOfCells", cell_count}},
                  {point_data(record.get(), options, nodes), points(record.get(), nodes),
                   std::move(cell_arrays)}});
}

void export_vtp(const ExportOptions &options) {
  check_output_is_not(options.input, options.output);
  const Record record = open_record(options.input);
  const std::vector<int32_t> faces = read_outer_faces(record.get());
  const auto edges = read_free_edges(record.get());
  const std::vector<int32_t> interface = interface_nodes(record.get());

  SurfacePoints surface(record.get());
  for_each_face(faces, [&](std::span<const int32_t> face) { surface.use(face); });
  std::vector<int32_t> loose;
  std::ranges::copy_if(interface, std::back_inserter(loose),
                       [&](int32_t node) { return !surface.uses(node); });
  surface.use(loose);
  const std::vector<int32_t> nodes = surface.number();

  SurfaceCells cells;
  for (const int32_t place : surface.places(loose)) {
    cells.add({&place, 1});
  }
  for_each_face(faces, [&](std::span<const int32_t> face) { cells.add(surface.places(face)); });
  for (const std::vector<int32_t> &edge : edges) {
    cells.lines.add(surface.places(indices(record.get(), edge)));
  }
  const std::array<int64_t, 3> counts = {cells.vertices.count(), cells.lines.count(),
                                         cells.polygons.count()};
  // Cells are numbered vertices, lines, polygons; free edges are the last of the lines.
  std::vector<uint8_t> is_edge(static_cast<size_t>(counts[0] + counts[1] + counts[2]));
  std::fill_n(is_edge.begin() + counts[0] + counts[1] - std::ssize(edges), edges.size(), 1);

  write(options, {"PolyData",
                  {{"NumberOfPoints", std::ssize(nodes)},
                   {"NumberOfVerts", counts[0]},
                   {"NumberOfLines", counts[1]},
                   {"NumberOfStrips", 0},
                   {"NumberOfPolys", counts[2]}},
                  {point_data(record.get(), options, nodes),
                   {"CellData", {vtk_array("Free edge", 1, std::move(is_edge))}},
                   points(record.get(), nodes),
                   cell_section("Verts", std::move(cells.vertices)),
                   cell_section("Lines", std::move(cells.lines)),
                   cell_section("Polys", std::move(cells.polygons))}});
}

}  // namespace qdlflex::cli
