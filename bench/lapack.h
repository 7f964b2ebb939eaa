// The generalized eigenproblem of a finite-element model, and builds of LAPACK that solve it.
#pragma once

#include <dlfcn.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/open_blas.h"

namespace qdlflex::bench {

using Values = std::vector<double>;

inline std::size_t squared(int n) {
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
      dgemm_ = reinterpret_cast<Dgemm *>(dlsym(library, "dgemm_"));
    }
  }

  const std::string &name() const { return name_; }
  bool is_there() const { return dggev_ != nullptr; }

  // Eigenvalues (alfr + i alfi) / beta and, in z, vectors. `scratch` has 8 n + 16 values or more.
  void solve(int n, Values &a, Values &b, Values &alfr, Values &alfi, Values &beta, Values &z,
             Values &scratch) const {
    const int scratch_size = static_cast<int>(scratch.size());
    int info = 0;
    dggev_("N", "V", &n, a.data(), &n, b.data(), &n, alfr.data(), alfi.data(), beta.data(), nullptr,
           &n, z.data(), &n, scratch.data(), &scratch_size, &info, 1, 1);
    require(info == 0, "dggev converges");
  }

  // C = A B with A of m x n and B of n x n values, column by column.
  void multiply(int m, int n, const Values &a, const Values &b, Values &c) const {
    const double one = 1.0;
    const double zero = 0.0;
    dgemm_("N", "N", &m, &n, &n, &one, a.data(), &m, b.data(), &n, &zero, c.data(), &m, 1, 1);
  }

 private:
  using Dggev = void(const char *, const char *, const int *, double *, const int *, double *,
                     const int *, double *, double *, double *, double *, const int *, double *,
                     const int *, double *, const int *, int *, std::size_t, std::size_t);

  std::string name_;
  Dggev *dggev_ = nullptr;
  Dgemm *dgemm_ = nullptr;
};

inline const std::string kLibraries = "/usr/lib/x86_64-linux-gnu/";

inline const Lapack &reference_lapack() {
  static const Lapack lapack(
      "reference LAPACK", {kLibraries + "blas/libblas.so.3", kLibraries + "lapack/liblapack.so.3"});
  return lapack;
}

inline const Lapack &open_blas() {
  static const Lapack lapack("OpenBLAS", {kLibraries + "openblas-pthread/liblapack.so.3"});
  return lapack;
}

}  // namespace qdlflex::bench
