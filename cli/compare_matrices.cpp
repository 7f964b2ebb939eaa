// Generalized matrices, the mode shape transformation and inertia invariants of two bodies. Values
// of modes are compared pair by pair of modes, those of B divided by the factors of the pairs.

#include "body_pair.h"
#include "invariant_slices.h"
#include "modal_matrix.h"

namespace qdlflex::cli {

namespace {

// Indices of blocks.
constexpr int32_t kNodalMasses = 8;
constexpr int32_t kFirstInvariant = 18;

size_t mode_count(QDL_Record *record) {
  return static_cast<size_t>(QDL_ModeCount(record));
}

using ReadMatrix = int32_t (*)(QDL_Record *, double *, int32_t);

BlockDifference compare_generalized_matrix(const BodyPair &bodies, const char *name,
                                           ReadMatrix read) {
  BlockDifference block = bodies.block(name);
  const auto matrix_of = [&](QDL_Record *record, std::vector<double> &values) {
    values.resize(mode_count(record) * mode_count(record));
    return !values.empty() && read(record, values.data(), QDL_ModeCount(record)) != 0;
  };
  std::vector<double> a;
  std::vector<double> b;
  const bool in_a = matrix_of(bodies.a, a);
  const bool in_b = matrix_of(bodies.b, b);
  if (block.both(in_a, in_b)) {
    compare_modal_matrix(block, bodies, a, b, name);
  }
  return block;
}

bool is_identity(const std::vector<double> &matrix, size_t order) {
  for (size_t k = 0; k < matrix.size(); ++k) {
    if (matrix[k] != (k / order == k % order ? 1.0 : 0.0)) {
      return false;
    }
  }
  return true;
}

/// A file without this matrix has the modes as they were.
std::vector<double> read_transformation(QDL_Record *record) {
  const size_t order = mode_count(record);
  std::vector<double> matrix(order * order);
  if (order > 0 && QDL_Transformation(record, matrix.data()) == 0) {
    for (size_t k = 0; k < order; ++k) {
      matrix[k * order + k] = 1.0;
    }
  }
  return matrix;
}

BlockDifference compare_transformation(const BodyPair &bodies) {
  BlockDifference block = bodies.block("mode shape transformation");
  const std::vector<double> a = read_transformation(bodies.a);
  const std::vector<double> b = read_transformation(bodies.b);
  const size_t columns_a = mode_count(bodies.a);
  const size_t columns_b = mode_count(bodies.b);
  if (is_identity(a, columns_a) && is_identity(b, columns_b)) {
    return block;
  }
  const double largest = largest_magnitude(a);
  for (size_t row = 0; row < std::min(columns_a, columns_b); ++row) {
    for (const ModePair &mode : bodies.modes) {
      block.compare(a[row * columns_a + static_cast<size_t>(mode.a)],
                    b[row * columns_b + static_cast<size_t>(mode.b)] / mode.factor, largest, [&] {
                      return mode_name(bodies, mode) + ", original mode " + std::to_string(row + 1);
                    });
    }
  }
  return block;
}

std::string name_of(int number) {
  return "invariant " + std::to_string(number);
}

/// Invariants 1, 2 and 7, those of the undeformed body.
BlockDifference compare_rigid_invariant(const BodyPair &bodies, int number) {
  BlockDifference block = bodies.block(name_of(number));
  const std::vector<double> a = read_invariant_slice(bodies.a, number, 0);
  const std::vector<double> b = read_invariant_slice(bodies.b, number, 0);
  // A moment about the origin is as small as it likes.
  const double scale = number == 2 ? std::abs(QDL_Invar1(bodies.a)) * bodies.size : 0.0;
  for (size_t k = 0; k < a.size(); ++k) {
    block.compare(a[k], b[k], std::max(largest_magnitude(a), scale),
                  [k] { return "value " + std::to_string(k + 1); });
  }
  return block;
}

/// The values of a mode, or of a mode with one partner at a time, as the getters hand them out.
struct ModalInvariant {
  size_t components;
  int number;
  bool of_pairs;
};

constexpr ModalInvariant kModalInvariants[] = {
    {3, 3, false}, {3, 4, false}, {3, 5, true}, {9, 8, false}, {9, 9, true}};

/// All modes of one row, mode after mode: row 0, or that of the first mode of pairs.
std::vector<double> read_row(QDL_Record *record, const ModalInvariant &invariant, int32_t row) {
  std::vector<double> values;
  if (invariant.number == 8) {
    for (int32_t mode = 0; mode < QDL_ModeCount(record); ++mode) {
      const std::vector<double> matrix = read_invariant_slice(record, 8, mode);
      values.insert(values.end(), matrix.begin(), matrix.end());
    }
    return values;
  }
  values = read_invariant_slice(record, invariant.number, row);
  if (invariant.components == 9) {
    return values;
  }
  std::vector<double> by_mode(values.size());
  for (size_t k = 0; k < values.size(); ++k) {
    by_mode[k] = values[(k % 3) * mode_count(record) + k / 3];
  }
  return by_mode;
}

double largest_of_invariant(QDL_Record *record, const ModalInvariant &invariant) {
  double largest = 0.0;
  const int32_t rows = invariant.of_pairs ? QDL_ModeCount(record) : 1;
  for (int32_t row = 0; row < rows; ++row) {
    largest = std::max(largest, largest_magnitude(read_row(record, invariant, row)));
  }
  return largest;
}

/// `first` is the first mode of pairs.
void compare_row(const BodyPair &bodies, const ModalInvariant &invariant, const ModePair &first,
                 double largest, BlockDifference &block) {
  const std::vector<double> a = read_row(bodies.a, invariant, first.a);
  const std::vector<double> b = read_row(bodies.b, invariant, first.b);
  for (const ModePair &mode : bodies.modes) {
    const double factor = mode.factor * (invariant.of_pairs ? first.factor : 1.0);
    const double *const of_a = &a[static_cast<size_t>(mode.a) * invariant.components];
    const double *const of_b = &b[static_cast<size_t>(mode.b) * invariant.components];
    for (size_t k = 0; k < invariant.components; ++k) {
      block.compare(of_a[k], of_b[k] / factor, largest, [&] {
        return (invariant.of_pairs ? mode_name(bodies, first) + ", " : "") +
               mode_name(bodies, mode) + ", value " + std::to_string(k + 1);
      });
    }
  }
}

/// Rows that belong together are compared one at a time, as all of them may be many.
BlockDifference compare_modal_invariant(const BodyPair &bodies, const ModalInvariant &invariant) {
  BlockDifference block = bodies.block(name_of(invariant.number));
  const double largest = largest_of_invariant(bodies.a, invariant);
  if (!invariant.of_pairs) {
    compare_row(bodies, invariant, {0, 0, {}}, largest, block);
    return block;
  }
  for (const ModePair &first : bodies.modes) {
    compare_row(bodies, invariant, first, largest, block);
  }
  return block;
}

/// Where only one body holds an invariant, the other's comes from its nodes, if they have masses.
bool comparable(BlockDifference &block, const BodyPair &bodies, int number) {
  const int32_t index = kFirstInvariant + number - (number < 6 ? 1 : 2);
  const bool in_a = QDL_Exists(bodies.a, index) != 0;
  const bool in_b = QDL_Exists(bodies.b, index) != 0;
  if (!in_a && !in_b) {
    return false;
  }
  return block.both(in_a || QDL_Exists(bodies.a, kNodalMasses) != 0,
                    in_b || QDL_Exists(bodies.b, kNodalMasses) != 0);
}

}  // namespace

void compare_generalized(const BodyPair &bodies, BlockDifferences &blocks) {
  blocks.push_back(compare_generalized_matrix(bodies, "generalized stiffness", QDL_GenStiffFull));
  blocks.push_back(compare_generalized_matrix(bodies, "generalized mass", QDL_GenMassFull));
  blocks.push_back(compare_generalized_matrix(bodies, "generalized damping", QDL_GenDampFull));
  blocks.push_back(compare_transformation(bodies));
}

void compare_invariants(const BodyPair &bodies, BlockDifferences &blocks) {
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
    const auto *const modal = std::ranges::find(kModalInvariants, number, &ModalInvariant::number);
    const bool rigid = modal == std::ranges::end(kModalInvariants);
    BlockDifference block = bodies.block(name_of(number));
    if ((rigid || !bodies.modes.empty()) && comparable(block, bodies, number)) {
      block =
          rigid ? compare_rigid_invariant(bodies, number) : compare_modal_invariant(bodies, *modal);
    }
    blocks.push_back(block);
  }
}

}  // namespace qdlflex::cli
