// Small matrices for the eigen solver, the orthonormalization and the LU factors: where the numbers
// allow it, results are finite and solve what was asked.

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <vector>

#include "support/harness.h"

using namespace qdlfuzz;

namespace {

using Complex = std::complex<double>;

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

// The generalized eigenproblem in column order, by the four stages.
struct Problem {
  std::int32_t n = 0, nm = 0;
  std::vector<double> a, b;

  std::size_t at(std::int32_t row, std::int32_t column) const {
    return static_cast<std::size_t>(column * nm + row);
  }
};

struct Solution {
  std::vector<double> real, imaginary, beta, vectors;
  std::int32_t failed = 0;
};

Solution solve(Problem problem, std::int32_t with_vectors) {
  const auto n = static_cast<std::size_t>(problem.n);
  Solution s{std::vector<double>(n), std::vector<double>(n), std::vector<double>(n),
             std::vector<double>(problem.a.size()), 0};
  double *const a = problem.a.data(), *const b = problem.b.data(), *const z = s.vectors.data();
  const double eps = 0.0;
  QDL_QZHESS(&problem.nm, &problem.n, a, b, &with_vectors, z);
  QDL_QZITT(&problem.nm, &problem.n, a, b, &eps, &with_vectors, z, &s.failed);
  QDL_QZVALL(&problem.nm, &problem.n, a, b, s.real.data(), s.imaginary.data(), s.beta.data(),
             &with_vectors, z);
  if (with_vectors != 0)
    QDL_QZVECC(&problem.nm, &problem.n, a, b, s.real.data(), s.imaginary.data(), s.beta.data(), z);
  return s;
}

// The size of (beta A - alpha B) x beside the sizes of the matrices. Where both alpha and beta are
// as good as zero, any x will do.
double residual(const Problem &p, Complex alpha, double beta, const std::vector<Complex> &x) {
  double sum = 0.0;
  for (std::int32_t row = 0; row < p.n; ++row) {
    Complex value = 0.0;
    for (std::int32_t column = 0; column < p.n; ++column)
      value += (beta * p.a[p.at(row, column)] - alpha * p.b[p.at(row, column)]) *
               x[static_cast<std::size_t>(column)];
    sum += std::norm(value);
  }
  const double a = norm(p.a), b = norm(p.b);
  const double scale = beta * a + std::abs(alpha) * b + a * b;
  return scale > 0.0 ? std::sqrt(sum) / scale : 0.0;
}

// Whether an eigenvalue is as good as infinite, or any number at all. Vectors of such pencils can
// be inaccurate, those of 0 / 0 not even finite.
bool is_singular(const Problem &p, const Solution &s) {
  const double tiny = 1e-10 * norm(p.b);
  return std::ranges::any_of(s.beta, [&](double beta) { return beta <= tiny; });
}

void require_pairs(const Problem &p, const Solution &s) {
  for (std::int32_t j = 0; j < p.n; ++j) {
    const auto k = static_cast<std::size_t>(j);
    const bool complex = s.imaginary[k] != 0.0;
    std::vector<Complex> x;
    for (std::int32_t row = 0; row < p.n; ++row)
      x.emplace_back(s.vectors[p.at(row, j)], complex ? s.vectors[p.at(row, j + 1)] : 0.0);
    const double largest = std::abs(*std::ranges::max_element(
        x, {}, [](const Complex &component) { return std::abs(component); }));
    require(std::abs(largest - 1.0) < 1e-12, "an eigenvector is not scaled to 1");
    require(residual(p, {s.real[k], s.imaginary[k]}, s.beta[k], x) < 1e-11,
            "an eigenvector leaves a residual");
    j += complex ? 1 : 0;
  }
}

void try_eigen_solver(Bytes &in) {
  Problem problem;
  problem.n = in.small(0, 6);
  problem.nm = problem.n + in.small(0, 2);
  const auto values = static_cast<std::size_t>(problem.nm * problem.nm);
  problem.a = matrix(in, values);
  problem.b = matrix(in, values);
  const Solution solution = solve(problem, 1);
  const Solution alone = solve(problem, 0);
  if (!std::ranges::all_of(problem.a, moderate) || !std::ranges::all_of(problem.b, moderate) ||
      solution.failed != 0)
    return;
  require(alone.failed == 0, "without eigenvectors there are no eigenvalues");
  for (const auto *values_of : {&solution.real, &solution.imaginary, &solution.beta})
    require(all_finite(*values_of), "an eigenvalue is not finite");
  require(std::ranges::all_of(solution.beta, [](double beta) { return beta >= 0.0; }),
          "a denominator is negative");
  for (std::int32_t j = 0; j < problem.n; ++j) {
    const auto k = static_cast<std::size_t>(j);
    require(solution.real[k] == alone.real[k] && solution.imaginary[k] == alone.imaginary[k] &&
                solution.beta[k] == alone.beta[k],
            "eigenvectors change eigenvalues");
  }
  if (!is_singular(problem, solution))
    require_pairs(problem, solution);
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
