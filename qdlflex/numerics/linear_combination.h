#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace qdlflex {

/// Linear combinations of vectors. Coefficients stand row by row, one row per old vector and one
/// column per new one. A new value is the sum, begun with zero, over the old vectors in ascending
/// order; coefficients of zero are skipped. The result depends on nothing else, not even in its
/// last bit: not on how many values are combined at once, nor on the processor.
class LinearCombination {
 public:
  LinearCombination(std::size_t old_vectors, std::size_t new_vectors,
                    std::span<const double> coefficients);

  /// Combines vectors of `length` values that stand one behind the other.
  void apply(const double *old_vectors, double *new_vectors, std::size_t length);

  /// So many new vectors are computed at once.
  static constexpr std::size_t kGroup = 4;

  /// Eight numbers for the processor's vector registers: a line of its cache. The vectors alone
  /// would not make the struct as aligned as the wider registers want it.
  struct alignas(64) Strip {
    using Four [[gnu::vector_size(32)]] = double;
    Four low, high;
  };

  /// One old vector's weights in a group of new vectors.
  struct Term {
    std::array<double, kGroup> weights{};
    std::size_t vector = 0;
    bool in_all = false;  // no weight is zero
  };

 private:
  void pack(const double *old_vectors, std::size_t length, std::size_t first, std::size_t count);
  void store(const std::array<Strip, kGroup> *panel, std::size_t group, std::size_t length,
             std::size_t first, std::size_t count, double *new_vectors) const;

  std::size_t old_count_;
  std::size_t new_count_;
  std::vector<std::vector<Term>> groups_;  // of kGroup new vectors each
  std::vector<Strip> packed_;              // strip by strip, in each the old vectors
};

}  // namespace qdlflex
