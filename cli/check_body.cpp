// Checks of the body as a whole: its units and its mass.

#include <algorithm>
#include <cmath>

#include "check.h"
#include "invariant_slices.h"
#include "units.h"

namespace qdlflex::cli {

namespace {

// Blocks by number.
constexpr int32_t kGlobalProperties = 6;
constexpr int32_t kUnits = 11;
constexpr int32_t kInvariant1 = 19;

// Units whose factors differ by less than this are the same for the library.
constexpr double kSameUnits = 1e-4;
// Sums over nodes in single precision reach this.
constexpr double kSameMass = 1e-5;
// Tables of solvers round and leave out what does not move; beyond that a mass is missing.
constexpr double kNearMass = 0.01;
// Inertias come from tables and from single precision; relative to the largest of them.
constexpr double kInertiaRounding = 1e-5;

bool geometry_uses_every_node(QDL_Record *record) {
  if (!has_block(record, kFaceBlock)) {
    return false;
  }
  int32_t count = 0;
  const LibraryArray<int32_t> nodes(QDL_GeometryNodes(record, &count));
  return count == QDL_NodeCount(record);
}

void read_mass(Body &body) {
  QDL_Record *const record = body.record;
  for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
    const double mass = QDL_NodalMass(record, index);
    body.mass_of_nodes += mass;
    body.negative_masses += mass < 0.0 ? 1 : 0;
  }
  body.has_mass = has_block(record, kMassBlock) || has_block(record, kGlobalProperties) ||
                  has_block(record, kInvariant1);
  if (!body.has_mass) {
    return;
  }
  body.mass = QDL_Invar1(record);
  const std::vector<double> moment = read_invariant_slice(record, 2, 0);
  const std::vector<double> inertia = read_invariant_slice(record, 7, 0);
  for (size_t k = 0; k < 3 && body.mass != 0.0; ++k) {
    body.centre[k] = moment[k] / body.mass;
  }
  std::ranges::copy(inertia, body.inertia.begin());
  body.inertia = inertia_about(body.centre, body.mass, body.inertia);
}

MassOfNodes compare_masses(const Body &body) {
  if (!has_block(body.record, kMassBlock) || body.mass_of_nodes == 0.0) {
    return MassOfNodes::kNone;
  }
  const double missing = body.mass - body.mass_of_nodes;
  if (std::fabs(missing) <= kSameMass * std::fabs(body.mass)) {
    return MassOfNodes::kWhole;
  }
  return missing > 0.0 && geometry_uses_every_node(body.record) ? MassOfNodes::kPart
                                                                : MassOfNodes::kContradictory;
}

template <class Get>
int32_t repeated(int32_t count, Get get) {
  std::vector<int32_t> numbers(static_cast<size_t>(count));
  for (int32_t index = 0; index < count; ++index) {
    numbers[static_cast<size_t>(index)] = get(index);
  }
  std::ranges::sort(numbers);
  return static_cast<int32_t>(numbers.end() - std::unique(numbers.begin(), numbers.end()));
}

std::vector<double> list(const Vector3 &values) {
  return {values.begin(), values.end()};
}

/// How far a point lies outside the box around all nodes, relative to the diagonal of the box.
double distance_from_box(const Body &body, const Vector3 &point) {
  Vector3 low{};
  Vector3 high{};
  QDL_NodeCoordinates(body.record, 0, low.data());
  high = low;
  for (int32_t index = 1; index < QDL_NodeCount(body.record); ++index) {
    Vector3 place{};
    QDL_NodeCoordinates(body.record, index, place.data());
    for (size_t k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], place[k]);
      high[k] = std::max(high[k], place[k]);
    }
  }
  Vector3 outside{};
  for (size_t k = 0; k < 3; ++k) {
    outside[k] = std::max({low[k] - point[k], point[k] - high[k], 0.0});
  }
  const double diagonal = std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
  const double distance = std::hypot(outside[0], outside[1], outside[2]);
  return distance == 0.0 ? 0.0 : distance / diagonal;
}

}  // namespace

bool has_block(QDL_Record *record, int32_t number) {
  return QDL_Exists(record, number - 1) != 0;
}

Verdict judge(double value, double still_ok, double still_doubtful) {
  return value <= still_ok         ? Verdict::kOk
         : value <= still_doubtful ? Verdict::kDoubtful
                                   : Verdict::kFailed;
}

Body read_body(const std::string &path, QDL_Record *record) {
  Body body;
  body.path = path;
  body.record = record;
  for (int32_t index = 0; index < QDL_ModeCount(record); ++index) {
    body.modes.push_back(QDL_ModeNumber(record, index));
  }
  read_mass(body);
  body.nodal_masses = compare_masses(body);
  std::vector<double> matrix(body.modes.size() * body.modes.size());
  if (QDL_GenMassFull(record, matrix.data(), QDL_ModeCount(record)) != 0) {
    body.generalized_mass = std::move(matrix);
  }
  return body;
}

Check check_contents(const Body &body) {
  QDL_Record *const record = body.record;
  const int32_t nodes = QDL_NodeCount(record);
  const int32_t modes = QDL_ModeCount(record);
  const int32_t repeated_nodes =
      repeated(nodes, [&](int32_t index) { return QDL_NodeID(record, index); });
  const int32_t repeated_modes =
      repeated(modes, [&](int32_t index) { return QDL_ModeNumber(record, index); });
  Check check{"contents",
              Verdict::kOk,
              {{"nodes", nodes},
               {"modes", modes},
               {"repeated_nodes", repeated_nodes},
               {"repeated_modes", repeated_modes}},
              "Nodes and modes are there, each under a number of its own."};
  if (nodes == 0 && modes == 0) {
    check.verdict = Verdict::kFailed;
    check.advice = "The file holds neither nodes nor modes. Make it again.";
  } else if (repeated_nodes + repeated_modes > 0) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "Some nodes or modes share a number, so that only the first can be found by it. "
        "Renumber them where the file is made.";
  } else if (nodes == 0 || modes == 0) {
    check.verdict = Verdict::kDoubtful;
    check.advice = nodes == 0 ? "There are modes without nodes. Make the file again with nodes."
                              : "There are no modes: a simulation can only move the body rigidly.";
  }
  return check;
}

Check check_units(const Body &body) {
  QDL_Record *const record = body.record;
  const double ratio = QDL_UCF(record);
  const Units units = read_units(record);
  Check check{"units",
              Verdict::kOk,
              {{"force_ratio", ratio},
               {"mass_kilogram", QDL_Mass2Kilogram(record, 1.0)},
               {"length_meter", QDL_Length2Meter(record, 1.0)},
               {"time_second", QDL_Time2Second(record, 1.0)},
               {"force_newton", QDL_Force2Newton(record, 1.0)}},
              "The unit of force is that of mass times length over time squared."};
  const std::string names =
      units.mass + ", " + units.length + ", " + units.time + ", " + units.force;
  if (!has_block(record, kUnits)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "No units are declared, so that SI is assumed. Declare the units of the file "
        "with \"qdlflex transform --units\".";
  } else if (!(ratio > 0.0) || !std::isfinite(ratio)) {
    check.verdict = Verdict::kFailed;
    check.advice = "One of the units " + names + " is not known. Make the file with known units.";
  } else if (std::fabs(ratio - 1.0) > kSameUnits) {
    check.verdict = Verdict::kDoubtful;
    check.advice = names +
                   " are not consistent: the unit of force is the ratio times mass times "
                   "length over time squared. Convert with \"qdlflex transform --units\" for "
                   "programs that do not apply this factor.";
  }
  return check;
}

Check check_mass_properties(const Body &body) {
  if (!body.has_mass) {
    return {"mass_properties",
            Verdict::kNotApplicable,
            {},
            "The file tells no mass. Import the body with masses for a dynamic simulation."};
  }
  const Vector3 principal = principal_values(body.inertia);
  Vector3 radii{};
  for (size_t k = 0; k < 3; ++k) {
    radii[k] = std::sqrt(std::max(principal[k], 0.0) / body.mass);
  }
  const double outside = QDL_NodeCount(body.record) > 0 ? distance_from_box(body, body.centre) : 0;
  const double excess = principal[2] - principal[1] - principal[0];
  Check check{"mass_properties",
              Verdict::kOk,
              {{"mass", body.mass},
               {"centre", list(body.centre)},
               {"principal_inertias", list(principal)},
               {"radii_of_gyration", list(radii)},
               {"centre_outside_box", outside}},
              "Mass, centre and principal inertias can belong to a body of these nodes."};
  if (!(body.mass > 0.0)) {
    check.verdict = Verdict::kFailed;
    check.advice = "The mass is not positive. Import the body with its masses.";
  } else if (!(principal[0] >= -kInertiaRounding * principal[2])) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "A principal inertia about the centre is negative: mass, centre and inertia do "
        "not belong together. Compute the invariants from the nodes.";
  } else if (!(excess <= kInertiaRounding * principal[2])) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "The largest principal inertia exceeds the sum of the other two, which no body "
        "can have. Look for negative masses and for products of inertia of wrong sign.";
  } else if (!(outside <= kSameMass)) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "The centre of mass lies outside the box around the nodes. See that nodes and "
        "invariants have the same units and frame.";
  }
  return check;
}

Check check_nodal_masses(const Body &body) {
  if (body.nodal_masses == MassOfNodes::kNone) {
    return {"nodal_masses",
            Verdict::kNotApplicable,
            {},
            "The nodes have no masses, so that modes cannot be weighed."};
  }
  const double share = body.mass_of_nodes / body.mass;
  Check check{
      "nodal_masses",
      Verdict::kOk,
      {{"sum", body.mass_of_nodes}, {"share_of_mass", share}, {"negative", body.negative_masses}},
      "The masses of the nodes add up to the mass of the body."};
  if (body.nodal_masses == MassOfNodes::kContradictory) {
    check.verdict = judge(std::fabs(share - 1.0), 0.0, kNearMass);
    check.advice =
        "The masses of the nodes do not add up to the mass of the body. Find out which "
        "of the two is right.";
  } else if (body.negative_masses > 0) {
    check.verdict = Verdict::kDoubtful;
    check.advice =
        "Some nodes have negative masses, as row sums of second-order elements give "
        "them. Use masses from diagonal scaling.";
  } else if (body.nodal_masses == MassOfNodes::kPart) {
    check.advice =
        "The nodes have a part of the mass, as when inner nodes were discarded. The "
        "rest is in the invariants.";
  }
  return check;
}

}  // namespace qdlflex::cli
