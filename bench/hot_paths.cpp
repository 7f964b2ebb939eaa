// Jobs whose instructions are counted by scripts/check-counts: unlike times, counts are the same on
// every run, so that a slower hot path shows in a check.
//
//   hot_paths NAME      only the call of `hot_path` counts

#include <array>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/sample.h"
#include "bench/surface.h"

namespace {

using namespace qdlflex::bench;

// Callgrind collects inside of this function alone.
__attribute__((noinline)) void hot_path(const std::function<void()> &job) {
  job();
}

void fetch_modes() {
  constexpr std::int32_t kNodes = 5000;
  constexpr std::int32_t kModes = 20;
  const Folder folder;
  const std::string path = folder.file("modes.qdl");
  write_sample(path, kNodes, kModes, "no_ortho");
  const Model model(QDL_CreateFromQDL(path.c_str()));
  std::vector<double> values(3 * std::size_t{kNodes});
  hot_path([&] {
    for (std::int32_t mode = 1; mode <= kModes; ++mode) {
      for (const std::int32_t part : {0, 1})
        QDL_Read_Mode_Double(model, mode, QDL_MODE_SHAPE, values.data(), part);
    }
  });
}

void find_nodes() {
  std::vector<std::int32_t> ids(100000);
  std::mt19937 random(7);
  for (std::int32_t &id : ids)
    id = static_cast<std::int32_t>(random() >> 1);
  const Model model(QDL_Create(static_cast<std::int32_t>(ids.size()), 0));
  hot_path([&] {
    for (const std::int32_t id : ids)
      QDL_SetNodeCoordinates(model, id, 1.0, 2.0, 3.0);
    for (const std::int32_t id : ids)
      require(QDL_NodeIndex(model, id) >= 0, "a node that was added is found");
  });
}

void solve_eigenproblem() {
  constexpr std::int32_t n = 80;
  std::vector<double> a(n * n);
  std::vector<double> b(n * n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      const double off = 1.0 / (1.0 + static_cast<double>(i + j));
      a[i * n + j] = off + (i == j ? 1.0 + static_cast<double>(i * i) : 0.0);
      b[i * n + j] = 0.1 * off + (i == j ? 1.0 : 0.0);
    }
  }
  std::vector<double> alfr(n), alfi(n), beta(n), z(n * n);
  const std::int32_t with_vectors = 1;
  const double eps1 = 0.0;
  std::int32_t ierr = 0;
  hot_path([&] {
    QDL_QZHESS(&n, &n, a.data(), b.data(), &with_vectors, z.data());
    QDL_QZITT(&n, &n, a.data(), b.data(), &eps1, &with_vectors, z.data(), &ierr);
    QDL_QZVALL(&n, &n, a.data(), b.data(), alfr.data(), alfi.data(), beta.data(), &with_vectors,
               z.data());
    QDL_QZVECC(&n, &n, a.data(), b.data(), alfr.data(), alfi.data(), beta.data(), z.data());
  });
  require(ierr == 0, "the solver converges");
}

void coarsen() {
  const QuadSurface surface = wavy_sheet(60);
  const Model model(QDL_Create(static_cast<std::int32_t>(surface.nodes.size()), 0));
  set_surface(model, surface);
  hot_path([&] { require(QDL_TrimGeometry(model, "0.1,20,1") == 1, "the faces are coarsened"); });
}

void compute_invariants() {
  constexpr std::int32_t kNodes = 2000;
  constexpr std::int32_t kModes = 30;
  const Model model(QDL_Create(kNodes, kModes));
  set_nodes(model, kNodes);
  set_modes(model, kNodes, kModes);
  for (std::int32_t node = 1; node <= kNodes; ++node)
    QDL_SetNodalMass(model, node, 0.5 + 0.001 * node);
  hot_path([&] { QDL_FullComputeInvars(model); });
}

const std::map<std::string, void (*)()> kJobs = {{"fetch_modes", fetch_modes},
                                                 {"find_nodes", find_nodes},
                                                 {"solve_eigenproblem", solve_eigenproblem},
                                                 {"coarsen", coarsen},
                                                 {"compute_invariants", compute_invariants}};

}  // namespace

int main(int argc, char **argv) {
  const auto job = kJobs.find(argc == 2 ? argv[1] : "");
  if (job == kJobs.end()) {
    for (const auto &[name, unused] : kJobs)
      std::printf("%s\n", name.c_str());
    return argc == 1 ? 0 : 2;
  }
  job->second();
  return 0;
}
