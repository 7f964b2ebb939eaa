// Checks of the generalized matrices, alone and against the mode shapes.

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "check.h"
#include "invariant_slices.h"
#include "nodal_metric.h"

namespace qdlflex::cli {

namespace {

constexpr int32_t kInvariant9 = 26;

// A symmetric matrix is written twice from one value, or rounded to single precision.
constexpr double kSameEntry = 1e-6;
// Stiffness below this share of the largest one is that of a frequency below a thousandth of the
// highest: a rigid mode, whose coupling to others is rounding.
constexpr double kRigidStiffness = 1e-6;
// Lumped masses stand for the solver's consistent mass matrix to some percent, less well the higher
// the mode. Wrong units or scaling of modes are off by factors.
constexpr double kLumpedMass = 0.1;
constexpr double kPoorMass = 0.5;

struct Entries {
  std::vector<double> values;
  std::vector<int32_t> rows;
  std::vector<int32_t> columns;
};

using GetEntries = int32_t (*)(QDL_Record *, double *, int32_t *, int32_t *);

Entries read_entries(QDL_Record *record, int32_t count, GetEntries get) {
  const auto size = static_cast<size_t>(std::max(count, 0));
  Entries entries{std::vector<double>(size), std::vector<int32_t>(size),
                  std::vector<int32_t>(size)};
  if (size > 0) {
    get(record, entries.values.data(), entries.rows.data(), entries.columns.data());
  }
  return entries;
}

struct Asymmetry {
  double largest = 0.0;  // difference of two values for one place, relative to the largest value
  int64_t stray = 0;     // entries outside the matrix
};

/// An entry stands for both its places. Where several stand for one pair of modes they must agree.
Asymmetry asymmetry(const Entries &entries, int32_t order) {
  struct Entry {
    std::pair<int32_t, int32_t> place;
    double value;
  };
  Asymmetry result;
  std::vector<Entry> sorted;
  double scale = 0.0;
  for (size_t k = 0; k < entries.values.size(); ++k) {
    const auto place = std::minmax(entries.rows[k], entries.columns[k]);
    if (place.first < 0 || place.second >= order) {
      ++result.stray;
    } else {
      sorted.push_back({place, entries.values[k]});
      scale = larger(scale, entries.values[k]);
    }
  }
  std::ranges::sort(sorted, {}, &Entry::place);
  for (size_t k = 1; k < sorted.size(); ++k) {
    if (sorted[k].place == sorted[k - 1].place && sorted[k].value != sorted[k - 1].value) {
      result.largest = larger(result.largest, (sorted[k].value - sorted[k - 1].value) / scale);
    }
  }
  return result;
}

/// The products of the whole body's modes from invariant 9, whose matrix for a pair of modes is
/// the sum of m (p' p^T - (p . p') E). It knows nothing of rotary inertias.
template <class Visit>
void products_from_invariant(const Body &body, Visit visit) {
  for (size_t i = 0; i < body.modes.size(); ++i) {
    const auto row = read_invariant_slice(body.record, 9, static_cast<int32_t>(i));
    for (size_t k = i; k < body.modes.size(); ++k) {
      const double *const m = &row[9 * k];
      visit(i, k, -0.5 * (m[0] + m[4] + m[8]));
    }
  }
}

/// How far products of modes are from the generalized masses, relative to those.
struct Deviations {
  double diagonal = 0.0;
  double off_diagonal = 0.0;
  int32_t mode = 0;  // of the largest one
  int32_t other_mode = 0;
};

class DeviationFinder {
 public:
  explicit DeviationFinder(const Body &body) : body_(body) {}

  void operator()(size_t i, size_t k, double product) {
    const double stored = mass(i, k);
    const double deviation = (product - stored) / std::sqrt(mass(i, i) * mass(k, k));
    const double before = larger(found_.diagonal, found_.off_diagonal);
    double &most = i == k ? found_.diagonal : found_.off_diagonal;
    most = larger(most, deviation);
    if (!std::isnan(before) && !(most <= before)) {
      found_.mode = body_.modes[i];
      found_.other_mode = body_.modes[k];
    }
  }

  const Deviations &found() const { return found_; }

 private:
  /// Modes without generalized masses ought to be of unit mass.
  double mass(size_t i, size_t k) const {
    return body_.generalized_mass.empty() ? (i == k ? 1.0 : 0.0) : body_.generalized_mass_of(i, k);
  }

  const Body &body_;
  Deviations found_;
};

}  // namespace

Check check_matrix_symmetry(const Body &body) {
  QDL_Record *const record = body.record;
  struct Matrix {
    const char *name;
    int32_t block;
    int32_t count;
    GetEntries get;
  };
  const std::array<Matrix, 3> matrices = {
      {{"stiffness", 12, QDL_NumberOfGenStiff(record), QDL_GenStiffSparse},
       {"mass", 13, QDL_NumberOfGenMass(record), QDL_GenMassSparse},
       {"damping", 15, QDL_NumberOfGenDamp(record), QDL_GenDampSparse}}};
  std::vector<Number> numbers;
  Asymmetry worst;
  for (const Matrix &matrix : matrices) {
    if (!has_block(record, matrix.block)) {
      continue;
    }
    const Asymmetry found =
        asymmetry(read_entries(record, matrix.count, matrix.get), QDL_ModeCount(record));
    numbers.push_back({matrix.name, found.largest});
    worst.largest = larger(worst.largest, found.largest);
    worst.stray += found.stray;
  }
  if (numbers.empty()) {
    return {"matrix_symmetry", Verdict::kNotApplicable, numbers,
            "The file has no generalized matrices."};
  }
  numbers.push_back({"stray_entries", worst.stray});
  Check check{"matrix_symmetry", Verdict::kOk, numbers,
              "No place of a generalized matrix has two values."};
  if (!(worst.largest <= kSameEntry)) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "The file gives a place of a generalized matrix, or the one across the diagonal, "
        "two values. Write the matrix once, and symmetric.";
  } else if (worst.stray > 0) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "Some entries belong to modes that the file does not have and are ignored. Make "
        "the file with all modes or with smaller matrices.";
  }
  return check;
}

Check check_matrix_diagonals(const Body &body) {
  const size_t order = body.modes.size();
  std::vector<double> stiffness(order * order);
  if (order == 0 || body.generalized_mass.empty() ||
      QDL_GenStiffFull(body.record, stiffness.data(), QDL_ModeCount(body.record)) == 0) {
    return {"matrix_diagonals",
            Verdict::kNotApplicable,
            {},
            "The file has no generalized mass and stiffness."};
  }
  const double mass_coupling = coupling(body.generalized_mass, order, 0.0);
  const double stiffness_coupling = coupling(stiffness, order, kRigidStiffness);
  const double least_mass = diagonal_range(body.generalized_mass, order)[0];
  const auto [least_stiffness, most_stiffness] = diagonal_range(stiffness, order);
  Check check{"matrix_diagonals",
              Verdict::kOk,
              {{"mass_coupling", mass_coupling},
               {"stiffness_coupling", stiffness_coupling},
               {"smallest_mass", least_mass},
               {"smallest_stiffness", least_stiffness}},
              "The modes are orthogonal, with positive generalized masses."};
  if (!(least_mass > 0.0)) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "A generalized mass is not positive. Discard the mode or make the file with its "
        "mass.";
  } else if (!(mass_coupling < 1.0)) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "An entry of the generalized mass exceeds both on the diagonal: the matrix is "
        "not that of moving masses. Make the file again.";
  } else if (!(larger(mass_coupling, stiffness_coupling) <= kUncoupled)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "The modes are coupled. Run \"qdlflex orthonormalize\" for programs that read "
        "diagonals only.";
  } else if (!(least_stiffness >= -kRigidStiffness * most_stiffness)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "A generalized stiffness is negative, so that the mode grows by itself, or not a "
        "number. Look for preload, missing supports or a wrong sign.";
  }
  return check;
}

Check check_mode_products(const Body &body) {
  Check check{"mode_products", Verdict::kNotApplicable, {}, {}};
  const bool rotary = has_block(body.record, kInertiaBlock);
  const bool nodes = body.nodal_masses == MassOfNodes::kWhole;
  const bool shapes = QDL_ModeExist(body.record, QDL_MODE_SHAPE) != 0;
  if (body.modes.empty() || (nodes && !shapes)) {
    check.advice = "There are no mode shapes.";
    return check;
  }
  if (!nodes && (!has_block(body.record, kInvariant9) || rotary)) {
    check.advice =
        "Neither nodal masses of the whole body nor invariant 9 are there to weigh the "
        "modes with.";
    return check;
  }
  DeviationFinder finder(body);
  if (nodes) {
    const NodalMetric metric(body.record, NodalMetric::Weights::kMasses);
    for_each_product(
        metric, body.modes.size(), [&](size_t k) { return metric.mode(body.modes[k]); },
        std::ref(finder));
  } else {
    products_from_invariant(body, std::ref(finder));
  }
  const Deviations &found = finder.found();
  check.numbers = {{"diagonal", found.diagonal},
                   {"off_diagonal", found.off_diagonal},
                   {"worst_modes", std::vector{found.mode, found.other_mode}},
                   {"source", nodes ? "nodes" : "invariant 9"}};
  check.verdict = judge(larger(found.diagonal, found.off_diagonal), kLumpedMass, kPoorMass);
  check.advice =
      "The products of the modes, weighted with the masses, are the generalized masses "
      "to the precision of lumped masses.";
  if (check.verdict == Verdict::kDoubtful) {
    check.advice =
        "The masses at the nodes stand for the mass of these modes only roughly. Refine "
        "the mesh, or leave out modes from the named ones on.";
  } else if (check.verdict == Verdict::kFailed) {
    check.advice =
        "The masses at the nodes do not give the generalized masses of the modes. Look "
        "for wrong units of mass, modes scaled afterwards, or missing masses.";
  }
  return check;
}

}  // namespace qdlflex::cli
