// Checks of every number of a file, in one walk through the modes.

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "check.h"
#include "invariant_slices.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr int32_t kTransformation = 16;
constexpr int32_t kRotor = 37;

using Places = std::vector<ModeScan::Place>;

class PlaceCounter {
 public:
  explicit PlaceCounter(Places &places) : places_(places) {}

  void count(const std::string &name, std::span<const double> values) {
    const auto bad =
        std::ranges::count_if(values, [](double value) { return !std::isfinite(value); });
    if (bad == 0) {
      return;
    }
    if (places_.empty() || places_.back().name != name) {
      places_.push_back({name, 0});
    }
    places_.back().values += bad;
  }

 private:
  Places &places_;
};

void count_nodes(QDL_Record *record, PlaceCounter &places) {
  for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
    Vector3 place{};
    QDL_NodeCoordinates(record, index, place.data());
    places.count("coordinates", place);
  }
  for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
    const double mass = QDL_NodalMass(record, index);
    places.count("nodal_masses", {&mass, 1});
  }
  for (int32_t index = 0; index < QDL_NodeCount(record); ++index) {
    Matrix3 inertia{};
    QDL_NodalInertia(record, index, inertia.data());
    places.count("nodal_inertias", inertia);
  }
}

void count_matrices(QDL_Record *record, PlaceCounter &places) {
  using Get = int32_t (*)(QDL_Record *, double *, int32_t *, int32_t *);
  const auto count = [&](const char *name, int32_t entries, Get get) {
    std::vector<double> values(static_cast<size_t>(std::max(entries, 0)));
    std::vector<int32_t> rows(values.size());
    std::vector<int32_t> columns(values.size());
    if (!values.empty()) {
      get(record, values.data(), rows.data(), columns.data());
      places.count(name, values);
    }
  };
  count("generalized_stiffness", QDL_NumberOfGenStiff(record), QDL_GenStiffSparse);
  count("generalized_mass", QDL_NumberOfGenMass(record), QDL_GenMassSparse);
  count("generalized_damping", QDL_NumberOfGenDamp(record), QDL_GenDampSparse);
  if (!has_block(record, kTransformation) && !has_block(record, kRotor)) {
    return;
  }
  const auto order = static_cast<size_t>(QDL_ModeCount(record));
  std::vector<double> square(order * order);
  if (QDL_Transformation(record, square.data()) != 0) {
    places.count("transformation", square);
  }
  for (int32_t matrix = 0; matrix < 3; ++matrix) {
    if (QDL_RotorDynamicsMatrix(record, matrix, square.data()) != 0) {
      places.count("rotor_matrices", square);
    }
  }
  std::array<double, 6> axis{};
  QDL_RotorDynamicsAxis(record, axis.data(), &axis[3]);
  places.count("rotor_axis", axis);
}

void count_eigenvalues(const Body &body, PlaceCounter &places) {
  for (const int32_t mode : body.modes) {
    std::array<double, 5> values{};
    QDL_Eigenvalue(body.record, mode, values.data(), &values[1], &values[2], &values[3],
                   &values[4]);
    places.count("eigenvalues", values);
  }
}

void count_statistics(const Body &body, PlaceCounter &places) {
  QDL_Record *const record = body.record;
  if (QDL_ModalStatisticsExist(record) == 0) {
    return;
  }
  using Get = int32_t (*)(QDL_Record *, int32_t, int32_t *, double *);
  struct Maximum {
    int32_t kind;
    Get get;
  };
  for (const auto &[kind, get] : {Maximum{QDL_MODE_SHAPE, QDL_GetMaxModeDisplacement},
                                  Maximum{QDL_MODE_SHAPE, QDL_GetMaxModeRotation},
                                  Maximum{QDL_MODE_STRESS, QDL_GetMaxVonMisesStress},
                                  Maximum{QDL_MODE_STRAIN, QDL_GetMaxVonMisesStrain}}) {
    for (size_t k = 0; k < body.modes.size() && QDL_ModeExist(record, kind) != 0; ++k) {
      double value = 0.0;
      get(record, body.modes[k], nullptr, &value);
      places.count("modal_statistics", {&value, 1});
    }
  }
}

void count_invariants(QDL_Record *record, PlaceCounter &places) {
  constexpr std::array<int, 8> kNumbers = {1, 2, 3, 4, 5, 7, 8, 9};
  for (size_t k = 0; k < kNumbers.size(); ++k) {
    const int number = kNumbers[k];
    const bool stored = has_block(record, 19 + static_cast<int32_t>(k));
    for (int32_t slice = 0; stored && slice < invariant_slices(record, number); ++slice) {
      places.count("invariant_" + std::to_string(number),
                   read_invariant_slice(record, number, slice));
    }
  }
}

void count_loads(QDL_Record *record, PlaceCounter &places) {
  int32_t count = 0;
  if (const LibraryArray<double> preload(QDL_GetModalPreload(record, &count)); preload) {
    places.count("modal_preload", {preload.get(), static_cast<size_t>(count)});
  }
  for (int32_t load_case = 0; load_case < QDL_GetModalLoadCaseCount(record); ++load_case) {
    if (const LibraryArray<double> load(QDL_GetModalLoad(record, load_case, &count)); load) {
      places.count("modal_loads", {load.get(), static_cast<size_t>(count)});
    }
  }
  for (int32_t load_case = 0; load_case < QDL_GetModalLoadNodalCaseCount(record); ++load_case) {
    for (int32_t entry = 0; entry < QDL_GetModalLoadNodalCount(record, load_case); ++entry) {
      const double load = QDL_GetModalLoadNodalLoad(record, load_case, entry);
      places.count("nodal_loads", {&load, 1});
    }
  }
}

void count_operators(QDL_Record *record, PlaceCounter &places) {
  for (int32_t point = 0; point < QDL_GetMonitorPointCount(record); ++point) {
    int32_t rows = 0;
    int32_t columns = 0;
    QDL_GetMonitorPointOperatorSize(record, point, &rows, &columns);
    for (int32_t op = 1; op <= 4; ++op) {
      const int32_t matrices = op == 4 ? QDL_GetMonitorPointNumLoadOperator(record, point) : 1;
      if (QDL_MonitorPointHasOperator(record, point, op) != 0) {
        std::vector<double> values(static_cast<size_t>(rows) * static_cast<size_t>(columns) *
                                   static_cast<size_t>(matrices));
        QDL_GetMonitorPointOperator(record, point, op, values.data());
        places.count("monitor_points", values);
      }
    }
  }
  for (int32_t op = 0; op < QDL_GetMatrixOperatorCount(record); ++op) {
    const auto rows = static_cast<size_t>(QDL_GetMatrixOperatorNumRows(record, op));
    for (int32_t sub = 0; sub < QDL_GetMatrixOperatorNumSubOperator(record, op); ++sub) {
      int32_t columns = 0;
      QDL_GetMatrixOperatorSubNumCols(record, op, sub, &columns);
      std::vector<double> values(rows * static_cast<size_t>(columns));
      QDL_GetMatrixOperatorSubData(record, op, sub, values.data());
      places.count("matrix_operators", values);
    }
  }
}

/// Marks the nodes that move; whether there are any.
bool mark_moving(std::span<const double> half, std::vector<bool> &moves) {
  bool any = false;
  for (size_t at = 0; at + 3 <= half.size(); at += 3) {
    if (half[at] != 0.0 || half[at + 1] != 0.0 || half[at + 2] != 0.0) {
      any = true;
      if (at / 3 < moves.size()) {
        moves[at / 3] = true;
      }
    }
  }
  return any;
}

/// Looks at both halves of a mode, which `half` has room for. Tells whether it moves a node; one
/// that can't be read may.
bool scan_mode(QDL_Record *record, int32_t mode, int32_t kind, std::vector<double> &half,
               PlaceCounter &places, ModeScan &scan) {
  constexpr std::array<const char *, 3> kKinds = {"mode_shapes", "modal_stress", "modal_strain"};
  bool moves = false;
  for (int32_t part = 0; part < 2; ++part) {
    if (QDL_Mode(record, mode, kind, half.data(), part) == 0) {
      ++scan.unreadable;
      moves = true;
      continue;
    }
    places.count(kKinds[static_cast<size_t>(kind)], half);
    moves = (kind == QDL_MODE_SHAPE && mark_moving(half, scan.node_moves)) || moves;
  }
  return moves;
}

}  // namespace

ModeScan scan_modes(const Body &body) {
  QDL_Record *const record = body.record;
  ModeScan scan;
  scan.node_moves.resize(static_cast<size_t>(QDL_NodeCount(record)));
  PlaceCounter places(scan.places);
  for (int32_t kind = 0; kind < 3; ++kind) {
    if (QDL_ModeExist(record, kind) == 0) {
      continue;
    }
    std::vector<double> half(3 * static_cast<size_t>(QDL_ModeNodeCount(record, kind)));
    for (const int32_t mode : body.modes) {
      const bool moves = scan_mode(record, mode, kind, half, places, scan);
      if (kind == QDL_MODE_SHAPE && !moves) {
        scan.zero_modes.push_back(mode);
      }
    }
  }
  return scan;
}

Check check_zero_modes(const Body &body, const ModeScan &scan) {
  if (body.modes.empty() || QDL_ModeExist(body.record, QDL_MODE_SHAPE) == 0) {
    return {"zero_modes", Verdict::kNotApplicable, {}, "There are no mode shapes."};
  }
  Check check{"zero_modes",
              Verdict::kOk,
              {{"count", std::ssize(scan.zero_modes)}, {"modes", scan.zero_modes}},
              "Every mode moves some node."};
  if (scan.zero_modes.size() == body.modes.size()) {
    check.verdict = Verdict::kFailed;
    check.advice = "No mode moves any node. Make the file again with mode shapes.";
  } else if (!scan.zero_modes.empty()) {
    check.verdict = Verdict::kDoubtful;
    check.advice = "Mode " + std::to_string(scan.zero_modes.front()) +
                   " moves no node: it was never set, or its motion is at nodes that the file does "
                   "not have. Discard it or make the file again.";
  }
  return check;
}

Check check_finite(const Body &body, const ModeScan &scan) {
  Places found = scan.places;
  PlaceCounter places(found);
  QDL_Record *const record = body.record;
  count_nodes(record, places);
  count_matrices(record, places);
  count_eigenvalues(body, places);
  count_statistics(body, places);
  count_invariants(record, places);
  count_loads(record, places);
  count_operators(record, places);
  const Vector3 &c = body.centre;
  places.count("global_mass_properties", std::array{body.mass, c[0], c[1], c[2]});
  places.count("global_mass_properties", body.inertia);

  int64_t total = 0;
  for (const ModeScan::Place &place : found) {
    total += place.values;
  }
  Check check{"finite",
              Verdict::kOk,
              {{"not_finite", total}, {"unreadable_modes", scan.unreadable}},
              "Every number is finite."};
  for (const ModeScan::Place &place : found) {
    check.numbers.push_back({place.name, place.values});
  }
  if (scan.unreadable > 0) {
    check.verdict = Verdict::kFailed;
    check.advice = "Some modes cannot be read; the file may be cut short. Make it again.";
  } else if (total > 0) {
    check.verdict = Verdict::kFailed;
    check.advice = "There are values that are infinite or not a number, in " + found.front().name +
                   " first. Make the file again from results without them.";
  }
  return check;
}

}  // namespace qdlflex::cli
