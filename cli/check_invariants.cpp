// Checks of the inertia invariants that a file holds.

#include <algorithm>
#include <cmath>
#include <span>

#include "check.h"
#include "invariant_slices.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr std::array<int, 8> kNumbers = {1, 2, 3, 4, 5, 7, 8, 9};
constexpr int32_t kFirstBlock = 19;

// Sums over nodes in single precision come this near.
constexpr double kSame = 1e-6;
// A solver that integrates over its elements differs from sums over nodes by the lumping.
constexpr double kLumped = 0.2;

bool holds(QDL_Record *record, size_t which) {
  return has_block(record, kFirstBlock + static_cast<int32_t>(which));
}

bool holds_invariant(QDL_Record *record, int number) {
  return holds(record, static_cast<size_t>(std::ranges::find(kNumbers, number) - kNumbers.begin()));
}

/// A record of its own for the same file, whose invariants are sums over the nodes.
Record open_without_invariants(const std::string &path) {
  Record record(QDL_Create(0, 0));
  if (!record || QDL_ReadQDL(record.get(), File_Open(path.c_str(), "rb"), nullptr) == 0 ||
      QDL_PermuteQDL(record.get(), nullptr, QDL_ModeCount(record.get()), 1.0, nullptr, nullptr) ==
          0) {
    throw Failure(path + " cannot be read once more");
  }
  QDL_SetKeepModesInMemory(record.get(), 0);
  return record;
}

/// The size that an invariant can have by the inequality of Cauchy and Schwarz. What belongs to
/// elastic modes of a free body is zero but for rounding and must not be measured by itself.
double bound(const Body &body, int number) {
  double modes = 0.0;
  for (size_t k = 0; k < body.modes.size() && !body.generalized_mass.empty(); ++k) {
    modes = larger(modes, body.generalized_mass_of(k, k));
  }
  const auto &c = body.centre;
  const double second_moment = 0.5 * (body.inertia[0] + body.inertia[4] + body.inertia[8]) +
                               body.mass * (c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
  switch (number) {
    case 1:
      return body.mass;
    case 2:
      return std::sqrt(body.mass * second_moment);
    case 3:
      return std::sqrt(body.mass * modes);
    case 7:
      return second_moment;
    case 4:
    case 8:
      return std::sqrt(second_moment * modes);
    default:
      return modes;
  }
}

class Difference {
 public:
  void add(std::span<const double> a, std::span<const double> b) {
    for (size_t k = 0; k < a.size(); ++k) {
      difference_ = larger(difference_, a[k] - b[k]);
      size_ = larger(larger(size_, a[k]), b[k]);
    }
  }

  double relative_to(double bound) const {
    const double scale = larger(size_, bound);
    return difference_ == 0.0 ? 0.0 : difference_ / scale;
  }

 private:
  double difference_ = 0.0;
  double size_ = 0.0;
};

double difference_from_nodes(const Body &body, QDL_Record *recomputed, int number) {
  Difference difference;
  for (int32_t slice = 0; slice < invariant_slices(body.record, number); ++slice) {
    difference.add(read_invariant_slice(body.record, number, slice),
                   read_invariant_slice(recomputed, number, slice));
  }
  return difference.relative_to(bound(body, number));
}

/// Invariant 4 (5) is what invariant 8 (9) lacks to be symmetric, but for rotary inertias.
double difference_from_matrices(const Body &body, int vectors, int matrices) {
  const size_t count = body.modes.size();
  Difference difference;
  std::vector<double> vector;
  for (int32_t mode = 0; mode < invariant_slices(body.record, matrices); ++mode) {
    const std::vector<double> row = read_invariant_slice(body.record, matrices, mode);
    if (vectors == 5 || vector.empty()) {
      vector = read_invariant_slice(body.record, vectors, mode);
    }
    for (size_t k = 0; k < row.size() / 9; ++k) {
      const size_t column = vectors == 5 ? k : static_cast<size_t>(mode);
      const Vector3 given = {vector[column], vector[count + column], vector[2 * count + column]};
      difference.add(given, axis_of_difference(std::span(row).subspan(9 * k).template first<9>()));
    }
  }
  return difference.relative_to(bound(body, vectors));
}

}  // namespace

Check check_invariants(const Body &body) {
  QDL_Record *const record = body.record;
  Check check{"invariants", Verdict::kNotApplicable, {}, {}};
  const bool nodes =
      body.nodal_masses == MassOfNodes::kWhole || body.nodal_masses == MassOfNodes::kContradictory;
  const bool shapes = QDL_ModeExist(record, QDL_MODE_SHAPE) != 0;
  double worst = 0.0;
  const auto note = [&](int number, double difference) {
    check.numbers.push_back({"invariant_" + std::to_string(number), difference});
    worst = larger(worst, difference);
  };
  if (nodes) {
    const Record recomputed = open_without_invariants(body.path);
    for (size_t k = 0; k < kNumbers.size(); ++k) {
      const int number = kNumbers[k];
      const bool rigid = number == 1 || number == 2 || number == 7;
      if (holds(record, k) && (rigid || shapes)) {
        note(number, difference_from_nodes(body, recomputed.get(), number));
      }
    }
  } else if (!has_block(record, kInertiaBlock)) {
    for (const auto &[vectors, matrices] : {std::pair{4, 8}, std::pair{5, 9}}) {
      if (holds_invariant(record, vectors) && holds_invariant(record, matrices)) {
        note(vectors, difference_from_matrices(body, vectors, matrices));
      }
    }
  }
  if (check.numbers.empty()) {
    check.advice = "The file holds no invariants that could be computed from the rest of it.";
    return check;
  }
  check.verdict = judge(worst, kSame, kLumped);
  check.numbers.push_back({"source", nodes ? "nodes" : "invariants 8 and 9"});
  check.advice = nodes ? "The invariants are the sums over the nodes."
                       : "Invariants 4 and 5 agree with 8 and 9. The nodes have too little of the "
                         "mass to compute more.";
  if (check.verdict == Verdict::kDoubtful) {
    check.advice =
        "The invariants differ from the sums over the nodes as those of another lumping "
        "of masses would. Find out where they come from.";
  } else if (check.verdict == Verdict::kFailed) {
    check.advice =
        "The invariants do not belong to these nodes, masses and modes. Import the body "
        "again, with invariants.";
  }
  return check;
}

}  // namespace qdlflex::cli
