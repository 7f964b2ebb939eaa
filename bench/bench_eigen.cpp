// The generalized eigen solver beside LAPACK's dggev, with vectors, on one thread.

#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/compare.h"
#include "bench/lapack.h"

namespace qdlflex::bench {
namespace {

// What both sides overwrite.
struct Work {
  Values a, b, alfr, alfi, beta, z, scratch;

  explicit Work(const Problem &problem)
      : a(problem.a),
        b(problem.b),
        alfr(problem.eigenvalues.size()),
        alfi(alfr),
        beta(alfr),
        z(a.size()),
        scratch(alfr.size() * 8 + 16 + a.size()) {}

  void restart(const Problem &problem) {
    std::ranges::copy(problem.a, a.begin());
    std::ranges::copy(problem.b, b.begin());
  }

  bool agrees_with(const Problem &problem) const {
    Values found;
    for (std::size_t i = 0; i < alfr.size(); ++i)
      found.push_back(alfr[i] / beta[i]);
    std::ranges::sort(found);
    const double tolerance = 1e-11 * problem.eigenvalues.back();
    return std::ranges::equal(found, problem.eigenvalues, [&](double value, double expected) {
      return std::fabs(value - expected) <= tolerance;
    });
  }
};

void solve_ours(const Problem &problem, Work &work) {
  work.restart(problem);
  const int32_t n = problem.n;
  const int32_t with_vectors = 1;
  const double eps1 = 0.0;
  int32_t ierr = 0;
  double *a = work.a.data();
  double *b = work.b.data();
  double *alfr = work.alfr.data();
  double *alfi = work.alfi.data();
  double *beta = work.beta.data();
  double *z = work.z.data();
  QDL_QZHESS(&n, &n, a, b, &with_vectors, z);
  QDL_QZITT(&n, &n, a, b, &eps1, &with_vectors, z, &ierr);
  QDL_QZVALL(&n, &n, a, b, alfr, alfi, beta, &with_vectors, z);
  QDL_QZVECC(&n, &n, a, b, alfr, alfi, beta, z);
  require(ierr == 0, "our solver converges");
}

void solve_peers(const Problem &problem, const Lapack &lapack, Work &work) {
  work.restart(problem);
  lapack.solve(problem.n, work.a, work.b, work.alfr, work.alfi, work.beta, work.z, work.scratch);
}

void measure(benchmark::State &state, const Lapack &lapack, int n, double target) {
  const std::string order = std::to_string(n);
  const Comparison comparison{"generalized eigenproblem of order " + order + " with vectors",
                              "`dggev` of " + lapack.name(), target};
  if (!lapack.is_there())
    return not_measured(state, comparison, lapack.name() + " is not installed");

  const Problem problem(n);
  Work ours(problem);
  Work peers(problem);
  solve_ours(problem, ours);
  solve_peers(problem, lapack, peers);
  require(ours.agrees_with(problem), "our eigenvalues are right");
  require(peers.agrees_with(problem), "the eigenvalues of dggev are right");
  compare(
      state, comparison, [&] { solve_ours(problem, ours); },
      [&] { solve_peers(problem, lapack, peers); });
}

bool register_rows() {
  for (const int n : {30, 60, 100, 200, 256, 400, 500, 512}) {
    const std::string order = std::to_string(n);
    register_row(("eigen_reference_" + order).c_str(),
                 [n](benchmark::State &state) { measure(state, reference_lapack(), n, 1.0); });
    register_row(("eigen_openblas_" + order).c_str(),
                 [n](benchmark::State &state) { measure(state, open_blas(), n, 1.0 / 1.5); });
  }
  register_row("eigen_openblas_1000",
               [](benchmark::State &state) { measure(state, open_blas(), 1000, 1.0 / 1.5); });
  return true;
}
const bool registered = register_rows();

}  // namespace
}  // namespace qdlflex::bench
