// Small matrices for the eigen solver, the orthonormalization and the LU factors: where the numbers
// allow it, results are finite and solve what was asked.

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/eigen_pairs.h"
#include "support/harness.h"

using namespace qdlfuzz;

namespace {

// Values that neither overflow nor vanish in products of a few.
bool moderate(double value) {
  const double size = std::abs(value);
  return size == 0.0 || (size > 1e-30 && size < 1e30);
}

bool all_finite(const std::vector<double> &values) {
  return std::ranges::all_of(values, [](double value) { return std::isfinite(value); });
}

std::vector<double> matrix(Bytes &in, std::size_t values) {
  std::vector<double> result(values);
  std::ranges::generate(result, [&] { return in.real(); });
  return result;
}

double norm(const std::vector<double> &values) {
  double sum = 0.0;
  for (const double value : values)
    sum += value * value;
  return std::sqrt(sum);
}

void try_eigen_solver(Bytes &in) {
  Pencil pencil;
  pencil.n = in.small(0, 6);
  pencil.nm = pencil.n + in.small(0, 2);
  const auto values = static_cast<std::size_t>(pencil.nm * pencil.nm);
  pencil.a = matrix(in, values);
  pencil.b = matrix(in, values);
  const EigenPairs pairs = solve(pencil, true);
  const EigenPairs alone = solve(pencil, false);
  if (!std::ranges::all_of(pencil.a, moderate) || !std::ranges::all_of(pencil.b, moderate) ||
      pairs.failed != 0)
    return;
  require(alone.failed == 0, "without eigenvectors there are no eigenvalues");
  for (const auto *values_of : {&pairs.real, &pairs.imaginary, &pairs.beta})
    require(all_finite(*values_of), "an eigenvalue is not finite");
  require(std::ranges::all_of(pairs.beta, [](double beta) { return beta >= 0.0; }),
          "a denominator is negative");
  require(
      pairs.real == alone.real && pairs.imaginary == alone.imaginary && pairs.beta == alone.beta,
      "eigenvectors change eigenvalues");
  require_pairs(pencil, pairs);
}

// Row pointers into a copy of a matrix, as the LU functions want them.
class Rows {
 public:
  Rows(std::vector<double> values, std::size_t n) : values_(std::move(values)) {
    for (std::size_t row = 0; row < n; ++row)
      rows_.push_back(values_.data() + row * n);
  }
  double **data() { return rows_.data(); }
  double operator()(std::size_t row, std::size_t column) const { return rows_[row][column]; }

 private:
  std::vector<double> values_;
  std::vector<double *> rows_;
};

void try_factors(Bytes &in) {
  const auto order = in.small(0, 6);
  const auto n = static_cast<std::size_t>(order);
  const std::vector<double> a = matrix(in, n * n);
  std::vector<double> solution = matrix(in, n);
  const std::vector<double> b = solution;
  Rows factors(a, n);
  std::vector<std::int32_t> permutation(n);
  const bool done = QDL_LUPDecomposition(factors.data(), order, permutation.data()) == 1;
  if (!done || !std::ranges::all_of(a, moderate) || !std::ranges::all_of(b, moderate))
    return;
  QDL_LUPSolve(factors.data(), order, permutation.data(), solution.data());
  if (!all_finite(solution))
    return;  // a last pivot of zero is the caller's to see
  for (std::size_t i = 0; i < n; ++i) {
    const auto row = static_cast<std::size_t>(permutation[i]);
    require(row < n, "a permutation leads outside");
    double left = -b[row], size = std::abs(b[row]);
    for (std::size_t j = 0; j < n; ++j) {
      double product = 0.0, sizes = 0.0;
      for (std::size_t k = 0; k <= std::min(i, j); ++k) {
        const double term = (k == i ? 1.0 : factors(i, k)) * factors(k, j);
        product += term;
        sizes += std::abs(term);
      }
      require(std::abs(product - a[row * n + j]) <= 1e-14 * sizes,
              "the factors give another matrix");
      left += a[row * n + j] * solution[j];
      size += sizes * std::abs(solution[j]);
    }
    require(std::abs(left) <= 1e-13 * size || !std::isfinite(size), "a solution leaves a residual");
  }
}

// A model with these symmetric matrices alone.
struct Body {
  std::size_t modes = 0;
  std::vector<double> stiffness, mass;
};

Body take_body(Bytes &in) {
  Body body;
  body.modes = static_cast<std::size_t>(in.small(1, 6));
  const std::size_t n = body.modes;
  body.stiffness = matrix(in, n * n);
  body.mass = matrix(in, n * n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      body.stiffness[i * n + j] = body.stiffness[j * n + i];
      body.mass[i * n + j] = body.mass[j * n + i];
    }
  }
  return body;
}

// In place of the mass: L L^T + E, where a good solution exists.
void make_definite(Body &body) {
  const std::size_t n = body.modes;
  std::vector<double> lower(n * n), product(n * n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const double value = body.mass[i * n + j];
      lower[i * n + j] = std::isfinite(value) ? std::remainder(value, 4.0) : 1.0;
    }
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      product[i * n + j] = i == j ? 1.0 : 0.0;
      for (std::size_t k = 0; k < n; ++k)
        product[i * n + j] += lower[i * n + k] * lower[j * n + k];
    }
  }
  body.mass = product;
}

QDL_Record *make_model(const Body &body) {
  const auto n = static_cast<std::int32_t>(body.modes);
  QDL_Record *const model = QDL_Create(0, n);
  require(model != nullptr, "no model");
  for (std::int32_t i = 0; i < n; ++i) {
    for (std::int32_t j = 0; j <= i; ++j) {
      const auto at = static_cast<std::size_t>(i * n + j);
      QDL_SetGeneralizedStiffness(model, i + 1, j + 1, body.stiffness[at]);
      QDL_SetGeneralizedMass(model, i + 1, j + 1, body.mass[at]);
    }
  }
  return model;
}

// t^T values t.
double projected(const std::vector<double> &values, const std::vector<double> &t, std::size_t n,
                 std::size_t i, std::size_t j) {
  double sum = 0.0;
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = 0; b < n; ++b)
      sum += t[a * n + i] * values[a * n + b] * t[b * n + j];
  }
  return sum;
}

void require_orthonormal(const Body &body, const std::vector<double> &t,
                         const std::vector<double> &eigenvalues) {
  const std::size_t n = body.modes;
  const double stiffness_size = norm(body.stiffness);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      const double one = i == j ? 1.0 : 0.0;
      require(std::abs(projected(body.mass, t, n, i, j) - one) < 1e-9, "modes are not orthonormal");
      require(std::abs(projected(body.stiffness, t, n, i, j) - one * eigenvalues[i]) <=
                  1e-9 * stiffness_size,
              "modes don't make the stiffness diagonal");
    }
  }
  for (std::size_t i = 1; i < n; ++i)
    require(eigenvalues[i - 1] <= eigenvalues[i] + 1e-9 * stiffness_size,
            "eigenvalues are not in order");
}

void try_orthonormalization(Bytes &in) {
  const bool definite = in.small(0, 1) == 1;
  Body body = take_body(in);
  if (definite)
    make_definite(body);
  QDL_Record *const model = make_model(body);
  const bool bounded =
      std::ranges::all_of(body.stiffness, moderate) && std::ranges::all_of(body.mass, moderate);
  const bool done = QDL_OrthoNormalize(model) == 1;
  require(done || !definite || !bounded, "a definite problem isn't solved");
  if (!done) {
    require(QDL_ModeCount(model) == static_cast<std::int32_t>(body.modes),
            "a failure changes modes");
    return;
  }
  if (!bounded)
    return;
  const auto modes = static_cast<std::size_t>(QDL_ModeCount(model));
  std::vector<double> eigenvalues(modes), t(modes * modes);
  for (std::size_t i = 0; i < modes; ++i)
    QDL_Eigenvalue(model, static_cast<std::int32_t>(i + 1), &eigenvalues[i], nullptr, nullptr,
                   nullptr, nullptr);
  QDL_Transformation(model, t.data());
  require(all_finite(eigenvalues) && all_finite(t), "a mode is not finite");
  if (definite) {
    require(modes == body.modes, "a mode is lost");
    require_orthonormal(body, t, eigenvalues);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  Bytes in(data, size);
  switch (in.small(0, 2)) {
    case 0:
      try_eigen_solver(in);
      break;
    case 1:
      try_factors(in);
      break;
    default:
      try_orthonormalization(in);
  }
  return 0;
}
