// Orthonormalizing a whole model beside the two calls that do the same arithmetic in memory.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "bench/compare.h"
#include "bench/lapack.h"
#include "bench/peak_memory.h"
#include "bench/sample.h"

namespace {

using namespace qdlflex::bench;

constexpr std::int32_t kNodes = 20000;
constexpr std::int32_t kModes = 100;

void set_matrices(QDL_Record *model, const Problem &problem) {
  for (std::int32_t row = 0; row < kModes; ++row)
    for (std::int32_t column = 0; column <= row; ++column) {
      const auto place = static_cast<std::size_t>(row * kModes + column);
      QDL_SetGeneralizedStiffness(model, row + 1, column + 1, problem.a[place]);
      QDL_SetGeneralizedMass(model, row + 1, column + 1, problem.b[place]);
    }
}

// Setting the matrices is part of the job: it takes them away.
void orthonormalize(QDL_Record *model, const Problem &problem) {
  set_matrices(model, problem);
  require(QDL_OrthoNormalize(model) == 1, "the modes can be orthonormalized");
}

bool has_eigenvalues(QDL_Record *model, const Problem &problem) {
  const double tolerance = 1e-11 * problem.eigenvalues.back();
  for (std::int32_t mode = 0; mode < kModes; ++mode) {
    double value = 0.0;
    QDL_Eigenvalue(model, mode + 1, &value, nullptr, nullptr, nullptr, nullptr);
    if (!(std::fabs(value - problem.eigenvalues[static_cast<std::size_t>(mode)]) <= tolerance))
      return false;
  }
  return true;
}

struct Peer {
  Values a, b, alfr, alfi, beta, z, scratch, modes, new_modes;

  explicit Peer(const Problem &problem)
      : alfr(kModes),
        alfi(kModes),
        beta(kModes),
        z(problem.a.size()),
        scratch(problem.a.size() + 8 * kModes + 16),
        modes(static_cast<std::size_t>(kModes) * kNodes * 6, 1.5),
        new_modes(modes.size(), 0.5) {}

  void run(const Problem &problem) {
    a = problem.a;
    b = problem.b;
    open_blas().solve(kModes, a, b, alfr, alfi, beta, z, scratch);
    open_blas().multiply(kNodes * 6, kModes, modes, z, new_modes);
  }
};

void orthonormalize_model(benchmark::State &state) {
  const Comparison comparison{"orthonormalize 100 modes of 20,000 nodes, files and all",
                              "`dggev` and `dgemm` of OpenBLAS in memory", 0.5};
  if (!open_blas().is_there())
    return not_measured(state, comparison, "OpenBLAS is not installed");

  const Problem problem(kModes);
  const Model model(QDL_Create(kNodes, kModes));
  set_nodes(model, kNodes);
  set_modes(model, kNodes, kModes);
  const double peak = peak_memory([&] { orthonormalize(model, problem); });
  require(has_eigenvalues(model, problem), "the eigenvalues are right");
  Peer peer(problem);
  compare(
      state, comparison, [&] { orthonormalize(model, problem); }, [&] { peer.run(problem); });
  state.counters["peak_MiB"] = peak;
}
const bool registered = register_row("orthonormalize_model", orthonormalize_model);

}  // namespace
