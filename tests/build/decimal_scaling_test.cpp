#include "support/decimal_scaling.h"

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The decimal method one step after the other, as it is defined for a value and a finite factor.
double ten_to(int n) {
  double power = 1.0;
  double square = 10.0;
  for (int rest = std::abs(n); rest > 0; rest /= 2) {
    if (rest % 2 == 1)
      power *= square;
    square *= square;
  }
  power = std::floor(power + 0.5);
  return n < 0 ? 1.0 / power : power;
}

struct Split {
  int exponent = 0;
  double mantissa = 0.0;
};

Split split(double value) {
  if (std::fabs(value) < 2.2250738585072014e-308)
    return {};
  const int exponent = static_cast<int>(std::floor(std::log10(std::fabs(value))));
  return {exponent, value / ten_to(exponent)};
}

double scaled_step_by_step(double value, double factor) {
  if (std::fabs(value) < 2.2250738585072014e-308)
    return 0.0;
  const Split x = split(value);
  const Split s = split(factor);
  return std::fabs(ten_to(x.exponent + s.exponent)) * (s.mantissa * x.mantissa);
}

std::uint64_t bits(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

void expect_same_bits(std::vector<double> values, double factor) {
  std::vector<double> results = values;
  QDL_Convert_Units(results.data(), static_cast<std::int32_t>(results.size()), factor);
  int different = 0;
  for (std::size_t i = 0; i < values.size() && different < 5; ++i) {
    const double expected = scaled_step_by_step(values[i], factor);
    const bool same =
        std::isnan(expected) ? std::isnan(results[i]) : bits(expected) == bits(results[i]);
    EXPECT_TRUE(same) << values[i] << " times " << factor << ": " << results[i] << " instead of "
                      << expected;
    different += same ? 0 : 1;
  }
}

std::vector<double> factors_of_units() {
  std::vector<double> factors = {0.0,    -0.0,     1.0,     -1.0,    2.0,          -0.0254,
                                 1e-300, 9.99e307, DBL_MIN, DBL_MAX, DBL_TRUE_MIN, 1e-7 * 3.0};
  for (const QDL_UnitEntry *table :
       {QDL_MassUnits, QDL_ForceUnits, QDL_LengthUnits, QDL_TimeUnits}) {
    for (; table->name != nullptr; ++table) {
      factors.push_back(table->factor);
      factors.push_back(1.0 / table->factor);
    }
  }
  return factors;
}

}  // namespace

TEST(DecimalScaling, SameBitsOnRandomValuesOfEveryBinaryExponent) {
  std::mt19937_64 random(7);
  std::vector<double> values;
  for (std::uint64_t exponent = 0; exponent < 2047; ++exponent) {
    for (int i = 0; i < 8; ++i) {
      const std::uint64_t sign_and_mantissa = random() & 0x800fffffffffffffU;
      values.push_back(std::bit_cast<double>(sign_and_mantissa | (exponent << 52)));
    }
  }
  for (const double factor : factors_of_units())
    expect_same_bits(values, factor);
}

TEST(DecimalScaling, SameBitsOnRandomFactors) {
  std::mt19937_64 random(11);
  for (int i = 0; i < 20000; ++i) {
    const double factor = std::bit_cast<double>(random());
    const double value = std::bit_cast<double>(random());
    if (std::isfinite(factor) && std::isfinite(value))
      expect_same_bits({value}, factor);
  }
}

// Where the rounded logarithm reaches the whole number before the value reaches the power of ten.
TEST(DecimalScaling, SameBitsBesideEveryPowerOfTen) {
  std::mt19937_64 random(13);
  std::vector<double> values;
  for (int n = -308; n <= 308; ++n) {
    const double power = std::pow(10.0, n);
    double below = power;
    double above = power;
    values.push_back(power);
    for (int step = 0; step < 100; ++step) {
      below = std::nextafter(below, 0.0);
      above = std::nextafter(above, kInfinity);
      values.insert(values.end(), {below, above, -below, -above});
    }
    for (const double spread : {1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10}) {
      std::uniform_real_distribution<double> around(-spread, spread);
      for (int i = 0; i < 20; ++i)
        values.push_back(power * (1.0 + around(random)));
    }
  }
  for (const double factor : {1.0, 0.0254, 1e-3, 1e300, 1e-300})
    expect_same_bits(values, factor);
}

TEST(DecimalScaling, EndsOfTheRange) {
  const std::vector<double> values = {0.0,
                                      -0.0,
                                      DBL_TRUE_MIN,
                                      -DBL_TRUE_MIN,
                                      DBL_MIN,
                                      -DBL_MIN,
                                      std::nextafter(DBL_MIN, 0.0),
                                      DBL_MAX,
                                      -DBL_MAX,
                                      1.0};
  for (const double factor : factors_of_units())
    expect_same_bits(values, factor);

  double denormal_and_zero[] = {4e-310, -4e-310, 0.0, -0.0};
  QDL_Convert_Units(denormal_and_zero, 4, 1000.0);
  for (const double value : denormal_and_zero)
    EXPECT_EQ(bits(value), 0U);
}

TEST(DecimalScaling, WithoutAnExponentTheProductIsPlain) {
  double values[] = {kNaN, kInfinity, -kInfinity, 2.0, 0.0};
  EXPECT_EQ(QDL_Convert_Units(values, 5, -2.0), values);
  EXPECT_TRUE(std::isnan(values[0]));
  EXPECT_EQ(values[1], -kInfinity);
  EXPECT_EQ(values[2], kInfinity);
  EXPECT_EQ(values[3], -4.0);

  double by_infinity[] = {2.0, -2.0, 0.0};
  QDL_Convert_Units(by_infinity, 3, kInfinity);
  EXPECT_EQ(by_infinity[0], kInfinity);
  EXPECT_EQ(by_infinity[1], -kInfinity);
  EXPECT_EQ(by_infinity[2], 0.0);

  double by_nan[] = {2.0, 0.0};
  QDL_Convert_Units(by_nan, 2, kNaN);
  EXPECT_TRUE(std::isnan(by_nan[0]));
  EXPECT_EQ(by_nan[1], 0.0);
}

TEST(DecimalScaling, KnownResults) {
  double inch = 1.0;
  QDL_Convert_Units(&inch, 1, 0.0254);
  EXPECT_EQ(inch, 0.025400000000000002);
  double millimetres = 1500.0;
  QDL_Convert_Units(&millimetres, 1, 0.001);
  EXPECT_EQ(millimetres, 1.5);
}

TEST(DecimalScaling, NothingIsDoneWithoutValues) {
  double value = 3.0;
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()})
    EXPECT_EQ(QDL_Convert_Units(&value, count, 2.0), &value);
  EXPECT_EQ(value, 3.0);
  EXPECT_EQ(QDL_Convert_Units(nullptr, 3, 2.0), nullptr);
}

TEST(DecimalScaling, AUnitConversionByOneLeavesEveryBitAlone) {
  const std::vector<double> values = {-0.0, DBL_TRUE_MIN, kNaN};
  std::vector<double> converted = values;
  qdlflex::UnitConversion(1.0)(converted);
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(bits(converted[i]), bits(values[i])) << i;
  qdlflex::UnitConversion(1000.0)(converted);
  EXPECT_EQ(bits(converted[0]), 0U);
}
