// Measures how the cost of jobs grows with what they work on; scripts/bench draws the curves.
//
//   growth       prints job, unit, size and seconds of every point as CSV

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/sample.h"
#include "bench/surface.h"

namespace {

using namespace qdlflex::bench;

template <class Job>
double seconds(const Job &job) {
  const auto start = std::chrono::steady_clock::now();
  job();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Job>
double best_of_five(const Job &job) {
  double best = seconds(job);
  for (int i = 1; i < 5; ++i)
    best = std::min(best, seconds(job));
  return best;
}

// Such a job changes the model: it is measured once.
template <class Job>
double on_sheet(std::int32_t faces, const Job &job) {
  const Model model(QDL_Create(faces, 0));
  set_surface(model, wavy_sheet(static_cast<int>(std::sqrt(faces))));
  return seconds([&] { job(model); });
}

template <class Job>
double on_body(std::int32_t nodes, std::int32_t modes, const Job &job) {
  const Model model(QDL_Create(nodes, modes));
  set_nodes(model, nodes);
  for (std::int32_t node = 1; node <= nodes; ++node)
    QDL_SetNodalMass(model, node, 1e-3);
  set_modes(model, nodes, modes);
  return best_of_five([&] { job(model); });
}

double open_file(std::int32_t nodes, std::int32_t modes) {
  const Folder folder;
  const std::string path = folder.file("body.qdl");
  write_sample(path, nodes, modes, "no_ortho");
  return best_of_five([&] { QDL_UnLink(QDL_CreateFromQDL(path.c_str())); });
}

double fetch(std::int32_t nodes) {
  const Folder folder;
  const std::string path = folder.file("body.qdl");
  write_sample(path, nodes, 4, "no_ortho");
  const Model model(QDL_CreateFromQDL(path.c_str()));
  std::vector<double> values(3 * static_cast<std::size_t>(nodes));
  return best_of_five([&] { QDL_Read_Mode_Double(model, 2, QDL_MODE_SHAPE, values.data(), 0); });
}

double add_and_find(std::int32_t nodes) {
  return best_of_five([&] {
    const Model model(QDL_Create(nodes, 0));
    set_nodes(model, nodes);
    for (std::int32_t id = 1; id <= nodes; ++id)
      require(QDL_NodeIndex(model, id) == id - 1, "a node is found");
  });
}

void compute_invariants(QDL_Record *model) {
  QDL_SetNodalMass(model, 1, 1.0);  // what was computed before counts no more
  QDL_FullComputeInvars(model);
}

double combine(std::int32_t modes) {
  const auto order = static_cast<std::size_t>(modes);
  std::vector<double> coefficients(order * order);
  for (std::size_t i = 0; i < order; ++i) {
    for (std::size_t j = 0; j < order; ++j)
      coefficients[i * order + j] = i == j ? 1.0 : 1e-3;
  }
  return on_body(2000, modes, [&](QDL_Record *model) {
    QDL_TransformModes(model, QDL_MODE_SHAPE, modes, coefficients.data());
  });
}

struct Curve {
  const char *job;
  const char *unit;
  std::vector<std::int32_t> sizes;
  double (*measure)(std::int32_t size);
};

const Curve kCurves[] = {
    {"add and find nodes", "nodes", {1000, 10000, 100000, 1000000}, add_and_find},
    {"open a file of 10 modes",
     "nodes",
     {1000, 10000, 100000},
     [](std::int32_t nodes) { return open_file(nodes, 10); }},
    {"fetch half a mode", "nodes", {1000, 10000, 100000, 1000000}, fetch},
    {"full invariants of 20 modes",
     "nodes",
     {1000, 10000, 100000},
     [](std::int32_t nodes) { return on_body(nodes, 20, compute_invariants); }},
    {"open a file of 1,000 nodes",
     "modes",
     {10, 100, 1000},
     [](std::int32_t modes) { return open_file(1000, modes); }},
    {"full invariants of 2,000 nodes",
     "modes",
     {10, 30, 100, 300},
     [](std::int32_t modes) { return on_body(2000, modes, compute_invariants); }},
    {"combine modes of 2,000 nodes", "modes", {10, 30, 100, 300}, combine},
    {"strip common faces",
     "faces",
     {10000, 100000, 1000000},
     [](std::int32_t faces) { return on_sheet(faces, QDL_StripCommonFaces); }},
    {"free edges",
     "faces",
     {10000, 100000, 1000000},
     [](std::int32_t faces) { return on_sheet(faces, QDL_GenerateFreeEdges); }},
    {"coarsen",
     "faces",
     {10000, 100000, 1000000},
     [](std::int32_t faces) {
       // Patches of as many faces whatever the size.
       const std::string arguments = std::to_string(2.0 / std::sqrt(faces)) + ",10,1";
       return on_sheet(faces,
                       [&](QDL_Record *model) { QDL_TrimGeometry(model, arguments.c_str()); });
     }},
};

}  // namespace

int main() {
  for (const Curve &curve : kCurves) {
    for (const std::int32_t size : curve.sizes) {
      std::printf("\"%s\",%s,%d,%.9f\n", curve.job, curve.unit, size, curve.measure(size));
      std::fflush(stdout);
    }
  }
  return 0;
}
