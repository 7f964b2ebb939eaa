#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "body_measures.h"
#include "record.h"

namespace qdlflex::cli {

/// Ascending by what they say about the body.
enum class Verdict { kOk, kNotApplicable, kDoubtful, kFailed };

struct Number {
  std::string name;
  std::variant<int64_t, double, std::string, std::vector<double>, std::vector<int32_t>> value;
};

struct Check {
  std::string name;
  Verdict verdict;
  std::vector<Number> numbers;
  std::string advice;  // what was found and what to do, in sentences
};

/// A mode in the table of effective masses.
struct ModeShares {
  int32_t number;
  double frequency;
  Directions shares;
};

/// What `qdlflex check` tells of a file.
struct CheckReport {
  std::string path;
  std::vector<Check> checks;
  std::vector<ModeShares> modes;  // empty if effective masses cannot be told
};

/// The worst verdict of the checks.
Verdict overall(const CheckReport &report);

/// Throws a Failure if the file cannot be opened as a QDL file.
CheckReport check_file(const std::string &path);

void print_tables(const CheckReport &report);
void print_json(const CheckReport &report);

// The checks and what they share follow.

/// What the nodes have of the body's mass.
enum class MassOfNodes {
  kNone,
  kWhole,
  kPart,           // inner nodes were discarded with their masses
  kContradictory,  // neither the whole nor what such a removal leaves
};

/// Coupling of this size in generalized matrices changes frequencies by its square: the modes count
/// as orthogonal.
constexpr double kUncoupled = 1e-4;

// Blocks that several checks ask for, by their numbers in the format.
constexpr int32_t kMassBlock = 9;
constexpr int32_t kInertiaBlock = 10;
constexpr int32_t kFaceBlock = 14;

/// What several checks need.
struct Body {
  std::string path;
  QDL_Record *record = nullptr;
  std::vector<int32_t> modes;  // their numbers

  bool has_mass = false;
  double mass = 0.0;
  Vector3 centre{};
  Matrix3 inertia{};  // about the centre
  double mass_of_nodes = 0.0;
  int32_t negative_masses = 0;
  MassOfNodes nodal_masses = MassOfNodes::kNone;

  std::vector<double> generalized_mass;  // M x M; empty if unknown

  double generalized_mass_of(size_t i, size_t k) const {
    return generalized_mass[i * modes.size() + k];
  }
};

Body read_body(const std::string &path, QDL_Record *record);

/// Whether the model has the data of a block, by its number in the format.
bool has_block(QDL_Record *record, int32_t number);

/// Not a number is the worst.
Verdict judge(double value, double still_ok, double still_doubtful);

Check check_contents(const Body &body);
Check check_units(const Body &body);
Check check_mass_properties(const Body &body);
Check check_nodal_masses(const Body &body);

Check check_matrix_symmetry(const Body &body);
Check check_matrix_diagonals(const Body &body);
Check check_mode_products(const Body &body);

Check check_rigid_modes(const Body &body);
Check check_rigid_motion(const Body &body);
Check check_effective_masses(const Body &body, std::vector<ModeShares> &modes);

Check check_invariants(const Body &body);

/// What one walk through the data of all modes finds.
struct ModeScan {
  struct Place {
    std::string name;
    int64_t values;  // not finite
  };

  std::vector<int32_t> zero_modes;
  std::vector<bool> node_moves;  // by node, in any mode
  std::vector<Place> places;
  int64_t unreadable = 0;  // halves of modes
};

ModeScan scan_modes(const Body &body);

Check check_zero_modes(const Body &body, const ModeScan &scan);
Check check_finite(const Body &body, const ModeScan &scan);

Check check_node_references(const Body &body);
Check check_interface_nodes(const Body &body, const ModeScan &scan);
Check check_stress_nodes(const Body &body);

}  // namespace qdlflex::cli
