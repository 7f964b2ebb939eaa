#include "support/decimal_scaling.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qdlflex {
namespace {

// Exponents of normal doubles lie between -308 and 308, sums of two of them within twice that. One
// more is compared with when an exponent is looked for.
constexpr int kLargestExponent = 2 * 308 + 1;

/// Ten to the power of n by repeated squaring: above 10^22 the result depends on the order of the
/// multiplications, which must not change. Beyond the range of a double it is infinite.
double positive_power(int n) {
  double power = 1.0;
  for (double square = 10.0; n > 0; n >>= 1, square *= square) {
    if (n & 1)
      power *= square;
  }
  return power;
}

/// Powers of ten; a negative one is the inverse of the positive one.
class Powers {
 public:
  Powers() {
    for (int n = 0; n <= kLargestExponent; ++n) {
      const double power = positive_power(n);
      table_[place(n)] = power;
      table_[place(-n)] = 1.0 / power;
    }
  }

  double operator[](int n) const { return table_[place(n)]; }

  static const Powers &get() {
    static const Powers powers;
    return powers;
  }

 private:
  static std::size_t place(int n) {
    return static_cast<std::size_t>(std::ptrdiff_t{n} + kLargestExponent);
  }

  std::array<double, 2 * kLargestExponent + 1> table_;
};

bool is_below_normal(double magnitude) {
  return magnitude < DBL_MIN;
}

/// floor(n log10(2)), exact for all exponents of a double.
int decimal_exponent_of_power_of_two(int n) {
  return static_cast<int>((std::int64_t{n} * 1262611) >> 22);
}

int binary_exponent(double magnitude) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &magnitude, sizeof bits);
  return static_cast<int>(bits >> 52) - 1023;
}

/// floor(log10(magnitude)) with the very result of those two functions, for normal numbers.
///
/// The binary exponent leaves two candidates, between which a comparison decides. Only beside a
/// power of ten may the rounded logarithm land on the other side of the whole number than the
/// number lies of the power: its error is below 2.3 x 1e-13 of the number, far within the margin.
int decimal_exponent(double magnitude, const Powers &powers) {
  constexpr double kMargin = 1e-11;
  int n = decimal_exponent_of_power_of_two(binary_exponent(magnitude));
  n += magnitude >= powers[n + 1] ? 1 : 0;
  if (magnitude > powers[n] * (1.0 + kMargin) && magnitude < powers[n + 1] * (1.0 - kMargin))
    return n;
  return static_cast<int>(std::floor(std::log10(magnitude)));
}

}  // namespace

DecimalFactor::DecimalFactor(double factor) : factor_(factor) {
  const double magnitude = std::fabs(factor);
  if (is_below_normal(magnitude) || !std::isfinite(factor))
    return;
  const Powers &powers = Powers::get();
  exponent_ = decimal_exponent(magnitude, powers);
  mantissa_ = factor / powers[exponent_];
}

void DecimalFactor::apply(std::span<double> values) const {
  const Powers &powers = Powers::get();
  const bool plain = !std::isfinite(factor_);
  for (double &value : values) {
    const double magnitude = std::fabs(value);
    if (is_below_normal(magnitude)) {
      value = 0.0;
    } else if (plain || !(magnitude <= DBL_MAX)) {
      value *= factor_;
    } else {
      const int exponent = decimal_exponent(magnitude, powers);
      value = powers[exponent + exponent_] * (mantissa_ * (value / powers[exponent]));
    }
  }
}

}  // namespace qdlflex
