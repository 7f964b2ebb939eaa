// The generalized eigen solver beside LAPACK's dggev, with vectors, on one thread.

#include <dlfcn.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "bench/compare.h"

namespace {

using qdlflex::bench::compare;
using qdlflex::bench::not_measured;
using qdlflex::bench::register_row;
using qdlflex::bench::require;

using Values = std::vector<double>;

std::size_t squared(int n) {
  return static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
}

// Stiffness and mass as finite elements give them: symmetric, six rigid-body modes, eigenvalues
// from 1e3 to 1e12. A = X' diag(eigenvalues) X and B = X' X.
struct Problem {
  int n;
  Values eigenvalues;  // ascending
  Values a, b;

  explicit Problem(int order)
      : n(order), eigenvalues(static_cast<std::size_t>(order)), a(squared(order)), b(a.size()) {
    constexpr int kRigid = 6;
    for (int i = kRigid; i < n; ++i)
      eigenvalues[static_cast<std::size_t>(i)] = std::pow(10.0, 3.0 + 9.0 * (i - kRigid) / (n - 7));
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> uniform(-0.5, 0.5);
    Values x(squared(n));
    for (double &value : x)
      value = uniform(random) / std::sqrt(n);
    const auto order_size = static_cast<std::size_t>(n);
    for (std::size_t i = 0; i < order_size; ++i)
      x[i * order_size + i] += 1.0;
    for (std::size_t j = 0; j < order_size; ++j)
      for (std::size_t i = 0; i <= j; ++i) {
        double stiffness = 0.0;
        double mass = 0.0;
        for (std::size_t k = 0; k < order_size; ++k) {
          const double product = x[i * order_size + k] * x[j * order_size + k];
          stiffness += eigenvalues[k] * product;
          mass += product;
        }
        a[i * order_size + j] = a[j * order_size + i] = stiffness;
        b[i * order_size + j] = b[j * order_size + i] = mass;
      }
  }
};

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

// A build of LAPACK in a name space of its own, so that each uses its own BLAS.
class Lapack {
 public:
  Lapack(std::string name, const std::vector<std::string> &paths) : name_(std::move(name)) {
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    Lmid_t space = LM_ID_NEWLM;
    for (const std::string &path : paths) {
      void *library = dlmopen(space, path.c_str(), RTLD_NOW | RTLD_LOCAL);
      if (library == nullptr)
        return;
      dlinfo(library, RTLD_DI_LMID, &space);
      dggev_ = reinterpret_cast<Dggev *>(dlsym(library, "dggev_"));
    }
  }

  const std::string &name() const { return name_; }
  bool is_there() const { return dggev_ != nullptr; }

  void solve(const Problem &problem, Work &work) const {
    work.restart(problem);
    const int n = problem.n;
    const int scratch_size = static_cast<int>(work.scratch.size());
    int info = 0;
    dggev_("N", "V", &n, work.a.data(), &n, work.b.data(), &n, work.alfr.data(), work.alfi.data(),
           work.beta.data(), nullptr, &n, work.z.data(), &n, work.scratch.data(), &scratch_size,
           &info, 1, 1);
    require(info == 0, "dggev converges");
  }

 private:
  using Dggev = void(const char *, const char *, const int *, double *, const int *, double *,
                     const int *, double *, double *, double *, double *, const int *, double *,
                     const int *, double *, const int *, int *, std::size_t, std::size_t);

  std::string name_;
  Dggev *dggev_ = nullptr;
};

const std::string kLibraries = "/usr/lib/x86_64-linux-gnu/";

const Lapack &reference() {
  static const Lapack lapack(
      "reference LAPACK", {kLibraries + "blas/libblas.so.3", kLibraries + "lapack/liblapack.so.3"});
  return lapack;
}

const Lapack &open_blas() {
  static const Lapack lapack("OpenBLAS", {kLibraries + "openblas-pthread/liblapack.so.3"});
  return lapack;
}

void measure(benchmark::State &state, const Lapack &lapack, int n, double target) {
  const std::string order = std::to_string(n);
  const qdlflex::bench::Comparison comparison{
      "generalized eigenproblem of order " + order + " with vectors", "`dggev` of " + lapack.name(),
      target};
  if (!lapack.is_there())
    return not_measured(state, comparison, lapack.name() + " is not installed");

  const Problem problem(n);
  Work ours(problem);
  Work peers(problem);
  solve_ours(problem, ours);
  lapack.solve(problem, peers);
  require(ours.agrees_with(problem), "our eigenvalues are right");
  require(peers.agrees_with(problem), "the eigenvalues of dggev are right");
  compare(
      state, comparison, [&] { solve_ours(problem, ours); }, [&] { lapack.solve(problem, peers); });
}

bool register_rows() {
  for (const int n : {30, 60, 100, 200, 256, 400, 500, 512}) {
    const std::string order = std::to_string(n);
    register_row(("eigen_reference_" + order).c_str(),
                 [n](benchmark::State &state) { measure(state, reference(), n, 1.0); });
    register_row(("eigen_openblas_" + order).c_str(),
                 [n](benchmark::State &state) { measure(state, open_blas(), n, 1.0 / 1.5); });
  }
  return true;
}
const bool registered = register_rows();

}  // namespace
