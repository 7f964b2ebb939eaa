#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace qdlflex::cli {

/// Two numbers at the same place of two bodies.
struct Extreme {
  double difference = 0.0;
  double a = 0.0;
  double b = 0.0;
  std::string where;
};

/// What two bodies hold of one block, compared number by number.
class BlockDifference {
 public:
  BlockDifference(std::string name, double tolerance)
      : name_(std::move(name)), tolerance_(tolerance) {}

  /// Compares two numbers. `group` is the largest magnitude among the numbers that they belong to,
  /// or 0 for numbers that stand alone; `where` makes the name of the place.
  template <class Where>
  void compare(double a, double b, double group, Where where) {
    ++compared_;
    if (a == b || (std::isnan(a) && std::isnan(b))) {
      return;
    }
    const double absolute = finite_or_infinite(std::abs(a - b));
    const double relative =
        finite_or_infinite(absolute / std::max({group, std::abs(a), std::abs(b)}));
    differing_ += relative > tolerance_ ? 1 : 0;
    raise(largest_absolute_, absolute, a, b, where);
    raise(largest_relative_, relative, a, b, where);
  }

  /// A difference that is none of numbers.
  void remark(std::string text) { remarks_.push_back(std::move(text)); }

  /// A remark if two texts differ.
  void compare_texts(std::string_view what, std::string_view a, std::string_view b);

  /// A remark if two whole numbers, such as counts, differ.
  void compare_counts(std::string_view what, int64_t a, int64_t b);

  /// A remark if only one body has something. Tells whether both have it.
  bool both(bool a, bool b, std::string_view what = {});

  bool different() const { return differing_ > 0 || !remarks_.empty(); }

  const std::string &name() const { return name_; }
  int64_t compared() const { return compared_; }
  int64_t differing() const { return differing_; }
  const Extreme &largest_relative() const { return largest_relative_; }
  const Extreme &largest_absolute() const { return largest_absolute_; }
  const std::vector<std::string> &remarks() const { return remarks_; }

 private:
  /// A number beside something that is none is infinitely far away from it.
  static double finite_or_infinite(double value) {
    return std::isfinite(value) ? value : std::numeric_limits<double>::infinity();
  }

  template <class Where>
  static void raise(Extreme &extreme, double difference, double a, double b, Where where) {
    if (difference > extreme.difference) {
      extreme = {difference, a, b, where()};
    }
  }

  std::string name_;
  double tolerance_;
  int64_t compared_ = 0;
  int64_t differing_ = 0;
  Extreme largest_relative_;
  Extreme largest_absolute_;
  std::vector<std::string> remarks_;
};

/// The largest finite magnitude.
double largest_magnitude(const std::vector<double> &values);

/// Items of which there may be many; the first of them are named: "3 only in A: 5, 7, 9".
class Listing {
 public:
  void add(const std::string &item);
  int64_t count() const { return count_; }
  std::string text(std::string_view introduction) const;

 private:
  int64_t count_ = 0;
  std::string first_;
};

}  // namespace qdlflex::cli
