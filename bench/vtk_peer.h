// A filter of VTK as the peer of a row. It runs in a Python process, which measures the filter
// alone: see vtk_peers.py.
#pragma once

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bench/sample.h"

namespace qdlflex::bench {

// A mesh of cells of one type, by VTK's number.
struct VtkMesh {
  std::vector<double> points;       // x, y, z of each
  std::vector<std::int64_t> cells;  // point indices
  int points_per_cell;
  int cell_type;
};

constexpr int kVtkTriangle = 5;
constexpr int kVtkQuad = 9;
constexpr int kVtkTetrahedron = 10;
constexpr int kVtkHexahedron = 12;

constexpr const char *kNoVtk = "python3-vtk9 is not installed";

struct VtkRun {
  double seconds = 0.0;
  std::int64_t cells = 0;  // that came out
};

template <class Value>
void write_values(const std::string &path, const std::vector<Value> &values) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char *>(values.data()),
             static_cast<std::streamsize>(values.size() * sizeof(Value)));
  require(file.good(), "a mesh can be written for VTK");
}

// The best time of "surface_filter" or "feature_edges"; none where VTK is not installed.
inline std::optional<VtkRun> run_vtk(const std::string &peer, const VtkMesh &mesh) {
  const Folder folder;
  write_values(folder.file("points.f64"), mesh.points);
  write_values(folder.file("cells.i64"), mesh.cells);
  std::ofstream(folder.file("shape.txt")) << mesh.points_per_cell << ' ' << mesh.cell_type;
  // Debian's own Python, which its package of VTK is made for.
  const std::string command =
      "/usr/bin/python3 " QDL_BENCH_SOURCE_DIR "/vtk_peers.py " + peer + ' ' + folder.file("");
  const std::unique_ptr<std::FILE, int (*)(std::FILE *)> output(::popen(command.c_str(), "r"),
                                                                &::pclose);
  VtkRun run;
  long long cells = 0;
  if (output == nullptr || std::fscanf(output.get(), "%lf %lld", &run.seconds, &cells) != 2)
    return std::nullopt;
  run.cells = cells;
  return run;
}

}  // namespace qdlflex::bench
