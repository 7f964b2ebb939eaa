// What a change of units does to everything that a record holds.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
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

// Numbers of a record, each with the factor that a change of units has to apply.
class Ledger {
 public:
  struct Entry {
    std::string what;
    double value;
    double factor;
  };

  void add(const std::string &what, double value, double factor) {
    entries_.push_back({what + " at " + std::to_string(entries_.size()), value, factor});
  }
  void add(const std::string &what, std::span<const double> values, double factor) {
    for (const double value : values)
      add(what, value, factor);
  }
  const std::vector<Entry> &entries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
};

void enter_body(Ledger &ledger, const QDL_Record &record, const Ratios &r) {
  for (const auto &node : record.nodes) {
    ledger.add("coordinates", node.xyz, r.length);
    ledger.add("nodal mass", node.mass, r.mass);
    if (node.inertia != nullptr)
      ledger.add("nodal inertia", *node.inertia, r.mass * r.length * r.length);
  }
  ledger.add("global mass", record.global_mass.mass, r.mass);
  ledger.add("centre of mass", record.global_mass.centre, r.length);
  ledger.add("global inertia", record.global_mass.inertia, r.mass * r.length * r.length);
  ledger.add("body size", record.body_size, r.length);
  ledger.add("transformation", record.transformation.matrix, 1.0);
  const double invariant_factors[10] = {1.0,
                                        r.mass,
                                        r.mass * r.length,
                                        r.mass * r.length,
                                        r.mass * r.length * r.length,
                                        r.mass * r.length * r.length,
                                        1.0,
                                        r.mass * r.length * r.length,
                                        r.mass * r.length * r.length,
                                        r.mass * r.length * r.length};
  for (std::size_t number = 1; number <= 9; ++number) {
    ledger.add("invariant " + std::to_string(number), record.invariants[number].values,
               invariant_factors[number]);
  }
}

double damping_factor(const QDL_Record &record, const qdlflex::GeneralizedEntry &entry,
                      const Ratios &r) {
  const int translations = (entry.row < 3 ? 1 : 0) + (entry.column < 3 ? 1 : 0);
  if (!record.damping_on_principal_axes || translations == 0)
    return r.force * r.length * r.time;
  return translations == 2 ? r.force * r.time / r.length : r.force * r.time;
}

void enter_matrices(Ledger &ledger, const QDL_Record &record, const Ratios &r) {
  for (const auto &entry : record.stiffness.entries)
    ledger.add("stiffness", entry.value, r.force * r.length);
  for (const auto &entry : record.mass.entries)
    ledger.add("mass", entry.value, r.mass * r.length * r.length);
  for (const auto &entry : record.damping.entries)
    ledger.add("damping", entry.value, damping_factor(record, entry, r));
  for (const auto &entry : record.eigenvalues) {
    const bool infinite = entry.eigenvalue == 1.2345e20;
    ledger.add("eigenvalue", entry.eigenvalue, infinite ? 1.0 : r.force / (r.mass * r.length));
    ledger.add("frequency", entry.frequency, 1.0 / r.time);
    ledger.add("circular frequency", entry.circular_frequency, 1.0 / r.time);
    ledger.add("generalized mass", entry.generalized_mass, r.mass * r.length * r.length);
    ledger.add("generalized stiffness", entry.generalized_stiffness, r.force * r.length);
  }
  ledger.add("rotor centre", record.rotor.centre, r.length);
  ledger.add("rotor direction", record.rotor.direction, r.length);
  const auto &matrices = record.rotor.matrices;
  ledger.add("first rotor matrix", matrices[0].values, r.force * r.length * r.time * r.time);
  ledger.add("second rotor matrix", matrices[1].values, r.force * r.length * r.time);
  ledger.add("third rotor matrix", matrices[2].values, r.force * r.length * r.time * r.time);
}

void enter_loads(Ledger &ledger, const QDL_Record &record, const Ratios &r) {
  const auto enter = [&](const std::string &what, const std::vector<double> &values,
                         bool processed) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      const bool force = processed && i < static_cast<std::size_t>(kRigidModes);
      ledger.add(what, values[i], force ? r.force : r.force * r.length);
    }
  };
  enter("preload", record.preload.values, record.preload.processed != 0);
  for (const auto &load : record.modal_loads)
    enter("modal load", load.values, load.processed != 0);
  for (const auto &load : record.nodal_loads) {
    for (const auto &entry : load.entries)
      ledger.add("nodal load", entry.value, entry.coordinate <= 3 ? r.force : r.force * r.length);
  }
  for (const auto &vector : record.pre_stress)
    ledger.add("pre-stress", vector, r.force / (r.length * r.length));
  for (const auto &vector : record.pre_strain)
    ledger.add("pre-strain", vector, 1.0);
  for (const auto &mode : record.statistics.modes) {
    for (std::size_t slot = 0; slot < mode.values.size(); ++slot) {
      const double factor = slot == 0   ? r.length
                            : slot == 2 ? r.force / (r.length * r.length)
                                        : 1.0;
      ledger.add("statistic " + std::to_string(slot), mode.values[slot], factor);
    }
  }
  for (const auto &matrix_operator : record.matrix_operators) {
    for (const auto &sub : matrix_operator.sub_operators)
      ledger.add("matrix operator", sub.data, 1.0);
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

void enter_monitor_points(Ledger &ledger, const QDL_Record &record, const Ratios &r) {
  for (const auto &point : record.monitor_points) {
    ledger.add("monitor point", point.location, r.length);
    const std::string digits = std::to_string(point.component);
    const std::array<double, 4> time = {1.0, 1.0 / r.time, 1.0 / (r.time * r.time), 1.0};
    for (std::size_t number = 0; number < 4; ++number) {
      const std::vector<double> &values = point.operators[number];
      for (std::size_t i = 0; i < values.size(); ++i) {
        const char digit = digits[i / kModes % digits.size()];
        const bool known = digit >= '1' && digit <= '6' && point.result_type <= 5;
        const double base = monitor_factors(point.result_type, r)[digit <= '3' ? 0 : 1];
        ledger.add("operator " + std::to_string(number + 1) + " of " + point.name, values[i],
                   known ? base * time[number] : 1.0);
      }
    }
  }
}

Ledger ledger_of(const QDL_Record &record, const Ratios &ratios = {}) {
  Ledger ledger;
  enter_body(ledger, record, ratios);
  enter_matrices(ledger, record, ratios);
  enter_loads(ledger, record, ratios);
  enter_monitor_points(ledger, record, ratios);
  return ledger;
}

void expect_scaled(const Ledger &before, const Ledger &after) {
  ASSERT_EQ(before.entries().size(), after.entries().size());
  for (std::size_t i = 0; i < before.entries().size(); ++i) {
    const Ledger::Entry &entry = before.entries()[i];
    const double value = after.entries()[i].value;
    if (entry.factor == 1.0) {
      EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(entry.value))
          << entry.what;
    } else {
      EXPECT_NEAR(value, entry.value * entry.factor, 1e-14 * std::fabs(value)) << entry.what;
      EXPECT_NE(entry.value, 0.0) << entry.what;
    }
  }
}

// A record with a number of its own in every place that holds one.
class ScaleDatabase : public qdltest::MessageFixture {
 protected:
  double next() { return last_ += 1.0625; }
  void fill(std::span<double> values) {
    for (double &value : values)
      value = next();
  }
  std::vector<double> numbers(std::size_t count) {
    std::vector<double> values(count);
    fill(values);
    return values;
  }

  QDL_Record *full_record(bool damping_on_principal_axes) {
    QDL_Record *model = QDL_Create(3, kModes);
    EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
    fill_body(*model);
    fill_eigenvalues(*model);
    fill_matrices(*model);
    model->damping_on_principal_axes = damping_on_principal_axes;
    fill_loads(*model);
    fill_monitor_points(model);
    EXPECT_EQ(QDL_RigidBodyModeCount(model), kRigidModes);
    return model;
  }

 private:
  void fill_body(QDL_Record &record) {
    for (int id = 1; id <= 3; ++id) {
      QDL_SetNodeCoordinates(&record, id, next(), next(), next());
      QDL_SetNodalMass(&record, id, next());
      if (id != 2)
        QDL_SetNodalInertia(&record, id, next(), next(), next(), next(), next(), next());
    }
    record.global_mass.mass = next();
    fill(record.global_mass.centre);
    fill(record.global_mass.inertia);
    record.body_size = next();
    record.transformation = {kModes, numbers(kModes * kModes), {}, true};
    const std::size_t sizes[10] = {0,          1, 3, 3 * kModes, 3 * kModes,
                                   3 * kModes, 0, 9, 9 * kModes, 9 * kModes};
    for (std::size_t number = 1; number <= 9; ++number) {
      // Supplied and derived values are converted alike.
      const auto origin = number % 2 == 0 ? qdlflex::Origin::kSupplied : qdlflex::Origin::kDerived;
      if (number != 6 && number != 4)
        record.invariants[number] = {origin, kModes, numbers(sizes[number])};
    }
  }

  // Two modes below the threshold of 0.001; in minutes they would lie above it.
  void fill_eigenvalues(QDL_Record &record) {
    for (int mode = 0; mode < kModes; ++mode) {
      record.mode_numbers.push_back(11 + mode);
      const double frequency = mode < kRigidModes ? 0.0005 + 0.0001 * mode : 0.01 + 0.001 * mode;
      record.eigenvalues.push_back({11 + mode, next(), frequency, next(), next(), next()});
    }
    record.eigenvalues.back().eigenvalue = qdlflex::kInfiniteEigenvalue;
  }

  void fill_matrices(QDL_Record &record) {
    for (int row = 0; row < 5; ++row) {
      for (int column = row; column < 5; ++column)
        record.damping.entries.push_back({row, column, next()});
    }
    for (int mode = 0; mode < 2; ++mode) {
      record.stiffness.entries.push_back({mode, 1, next()});
      record.mass.entries.push_back({mode, 1, next()});
    }
    record.mass.entries.push_back({-1, -1, next()});
    fill(record.rotor.centre);
    fill(record.rotor.direction);
    for (auto &matrix : record.rotor.matrices)
      matrix = {2, 0, numbers(4), true};
  }

  void fill_loads(QDL_Record &record) {
    record.preload = {numbers(kModes), 1, true};
    record.modal_loads.resize(3);
    record.modal_loads[0].values = numbers(kModes);
    record.modal_loads[1] = {{}, 1, numbers(kModes)};
    record.modal_loads[2] = {{}, 1, numbers(1)};
    record.nodal_loads.resize(2);
    for (int coordinate = 1; coordinate <= 6; ++coordinate)
      record.nodal_loads[1].entries.push_back({0, coordinate, next()});
    record.pre_stress.resize(2);
    record.pre_strain.resize(2);
    for (std::size_t i = 0; i < 2; ++i) {
      fill(record.pre_stress[i]);
      fill(record.pre_strain[i]);
    }
    record.statistics.present = true;
    record.statistics.modes.resize(kModes);
    for (auto &mode : record.statistics.modes)
      fill(mode.values);
  }

  // Every result type, every component digit, every operator; rows without a known unit.
  void fill_monitor_points(QDL_Record *model) {
    for (const int result_type : {1, 2, 3, 4, 5, 6}) {
      for (const int component : {123456, 47, 3, -12}) {
        const std::vector<double> location = numbers(3);
        const std::string name = std::to_string(result_type) + "/" + std::to_string(component);
        const int point = QDL_SetMonitorPointInfo(model, 1, result_type, component, 2,
                                                  location.data(), name.c_str(), "");
        for (int number = 1; number <= 4; ++number) {
          const std::vector<double> values = numbers(2 * 6 * kModes);
          EXPECT_EQ(QDL_SetMonitorPointOperator(model, point, number, values.data()), 0);
        }
      }
    }
    const int number = QDL_SetMatrixOperatorInfo(model, "operator", nullptr, 2);
    QDL_SetMatrixOperatorData(model, number, "tag", 3, numbers(6).data());
  }

  double last_ = 0.375;
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
    const Ledger before = ledger_of(*model);
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

TEST_F(ScaleDatabase, ChangingBackGivesTheOldNumbers) {
  QDL_Record *model = full_record(true);
  const Ledger before = ledger_of(*model, {1.0, 1.0, 1.0, 1.0});
  to_english(model);
  // The same rigid-body modes in 1 / minute.
  const qdltest::ScopedEnvironment threshold("QDL_RIGID_BODY_THRESHOLD", "0.1");
  EXPECT_EQ(QDL_RigidBodyModeCount(model), kRigidModes);
  EXPECT_EQ(to_si(model), 1);
  const Ledger after = ledger_of(*model);
  for (std::size_t i = 0; i < before.entries().size(); ++i) {
    const double value = before.entries()[i].value;
    EXPECT_NEAR(after.entries()[i].value, value, 1e-14 * std::fabs(value))
        << before.entries()[i].what;
  }
}

TEST_F(ScaleDatabase, OnlyTheQuantityThatChangesTouchesBits) {
  QDL_Record *model = full_record(false);
  const Ledger before = ledger_of(*model, {1.0, 1.0, 1.0 / 60.0, 1.0});
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "MINUTE", "NEWTON"), 1);
  expect_scaled(before, ledger_of(*model));
}

TEST_F(ScaleDatabase, TheFirstUnitsAndTheSameUnitsConvertNothing) {
  QDL_Record *model = full_record(false);
  const Ledger before = ledger_of(*model, {1.0, 1.0, 1.0, 1.0});
  EXPECT_EQ(to_si(model), 1);
  EXPECT_EQ(QDL_SetUnits(model, "kilogram", "meter", "second", "newton"), 1);
  expect_scaled(before, ledger_of(*model));
  model->units = {};
  EXPECT_EQ(to_english(model), 1);
  expect_scaled(before, ledger_of(*model));
  EXPECT_EQ(model->units.cumulative.length, 1.0);
}

TEST_F(ScaleDatabase, AnUnsetOldUnitCountsAsSi) {
  QDL_Record *model = QDL_Create(1, 0);
  to_si(model);
  model->units.length = {};
  QDL_SetNodeCoordinates(model, 1, 1.0, 2.0, 3.0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  EXPECT_EQ(model->nodes[0].xyz[1], 2000.0);
}

TEST_F(ScaleDatabase, AnUnknownOldUnitKeepsTheModelAsItIs) {
  QDL_Record *model = QDL_Create(1, 0);
  to_si(model);
  model->units.length = {'C', 'U', 'B', 'I', 'T'};
  QDL_SetNodeCoordinates(model, 1, 1.0, 2.0, 3.0);
  EXPECT_EQ(to_english(model), 0);
  EXPECT_EQ(model->nodes[0].xyz[1], 2.0);
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

TEST_F(ScaleDatabase, StressesFollowForceOverArea) {
  QDL_Record *model = QDL_Create(1, 1);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"), 1);
  QDL_SetNodeCoordinates(model, 1, 1000.0, 2.0, 3.0);
  QDL_SetMode(model, 1, 1, 1, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  EXPECT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "NEWTON"), 1);
  EXPECT_EQ(model->nodes[0].xyz[0], 1.0);
  expect_vector(fetched(model, 1, 1, 0), {1, 2, 3, 4, 5, 6}, 1e6, 1e6);
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
