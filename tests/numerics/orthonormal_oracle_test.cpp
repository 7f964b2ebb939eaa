// Orthonormal modes beside LAPACK's solvers of the same pairs.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numerics/modal_body.h"

#ifdef QDLFLEX_TEST_LAPACK

extern "C" {
void dsygv_(const int *, const char *, const char *, const int *, double *, const int *, double *,
            const int *, double *, double *, const int *, int *, std::size_t, std::size_t);
void dggev_(const char *, const char *, const int *, double *, const int *, double *, const int *,
            double *, double *, double *, double *, const int *, double *, const int *, double *,
            const int *, int *, std::size_t, std::size_t);
}

#endif

namespace {

using namespace qdltest;

struct Definite {
  Values eigenvalues;
  Matrix vectors;
};

#ifdef QDLFLEX_TEST_LAPACK

Definite lapack_definite(Pair pair) {
  const int type = 1;
  const int n = static_cast<int>(pair.a.order);
  Definite result{Values(static_cast<std::size_t>(n)), Matrix()};
  Values work(static_cast<std::size_t>(n) * 40);
  const int work_size = static_cast<int>(work.size());
  int info = -1;
  dsygv_(&type, "V", "U", &n, pair.a.values.data(), &n, pair.b.values.data(), &n,
         result.eigenvalues.data(), work.data(), &work_size, &info, 1, 1);
  EXPECT_EQ(info, 0);
  result.vectors = pair.a;
  return result;
}

// Finite eigenvalues in ascending order.
Values lapack_finite(Pair pair) {
  const int n = static_cast<int>(pair.a.order);
  const int one = 1;
  const auto order = static_cast<std::size_t>(n);
  Values alfr(order), alfi(order), beta(order), work(order * 64 + 64);
  const int work_size = static_cast<int>(work.size());
  int info = -1;
  dggev_("N", "N", &n, pair.a.values.data(), &n, pair.b.values.data(), &n, alfr.data(), alfi.data(),
         beta.data(), nullptr, &one, nullptr, &one, work.data(), &work_size, &info, 1, 1);
  EXPECT_EQ(info, 0);
  Values result;
  for (std::size_t i = 0; i < order; ++i)
    if (beta[i] > 1e-13 * pair.b.norm())
      result.push_back(alfr[i] / beta[i]);
  std::ranges::sort(result);
  return result;
}

#else

Definite lapack_definite(const Pair &) {
  return {{}, Matrix()};
}

Values lapack_finite(const Pair &) {
  return {};
}

#endif

class OrthonormalBesideLapack : public ModalBody {
 protected:
  void SetUp() override {
    ModalBody::SetUp();
#ifndef QDLFLEX_TEST_LAPACK
    GTEST_SKIP() << "LAPACK is not installed";
#endif
  }
};

TEST_F(OrthonormalBesideLapack, GivesTheSameModesOfDefinitePairs) {
  for (const Index order : {2, 7, 30, 80}) {
    SCOPED_TRACE(order);
    Values stiffness;
    for (Index i = 0; i < order; ++i)
      stiffness.push_back(10.0 + 7.0 * static_cast<double>(i));
    const Pair pair = congruent(stiffness, Values(stiffness.size(), 2.0), 5);
    const Definite wanted = lapack_definite(pair);
    QDL_Record *model = body(pair);
    ASSERT_EQ(QDL_OrthoNormalize(model), 1);
    expect_near(eigenvalues_of(model), wanted.eigenvalues, 1e-11 * wanted.eigenvalues.back());
    // Vectors of unit mass may differ in their direction only.
    const Matrix t = transformation_of(model);
    const Matrix cosines = t.transposed() * (pair.b * wanted.vectors);
    for (Index k = 0; k < order; ++k)
      EXPECT_NEAR(std::fabs(cosines(k, k)), 1.0, 1e-10) << "mode " << k;
  }
}

TEST_F(OrthonormalBesideLapack, FindsTheSameFiniteEigenvalues) {
  for (const std::size_t infinite : {1u, 3u, 9u}) {
    SCOPED_TRACE(infinite);
    Values masses(24, 1.0);
    std::fill_n(masses.begin(), infinite, 0.0);
    Values stiffness;
    for (std::size_t i = 0; i < masses.size(); ++i)
      stiffness.push_back(1.0 + 0.5 * static_cast<double>(i));
    const Pair pair = congruent(stiffness, masses, 2);
    const Values wanted = lapack_finite(pair);
    ASSERT_EQ(wanted.size(), masses.size() - infinite);
    QDL_Record *model = body(pair);
    ASSERT_EQ(QDL_OrthoNormalize(model), 1);
    expect_near(eigenvalues_of(model), wanted, 1e-11 * wanted.back());
    EXPECT_EQ(warnings.size(), infinite);
    clear_messages();
  }
}

}  // namespace
