// Checks of rigid modes and of what the modes carry of the body's mass.

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

#include "check.h"
#include "invariant_slices.h"
#include "nodal_metric.h"

namespace qdlflex::cli {

namespace {

constexpr size_t kAxes = 6;
constexpr int32_t kInvariant3 = 21;
constexpr int32_t kInvariant4 = 22;

// Of a solver in double precision rigid modes come out ten thousand times lower than elastic ones.
constexpr double kClearGap = 100.0;
// Result files in text have six digits, rigid modes mixed with elastic ones fewer.
constexpr double kRigid = 1e-3;
constexpr double kNearlyRigid = 0.05;
// The share that building codes want the modes to carry of a body on a moving base.
constexpr double kEnoughMass = 0.9;
// Bessel's inequality; more than the whole comes from masses that do not belong to the modes.
constexpr double kWholeMass = 1.05;
constexpr double kExcessiveMass = 1.5;

std::optional<double> frequency_of(const Body &body, size_t mode) {
  double frequency = 0.0;
  if (QDL_Eigenvalue(body.record, body.modes[mode], nullptr, &frequency, nullptr, nullptr,
                     nullptr) == 0) {
    return std::nullopt;
  }
  return frequency;
}

size_t rigid_modes(const Body &body) {
  return static_cast<size_t>(QDL_RigidBodyModeCount(body.record));
}

/// The largest that is a number, 0 if there is none.
double largest_of(std::span<const double> values) {
  double most = 0.0;
  for (const double value : values) {
    most = std::isnan(value) ? most : std::max(most, value);
  }
  return most;
}

/// The square matrix of inner products of the rigid modes and, behind them, the six motions.
/// Turning about the line on which all nodes lie is no motion: its products become zero.
std::vector<double> rigid_products(const Body &body, const NodalMetric &metric, size_t rigid) {
  const size_t count = rigid + kAxes;
  std::vector<double> products(count * count);
  for_each_product(
      metric, count,
      [&](size_t k) {
        return k < rigid ? metric.mode(body.modes[k]) : metric.rigid_motion(k - rigid, body.centre);
      },
      [&](size_t i, size_t k, double product) {
        products[i * count + k] = products[k * count + i] = product;
      });
  constexpr double kNoTurn = 1e-12;
  const auto square = [&](size_t k) { return products[k * count + k]; };
  const double turns = square(count - 3) + square(count - 2) + square(count - 1);
  for (size_t turn = count - 3; turn < count; ++turn) {
    if (square(turn) <= kNoTurn * turns) {
      for (size_t k = 0; k < count; ++k) {
        products[turn * count + k] = products[k * count + turn] = 0.0;
      }
    }
  }
  return products;
}

/// Momenta of the whole body in each mode.
std::vector<ModeMomenta> read_momenta(const Body &body) {
  const size_t count = body.modes.size();
  const std::vector<double> linear = read_invariant_slice(body.record, 3, 0);
  const std::vector<double> angular = read_invariant_slice(body.record, 4, 0);
  std::vector<ModeMomenta> momenta;
  for (size_t k = 0; k < count; ++k) {
    const Vector3 p = {linear[k], linear[count + k], linear[2 * count + k]};
    const Vector3 moment = cross(body.centre, p);
    const Vector3 about_centre = {angular[k] - moment[0], angular[count + k] - moment[1],
                                  angular[2 * count + k] - moment[2]};
    momenta.push_back({body.generalized_mass_of(k, k), p, about_centre});
  }
  return momenta;
}

bool has_momenta(const Body &body) {
  const bool nodes =
      body.nodal_masses == MassOfNodes::kWhole && QDL_ModeExist(body.record, QDL_MODE_SHAPE) != 0;
  return nodes || (has_block(body.record, kInvariant3) && has_block(body.record, kInvariant4));
}

}  // namespace

Check check_rigid_modes(const Body &body) {
  Check check{"rigid_modes", Verdict::kNotApplicable, {}, {}};
  const size_t rigid = rigid_modes(body);
  double highest_rigid = 0.0;
  double lowest_elastic = std::numeric_limits<double>::infinity();
  double highest = 0.0;
  bool ascending = true;
  for (size_t k = 0; k < body.modes.size(); ++k) {
    const auto frequency = frequency_of(body, k);
    if (!frequency) {
      check.advice = "Coupled modes have no frequencies. Run \"qdlflex orthonormalize\" first.";
      return check;
    }
    k < rigid ? highest_rigid = larger(highest_rigid, *frequency)
              : lowest_elastic = std::min(lowest_elastic, *frequency);
    ascending = ascending && (k < rigid || !(kClearGap * std::fabs(*frequency) < highest));
    highest = larger(highest, *frequency);
  }
  if (body.modes.empty()) {
    check.advice = "There are no modes.";
    return check;
  }
  check.numbers = {{"count", static_cast<int64_t>(rigid)}};
  if (rigid == 0 && ascending) {
    check.numbers.push_back({"lowest_elastic_frequency", lowest_elastic});
    check.advice = "There are no rigid modes: the body is held, or they were left out.";
    return check;
  }
  const double gap = lowest_elastic / highest_rigid;
  check.numbers.push_back({"highest_rigid_frequency", highest_rigid});
  if (std::isfinite(lowest_elastic)) {
    check.numbers.push_back({"lowest_elastic_frequency", lowest_elastic});
    check.numbers.push_back({"gap", gap});
  }
  check.verdict = Verdict::kOk;
  check.advice = "All six rigid modes are there, well below the elastic ones.";
  if (!ascending) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "A mode lies far below one before it, but rigid modes count only where they come first. "
        "Run \"qdlflex orthonormalize\", which sorts the modes.";
  } else if (rigid < kAxes) {
    check.verdict = Verdict::kDoubtful;
    check.advice = "A free body has six rigid modes. Look for supports or for missing modes.";
  } else if (!(gap >= kClearGap)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "The rigid modes have frequencies near that of the first elastic mode. Look for "
        "supports, contact or preload in the analysis.";
  }
  return check;
}

Check check_rigid_motion(const Body &body) {
  Check check{"rigid_motion", Verdict::kNotApplicable, {}, {}};
  const size_t rigid = rigid_modes(body);
  if (rigid == 0 || QDL_ModeExist(body.record, QDL_MODE_SHAPE) == 0) {
    check.advice = rigid == 0 ? "There are no rigid modes." : "There are no mode shapes.";
    return check;
  }
  const bool masses = body.mass_of_nodes > 0.0 && body.negative_masses == 0;
  const NodalMetric metric(body.record,
                           masses ? NodalMetric::Weights::kMasses : NodalMetric::Weights::kEqual);
  const std::vector<double> products = rigid_products(body, metric, rigid);
  const std::vector<double> motions = left_over(products, 0, rigid);
  const std::vector<double> modes = left_over(products, rigid, rigid + kAxes);
  const double missed = largest_of(std::span(motions).subspan(rigid));
  const double bent = largest_of(std::span(modes).first(rigid));
  check.numbers = {{"motions_missed", missed},
                   {"modes_not_rigid", bent},
                   {"weights", masses ? "masses" : "equal"}};
  check.verdict = judge(bent, kRigid, kNearlyRigid);
  check.advice = "The rigid modes move the body as one and reach every rigid motion.";
  if (check.verdict != Verdict::kOk) {
    check.advice =
        "A rigid mode bends the body. Look for elastic modes of low frequency, modes of "
        "another mesh or a wrong unit of rotations.";
  } else if (rigid == kAxes && !(missed <= kRigid)) {
    check.verdict = judge(missed, kRigid, kNearlyRigid);
    check.advice =
        "The rigid modes do not reach every rigid motion: they depend on each other. "
        "Make the file with six independent rigid modes.";
  } else if (rigid < kAxes) {
    check.advice = "The rigid modes move the body as one; other rigid motions are not among them.";
  }
  return check;
}

Check check_effective_masses(const Body &body, std::vector<ModeShares> &modes) {
  Check check{"effective_mass", Verdict::kNotApplicable, {}, {}};
  if (body.modes.empty() || !(body.mass > 0.0) || !has_momenta(body)) {
    check.advice = "Neither nodal masses of the whole body nor invariants 3 and 4 are there.";
    return check;
  }
  if (body.generalized_mass.empty() ||
      !(coupling(body.generalized_mass, body.modes.size(), 0.0) <= kUncoupled)) {
    check.advice = "Effective masses need orthogonal modes. Run \"qdlflex orthonormalize\" first.";
    return check;
  }
  if (!(diagonal_range(body.generalized_mass, body.modes.size())[0] > 0.0)) {
    check.advice = "Effective masses need positive generalized masses. See matrix_diagonals.";
    return check;
  }
  const EffectiveMasses found = effective_masses(body.mass, body.inertia, read_momenta(body));
  constexpr std::array<const char *, kAxes> kNames = {"x", "y", "z", "rx", "ry", "rz"};
  double least = std::numeric_limits<double>::infinity();
  double most = 0.0;
  for (size_t k = 0; k < kAxes; ++k) {
    check.numbers.push_back({kNames[k], found.sums[k]});
    if (!(found.whole[k] <= 0.0)) {
      least = std::min(least, found.sums[k]);
      most = larger(most, found.sums[k]);
    }
  }
  for (size_t k = 0; k < body.modes.size(); ++k) {
    modes.push_back({body.modes[k], frequency_of(body, k).value_or(0.0), found.shares[k]});
  }
  check.verdict = judge(most, kWholeMass, kExcessiveMass);
  check.advice = "The modes carry the body's mass in every direction.";
  if (check.verdict != Verdict::kOk) {
    check.advice =
        "The modes carry more than the whole mass: shapes, generalized masses and nodal "
        "masses do not belong together. See mode_products.";
  } else if (!(least >= kEnoughMass)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "The modes leave out mass in some direction. Compute more modes, or rigid ones, "
        "where the base of the body is accelerated that way.";
  }
  return check;
}

}  // namespace qdlflex::cli
