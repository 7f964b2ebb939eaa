// All inertia invariants of a large model beside a matrix product.
//
// Invariants 5 and 9 take 36 floating-point operations for each node and each of M (M + 1) / 2
// pairs of modes, together 18.2e9 for 100,000 nodes and 100 modes. The peer multiplies the 3M x N
// matrix of the translations by its transpose, 2 (3M)^2 N = 18.0e9 operations: the sums that the
// invariants could be put together from. Ours also reads the modes from the file and computes the
// other invariants; the peer has its matrix in memory.

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "bench/open_blas.h"
#include "bench/peak_memory.h"
#include "bench/sample.h"

namespace qdlflex::bench {
namespace {

constexpr std::int32_t kNodes = 100'000;
constexpr std::int32_t kModes = 100;
constexpr int kRows = 3 * kModes;

// Setting a mass drops what was derived from it.
void compute(QDL_Record *model) {
  QDL_SetNodalMass(model, 1, 1.0);
  QDL_FullComputeInvars(model);
}

// Column n holds the translations of all modes at node n.
std::vector<double> translations(QDL_Record *model) {
  std::vector<double> matrix(std::size_t{kRows} * kNodes);
  std::vector<double> half(std::size_t{3} * kNodes);
  for (std::int32_t mode = 0; mode < kModes; ++mode) {
    require(QDL_Mode(model, mode + 1, QDL_MODE_SHAPE, half.data(), 0) == 1, "a mode");
    for (std::size_t n = 0; n < std::size_t{kNodes}; ++n)
      std::copy_n(&half[3 * n], 3,
                  &matrix[n * kRows + std::size_t{3} * static_cast<std::size_t>(mode)]);
  }
  return matrix;
}

// Off the diagonal invariant 9 is the transpose of a block of the product.
void compare_results(QDL_Record *model, const std::vector<double> &product) {
  for (const std::int32_t i : {0, 17, 99}) {
    double *ninth = QDL_Invar9(model, i, 42);
    const double expected =
        product[std::size_t{3} * 42 * kRows + std::size_t{3} * static_cast<std::size_t>(i) + 1];
    require(ninth != nullptr && std::fabs(ninth[1] - expected) <= 1e-10 * std::fabs(expected),
            "both give the same sums");
    QDL_FreeMemory(ninth);
  }
}

void full_invariants(benchmark::State &state) {
  const Comparison comparison{"full invariants, 100,000 nodes, 100 modes",
                              "OpenBLAS `dgemm` of the same flops", 0.5};
  Dgemm *const dgemm = open_blas_dgemm();
  if (dgemm == nullptr)
    return not_measured(state, comparison, "OpenBLAS is not installed");

  const Folder folder;
  const std::string path = folder.file("body.qdl");
  write_sample(path, kNodes, kModes, "no_ortho,no_xdr");
  const Model model(QDL_CreateFromQDL(path.c_str()));
  QDL_SetKeepModesInMemory(model, 0);
  for (std::int32_t node = 1; node <= kNodes; ++node)
    QDL_SetNodalMass(model, node, 1.0);
  const double peak = peak_memory([&] { compute(model); });

  const std::vector<double> matrix = translations(model);
  std::vector<double> product(std::size_t{kRows} * kRows);
  const int rows = kRows;
  const int nodes = kNodes;
  const double one = 1.0;
  const double zero = 0.0;
  const auto multiply = [&] {
    dgemm("N", "T", &rows, &rows, &nodes, &one, matrix.data(), &rows, matrix.data(), &rows, &zero,
          product.data(), &rows, 1, 1);
  };
  multiply();
  compare_results(model, product);
  compare(
      state, comparison, [&] { compute(model); }, multiply);
  state.counters["peak_MiB"] = peak;
}
const bool registered = register_row("full_invariants", full_invariants);

}  // namespace
}  // namespace qdlflex::bench
