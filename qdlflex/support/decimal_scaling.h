#pragma once

#include <span>

namespace qdlflex {

/// Multiplies by a factor in decimal: the powers of ten of value and factor are added, their
/// mantissas multiplied. Factors between units are decimal numbers, and the results keep the
/// digits that values of unit changes have always had; a plain product differs in the last place.
/// Values below the normal range become zero.
class DecimalFactor {
 public:
  explicit DecimalFactor(double factor);

  void apply(std::span<double> values) const;
  void apply(double &value) const { apply({&value, 1}); }

 private:
  double factor_;
  int exponent_ = 0;
  double mantissa_ = 0.0;
};

/// How a unit change converts values: by a decimal factor, where exactly one leaves every bit
/// alone.
class UnitConversion {
 public:
  explicit UnitConversion(double factor) : factor_(factor), identity_(factor == 1.0) {}

  void operator()(std::span<double> values) const {
    if (!identity_)
      factor_.apply(values);
  }
  void operator()(double &value) const { (*this)({&value, 1}); }

 private:
  DecimalFactor factor_;
  bool identity_;
};

}  // namespace qdlflex
