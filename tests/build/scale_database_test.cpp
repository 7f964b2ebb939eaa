// What a change of units does to everything that a record holds.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "numerics/qdlinvar.h"
#include "record/record.h"
#include "support/fixture.h"
#include "support/qdl_bytes.h"

namespace {

// Old unit over new unit. No product of powers of these is one by accident.
struct Ratios {
  double mass = 1.0 / 14.593902937206366;  // kilogram to slug
  double length = 1.0 / 0.0254;            // metre to inch
  double time = 1.0 / 60.0;                // second to minute
  double force = 1.0 / 4.4482216152605;    // newton to pound
};

constexpr int kModes = 8;
constexpr int kRigidModes = 2;

// Called with numbers of a record and the factor that a change of units has to apply to them.
using Visit = std::function<void(const std::string &what, std::span<double> values, double factor)>;

void visit_body(QDL_Record &record, const Ratios &r, const Visit &visit) {
  const double inertia = r.mass * r.length * r.length;
  for (auto &node : record.nodes) {
    visit("coordinates", node.xyz, r.length);
    visit("nodal mass", {&node.mass, 1}, r.mass);
    if (node.inertia != nullptr)
      visit("nodal inertia", *node.inertia, inertia);
  }
  visit("global mass", {&record.global_mass.mass, 1}, r.mass);
  visit("centre of mass", record.global_mass.centre, r.length);
  visit("global inertia", record.global_mass.inertia, inertia);
  visit("body size", {&record.body_size, 1}, r.length);
  visit("transformation", record.transformation.matrix, 1.0);
  for (std::size_t number = 1; number <= 9; ++number) {
    const double factor = number == 1 ? r.mass : number <= 3 ? r.mass * r.length : inertia;
    visit("invariant " + std::to_string(number), record.invariants[number].values, factor);
  }
}

double damping_factor(const QDL_Record &record, const qdlflex::GeneralizedEntry &entry,
                      const Ratios &r) {
  const int translations = (entry.row < 3 ? 1 : 0) + (entry.column < 3 ? 1 : 0);
  if (!record.damping_on_principal_axes || translations == 0)
    return r.force * r.length * r.time;
  return translations == 2 ? r.force * r.time / r.length : r.force * r.time;
}

void visit_matrices(QDL_Record &record, const Ratios &r, const Visit &visit) {
  const double mass = r.mass * r.length * r.length;
  for (auto &entry : record.stiffness.entries)
    visit("stiffness", {&entry.value, 1}, r.force * r.length);
  for (auto &entry : record.mass.entries)
    visit("mass", {&entry.value, 1}, mass);
  for (auto &entry : record.damping.entries)
    visit("damping", {&entry.value, 1}, damping_factor(record, entry, r));
  for (auto &entry : record.eigenvalues) {
    const bool infinite = entry.eigenvalue == 1.2345e20;
    visit("eigenvalue", {&entry.eigenvalue, 1}, infinite ? 1.0 : r.force / (r.mass * r.length));
    visit("frequency", {&entry.frequency, 1}, 1.0 / r.time);
    visit("circular frequency", {&entry.circular_frequency, 1}, 1.0 / r.time);
    visit("generalized mass", {&entry.generalized_mass, 1}, mass);
    visit("generalized stiffness", {&entry.generalized_stiffness, 1}, r.force * r.length);
  }
  visit("rotor centre", record.rotor.centre, r.length);
  visit("rotor direction", record.rotor.direction, r.length);
  const double damping = r.force * r.length * r.time;
  const double factors[] = {damping * r.time, damping, damping * r.time};
  for (std::size_t i = 0; i < 3; ++i)
    visit("rotor matrix", record.rotor.matrices[i].values, factors[i]);
}

void visit_loads(QDL_Record &record, const Ratios &r, const Visit &visit) {
  const double stress = r.force / (r.length * r.length);
  const auto visit_load = [&](std::span<double> values, bool processed) {
    const std::size_t forces = processed ? std::min<std::size_t>(kRigidModes, values.size()) : 0;
    visit("forces", values.first(forces), r.force);
    visit("modal load", values.subspan(forces), r.force * r.length);
  };
  visit_load(record.preload.values, record.preload.processed != 0);
  for (auto &load : record.modal_loads)
    visit_load(load.values, load.processed != 0);
  for (auto &load : record.nodal_loads) {
    for (auto &entry : load.entries)
      visit("nodal load", {&entry.value, 1}, entry.coordinate <= 3 ? r.force : r.force * r.length);
  }
  for (auto &vector : record.pre_stress)
    visit("pre-stress", vector, stress);
  for (auto &vector : record.pre_strain)
    visit("pre-strain", vector, 1.0);
  for (auto &mode : record.statistics.modes) {
    for (std::size_t slot = 0; slot < mode.values.size(); ++slot) {
      const double factor = slot == 0 ? r.length : slot == 2 ? stress : 1.0;
      visit("statistic " + std::to_string(slot), {&mode.values[slot], 1}, factor);
    }
  }
}

// Translational row, rotational row.
std::array<double, 2> monitor_factors(int result_type, const Ratios &r) {
  const double stress = r.force / (r.length * r.length);
  switch (result_type) {
    case 1:
      return {r.length, 1.0};
    case 2:
      return {stress, stress};
    case 3:
      return {1.0, 1.0};
    default:
      return {r.force, r.force * r.length};
  }
}

void visit_operators(QDL_Record &record, const Ratios &r, const Visit &visit) {
  for (auto &point : record.monitor_points) {
    visit("monitor point", point.location, r.length);
    const std::string digits = std::to_string(point.component);
    const std::array<double, 4> time = {1.0, 1.0 / r.time, 1.0 / (r.time * r.time), 1.0};
    for (std::size_t number = 0; number < 4; ++number) {
      const std::span<double> values = point.operators[number];
      for (std::size_t i = 0; i < values.size(); ++i) {
        const char digit = digits[i / kModes % digits.size()];
        const bool known = digit >= '1' && digit <= '6' && point.result_type <= 5;
        const double base = monitor_factors(point.result_type, r)[digit <= '3' ? 0 : 1];
        visit("operator " + std::to_string(number + 1) + " of " + point.name, values.subspan(i, 1),
              known ? base * time[number] : 1.0);
      }
    }
  }
  for (auto &matrix_operator : record.matrix_operators) {
    for (auto &sub : matrix_operator.sub_operators)
      visit("matrix operator", sub.data, 1.0);
  }
}

void visit_all(QDL_Record &record, const Ratios &ratios, const Visit &visit) {
  visit_body(record, ratios, visit);
  visit_matrices(record, ratios, visit);
  visit_loads(record, ratios, visit);
  visit_operators(record, ratios, visit);
}

struct Entry {
  std::string what;
  double value;
  double factor;
};

std::vector<Entry> ledger_of(QDL_Record &record, const Ratios &ratios = {}) {
  std::vector<Entry> entries;
  visit_all(record, ratios,
            [&](const std::string &what, std::span<const double> values, double factor) {
              for (const double value : values)
                entries.push_back({what + " at " + std::to_string(entries.size()), value, factor});
            });
  return entries;
}

void expect_scaled(const std::vector<Entry> &before, const std::vector<Entry> &after) {
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t i = 0; i < before.size(); ++i) {
    const auto &[what, value, factor] = before[i];
    const double scaled = after[i].value;
    if (factor == 1.0) {
      EXPECT_EQ(std::bit_cast<std::uint64_t>(scaled), std::bit_cast<std::uint64_t>(value)) << what;
    } else {
      EXPECT_NEAR(scaled, value * factor, 1e-14 * std::fabs(scaled)) << what;
      EXPECT_NE(value, 0.0) << what;
    }
  }
}

class ScaleDatabase : public qdltest::MessageFixture {
 protected:
  // A record with a number of its own in every place that holds one.
  static QDL_Record *full_record(bool damping_on_principal_axes) {
    QDL_Record *model = QDL_Create(3, kModes);
    EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    make_body(*model);
    make_matrices(*model);
    model->damping_on_principal_axes = damping_on_principal_axes;
    make_loads(*model);
    make_operators(model);
    double last = 0.375;
    visit_all(*model, {}, [&](const std::string &, std::span<double> values, double) {
      for (double &value : values)
        value = last += 1.0625;
    });
    // Modes below the threshold of 0.001; in minutes they would lie above it.
    for (std::size_t mode = 0; mode < kRigidModes; ++mode)
      model->eigenvalues[mode].frequency = 0.0005 + 0.0001 * static_cast<double>(mode);
    model->eigenvalues.back().eigenvalue = qdlflex::kInfiniteEigenvalue;
    EXPECT_EQ(QDL_RigidBodyModeCount(model), kRigidModes);
    return model;
  }

 private:
  static void make_body(QDL_Record &record) {
    for (int id = 1; id <= 3; ++id) {
      QDL_SetNodalMass(&record, id, 1.0);
      if (id != 2)
        QDL_SetNodalInertia(&record, id, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0);
    }
    record.transformation = {kModes, std::vector<double>(kModes * kModes), {}, true};
    const std::size_t sizes[10] = {0,          1, 3, 3 * kModes, 0,
                                   3 * kModes, 0, 9, 9 * kModes, 9 * kModes};
    for (std::size_t number = 1; number <= 9; ++number) {
      // Supplied and derived values are converted alike, the fourth is not known yet.
      const auto origin = number % 2 == 0 ? qdlflex::Origin::kSupplied : qdlflex::Origin::kDerived;
      if (sizes[number] > 0)
        record.invariants[number] = {origin, kModes, std::vector<double>(sizes[number])};
    }
  }

  static void make_matrices(QDL_Record &record) {
    record.eigenvalues.resize(kModes);
    for (int mode = 0; mode < kModes; ++mode)
      record.mode_numbers.push_back(11 + mode);
    for (int row = 0; row < 5; ++row) {
      for (int column = row; column < 5; ++column)
        record.damping.entries.push_back({row, column});
    }
    record.stiffness.entries = {{0, 1}, {1, 1}};
    record.mass.entries = {{0, 1}, {1, 1}, {-1, -1}};
    for (auto &matrix : record.rotor.matrices)
      matrix = {2, 0, std::vector<double>(4), true};
  }

  static void make_loads(QDL_Record &record) {
    const std::vector<double> all(kModes);
    record.preload = {all, 1, true};
    record.modal_loads = {{{}, 0, all}, {{}, 1, all}, {{}, 1, {0.0}}};
    record.nodal_loads.resize(2);
    for (int coordinate = 1; coordinate <= 6; ++coordinate)
      record.nodal_loads[1].entries.push_back({0, coordinate, 0.0});
    record.pre_stress.resize(2);
    record.pre_strain.resize(2);
    record.statistics.present = true;
    record.statistics.modes.resize(kModes);
  }

  // Every result type, every component digit, every operator; rows without a known unit.
  static void make_operators(QDL_Record *model) {
    const std::vector<double> values(2 * 6 * kModes);
    for (const int result_type : {1, 2, 3, 4, 5, 6}) {
      for (const int component : {123456, 47, 3, -12}) {
        const std::string name = std::to_string(result_type) + "/" + std::to_string(component);
        const int point =
            QDL_SetMonitorPointInfo(model, 1, result_type, component, 2, nullptr, name.c_str(), "");
        for (int number = 1; number <= 4; ++number)
          EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, number, values.data()), 0);
      }
    }
    const int number = QDL_SetMatrixOperatorInfo(model, "operator", nullptr, 2);
    QDL_SetMatrixOperatorData(model, number, "tag", 3, values.data());
  }
};

int to_english(QDL_Record *model) {
  return QDL_SetUnits(model, "SLUG", "INCH", "MINUTE", "POUND_FORCE");
}

int to_si(QDL_Record *model) {
  return QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON");
}

}  // namespace

TEST_F(ScaleDatabase, EveryStoredNumberIsConverted) {
  for (const bool on_principal_axes : {false, true}) {
    QDL_Record *model = full_record(on_principal_axes);
    const std::vector<Entry> before = ledger_of(*model);
    EXPECT_EQ(to_english(model), 1);
    expect_scaled(before, ledger_of(*model));
    EXPECT_EQ(model->invariants[4].origin, qdlflex::Origin::kEmpty);
  }
  expect_no_messages();
}

// With five rigid-body modes. Counted with the new units, whose frequencies are per minute, or with
// numbers that are partly converted, there would be none.
TEST_F(ScaleDatabase, AProcessedLoadHasAtMostThreeForces) {
  QDL_Record *model = QDL_Create(0, kModes);
  to_si(model);
  for (int mode = 1; mode <= kModes; ++mode) {
    QDL_SetGeneralizedStiffness(model, mode, mode, mode <= 5 ? 2.5e-5 : 1.0);
    QDL_SetGeneralizedMass(model, mode, mode, 1.0);
    QDL_SetModalLoad(model, 0, mode, 100.0);
  }
  QDL_SetModalLoadProcessed(model, 0, 1);
  EXPECT_EQ(QDL_RigidBodyModeCount(model), 5);
  to_english(model);
  const Ratios r;
  for (std::size_t mode = 0; mode < kModes; ++mode) {
    const double factor = mode < 3 ? r.force : r.force * r.length;
    EXPECT_NEAR(model->modal_loads[0].values[mode], 100.0 * factor, 1e-12) << mode;
  }
}

TEST_F(ScaleDatabase, OnlyTheQuantityThatChangesTouchesBits) {
  QDL_Record *model = full_record(false);
  const std::vector<Entry> before = ledger_of(*model, {1.0, 1.0, 1.0 / 60.0, 1.0});
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "MINUTE", "NEWTON"), 1);
  expect_scaled(before, ledger_of(*model));
}

TEST_F(ScaleDatabase, TheFirstUnitsAndTheSameUnitsConvertNothing) {
  QDL_Record *model = full_record(false);
  const std::vector<Entry> before = ledger_of(*model, {1.0, 1.0, 1.0, 1.0});
  EXPECT_EQ(to_si(model), 1);
  EXPECT_EQ(QDL_SetUnits(model, "kilogram", "meter", "second", "newton"), 1);
  expect_scaled(before, ledger_of(*model));
  model->units = {};
  EXPECT_EQ(to_english(model), 1);
  expect_scaled(before, ledger_of(*model));
  EXPECT_EQ(model->units.cumulative.length, 1.0);
}

TEST_F(ScaleDatabase, AnUnsetOldUnitCountsAsSiAndAnUnknownOneChangesNothing) {
  QDL_Record *model = QDL_Create(1, 0);
  to_si(model);
  model->units.length = {};
  QDL_SetNodeCoordinates(model, 1, 1.0, 2.0, 3.0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  EXPECT_EQ(model->nodes[0].xyz[1], 2000.0);

  model->units.length = {'C', 'U', 'B', 'I', 'T'};
  EXPECT_EQ(to_english(model), 0);
  EXPECT_EQ(model->nodes[0].xyz[1], 2000.0);
  EXPECT_STREQ(model->units.mass.data(), "KILOGRAM");
  EXPECT_EQ(QDL_Length2Meter(model, 1.0), 0.0);
  expect_no_messages();
}

// By itself it applies the last ratios once more, to stored numbers but not to mode data.
TEST_F(ScaleDatabase, OnItsOwnRepeatsTheLastChange) {
  QDL_Record *model = QDL_Create(1, 1);
  to_si(model);
  QDL_SetNodeCoordinates(model, 1, 1.0, 2.0, 3.0);
  QDL_SetMode(model, 1, 1, 0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON");
  EXPECT_EQ(QDL_ScaleDatabase(model), 1);
  EXPECT_EQ(model->nodes[0].xyz[0], 1e6);
  double translation[3] = {};
  EXPECT_EQ(QDL_Mode(model, 1, 0, translation, 0), 1);
  EXPECT_EQ(translation[0], 1e3);
}

namespace {

using Vector = std::array<double, 6>;

// Fetches one node's six values by every way there is; they have to agree.
Vector fetched(QDL_Record *model, int mode, int kind, int node) {
  Vector values{};
  const std::size_t nodes = model->nodes.size();
  for (int part = 0; part < 2; ++part) {
    std::vector<double> half(3 * nodes);
    std::vector<float> single(3 * nodes);
    double by_node[3] = {};
    double *reference = nullptr;
    float *single_reference = nullptr;
    EXPECT_EQ(QDL_ModeByNodeWithoutCache(model, mode, kind, node, by_node, part), 1);
    EXPECT_EQ(QDL_Mode(model, mode, kind, half.data(), part), 1);
    EXPECT_EQ(QDL_ModeByRef(model, mode, kind, &reference, part), 1);
    EXPECT_EQ(QDL_SModeByRef(model, mode, kind, &single_reference, part), 1);
    for (int c = 0; c < 3; ++c) {
      const auto place = static_cast<std::size_t>(3 * node + c);
      EXPECT_EQ(half[place], by_node[c]);
      EXPECT_EQ(reference[place], by_node[c]);
      EXPECT_EQ(single_reference[place], static_cast<float>(by_node[c]));
      values[static_cast<std::size_t>(3 * part + c)] = by_node[c];
    }
  }
  return values;
}

void expect_vector(const Vector &values, const Vector &original, double translations,
                   double rotations) {
  for (std::size_t c = 0; c < 6; ++c) {
    const double expected = original[c] * (c < 3 ? translations : rotations);
    EXPECT_NEAR(values[c], expected, 1e-14 * std::fabs(expected)) << "component " << c;
  }
}

constexpr std::array<Vector, 3> kVectors = {{{1.5, 2.5, 3.5, 4.5, 5.5, 6.5},
                                             {11.5, 12.5, 13.5, 14.5, 15.5, 16.5},
                                             {21.5, 22.5, 23.5, 24.5, 25.5, 26.5}}};

// Factors of the halves of a kind for ratios of length and force.
std::array<double, 2> mode_factors(int kind, double length, double force) {
  if (kind == 1)
    return {force / (length * length), force / (length * length)};
  return {kind == 0 ? length : 1.0, 1.0};
}

}  // namespace

TEST_F(ScaleDatabase, ModeDataIsConvertedOnceAlsoAfterEditsAndBack) {
  for (int kind = 0; kind < 3; ++kind) {
    SCOPED_TRACE(kind);
    QDL_Record *model = QDL_Create(2, 2);
    to_si(model);
    QDL_SetModeVec(model, 1, 10, kind, kVectors[0].data());
    QDL_SetModeVec(model, 1, 20, kind, kVectors[1].data());
    expect_vector(fetched(model, 1, kind, 0), kVectors[0], 1.0, 1.0);

    to_english(model);
    const Ratios r;
    const auto there = mode_factors(kind, r.length, r.force);
    expect_vector(fetched(model, 1, kind, 0), kVectors[0], there[0], there[1]);
    QDL_SetModeVec(model, 2, 20, kind, kVectors[2].data());
    QDL_SetModeEntry(model, 1, 20, kind, 1, -7.0);
    expect_vector(fetched(model, 2, kind, 1), kVectors[2], 1.0, 1.0);
    expect_vector(fetched(model, 1, kind, 0), kVectors[0], there[0], there[1]);

    to_si(model);
    expect_vector(fetched(model, 1, kind, 0), kVectors[0], 1.0, 1.0);
    expect_vector(fetched(model, 2, kind, 1), kVectors[2], 1.0 / there[0], 1.0 / there[1]);
    Vector edited = kVectors[1];
    edited[1] = -7.0 / there[0];
    expect_vector(fetched(model, 1, kind, 1), edited, 1.0, 1.0);
    QDL_DeReference(model);
  }
}

// What is read from the file after a change is converted like what was read before it.
TEST_F(ScaleDatabase, DataStillInTheFileIsConvertedOnceToo) {
  const std::vector<std::uint8_t> bytes = qdltest::build_file(60).bytes;
  QDL_Record *early = QDL_CreateFromQDL(file("early.qdl", bytes).c_str());
  QDL_Record *late = QDL_CreateFromQDL(file("late.qdl", bytes).c_str());
  ASSERT_NE(early, nullptr);
  ASSERT_NE(late, nullptr);

  const auto ask = [](QDL_Record *model) {
    std::vector<double> numbers;
    for (const int number : {1, 2, 3, 4, 5, 7, 8, 9}) {
      const std::vector<double> &values = qdlflex::obtain_invariant(*model, number).values;
      numbers.insert(numbers.end(), values.begin(), values.end());
    }
    for (const int mode : {7, 9}) {
      double values[4] = {};
      EXPECT_EQ(QDL_GetMaxModeDisplacement(model, mode, nullptr, &values[0]), 1);
      EXPECT_EQ(QDL_GetMaxModeRotation(model, mode, nullptr, &values[1]), 1);
      EXPECT_EQ(QDL_GetMaxVonMisesStress(model, mode, nullptr, &values[2]), 1);
      EXPECT_EQ(QDL_GetMaxVonMisesStrain(model, mode, nullptr, &values[3]), 1);
      numbers.insert(numbers.end(), values, values + 4);
    }
    return numbers;
  };
  const std::vector<double> before = ask(early);
  to_english(early);
  to_english(late);
  const std::vector<double> converted = ask(early);
  EXPECT_EQ(ask(late), converted);
  EXPECT_NEAR(converted[0], before[0] / 14.593902937206366, 1e-14 * before[0]);
  to_si(late);
  to_english(late);
  const std::vector<double> there_and_back = ask(late);
  for (std::size_t i = 0; i < converted.size(); ++i)
    EXPECT_NEAR(there_and_back[i], converted[i], 1e-13 * std::fabs(converted[i])) << i;
}
