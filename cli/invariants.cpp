#include "invariants.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "body_measures.h"
#include "invariant_slices.h"
#include "record.h"

namespace qdlflex::cli {

namespace {

Invariant read_invariant(QDL_Record *record, int number, std::vector<size_t> shape) {
  Invariant invariant{number, std::move(shape), {}};
  for (int32_t slice = 0; slice < invariant_slices(record, number); ++slice) {
    const std::vector<double> values = read_invariant_slice(record, number, slice);
    invariant.values.insert(invariant.values.end(), values.begin(), values.end());
  }
  return invariant;
}

std::vector<Invariant> read_all(QDL_Record *record, InvariantSet set) {
  const auto modes = static_cast<size_t>(QDL_ModeCount(record));
  const bool full = set == InvariantSet::kFull;
  const bool fast = full || set == InvariantSet::kFast;
  struct Wanted {
    int number;
    bool wanted;
    std::vector<size_t> shape;
  };
  std::vector<Invariant> all;
  for (const auto &[number, wanted, shape] : std::vector<Wanted>{{1, true, {}},
                                                                 {2, true, {3}},
                                                                 {3, fast, {3, modes}},
                                                                 {4, fast, {3, modes}},
                                                                 {5, full, {modes, 3, modes}},
                                                                 {6, fast, {modes, modes}},
                                                                 {7, true, {3, 3}},
                                                                 {8, fast, {modes, 3, 3}},
                                                                 {9, full, {modes, modes, 3, 3}}}) {
    if (wanted) {
      all.push_back(read_invariant(record, number, shape));
    }
  }
  return all;
}

const Invariant *find(const Invariants &invariants, int number) {
  for (const Invariant &invariant : invariants.all) {
    if (invariant.number == number) {
      return &invariant;
    }
  }
  return nullptr;
}

/// Centre and inertia of the whole body from invariants 1, 2 and 7.
void locate_centre(Invariants &body) {
  body.mass = find(body, 1)->values[0];
  const std::vector<double> &moment = find(body, 2)->values;
  const std::vector<double> &inertia = find(body, 7)->values;
  std::copy(inertia.begin(), inertia.end(), body.inertia_about_origin.begin());
  if (body.mass == 0.0) {
    return;
  }
  const std::array<double, 3> c = {moment[0] / body.mass, moment[1] / body.mass,
                                   moment[2] / body.mass};
  body.centre = c;
  body.inertia_about_centre = inertia_about(c, body.mass, body.inertia_about_origin);
}

std::string unit_of(const Units &units, int powers_of_length) {
  std::string unit = abbreviation_of(units.mass);
  if (powers_of_length > 0) {
    unit += " " + abbreviation_of(units.length);
  }
  return powers_of_length > 1 ? unit + "^2" : unit;
}

void print_values(const double *values, size_t count, size_t step = 1) {
  for (size_t i = 0; i < count; ++i) {
    std::printf(" %16.9g", values[i * step]);
  }
  std::printf("\n");
}

void print_matrix(const std::string &title, const std::array<double, 9> &values) {
  std::printf("%s\n", title.c_str());
  for (size_t row = 0; row < 3; ++row) {
    print_values(&values[3 * row], 3);
  }
}

void print_body(const Invariants &body) {
  std::printf("%-12s%s\n", "file", body.path.c_str());
  std::printf("%-12s%.9g %s\n", "mass", body.mass, unit_of(body.units, 0).c_str());
  if (body.centre) {
    std::printf("%-12s%.9g %.9g %.9g %s\n", "centre", (*body.centre)[0], (*body.centre)[1],
                (*body.centre)[2], abbreviation_of(body.units.length).c_str());
  }
  const std::string unit = " (" + unit_of(body.units, 2) + ")";
  print_matrix("\ninertia about the origin" + unit, body.inertia_about_origin);
  if (body.inertia_about_centre) {
    print_matrix("\ninertia about the centre" + unit, *body.inertia_about_centre);
  }
}

constexpr const char *kVectorColumns = "                x                y                z";
constexpr const char *kMatrixColumns =
    "               xx               xy               xz               yx               yy"
    "               yz               zx               zy               zz";

void print_heading(const Invariants &invariants, int number, const char *what, const char *modes,
                   const char *columns) {
  std::printf("\ninvariant %d, %s (%s)\n%s%s\n", number, what,
              unit_of(invariants.units, number == 3 ? 1 : 2).c_str(), modes, columns);
}

void print_vectors(const Invariants &invariants, int number, const char *what) {
  const Invariant *const invariant = find(invariants, number);
  const size_t modes = invariants.modes.size();
  if (invariant == nullptr || modes == 0) {
    return;
  }
  print_heading(invariants, number, what, "  mode", kVectorColumns);
  for (size_t mode = 0; mode < modes; ++mode) {
    std::printf("%6d", invariants.modes[mode]);
    print_values(&invariant->values[mode], 3, modes);
  }
}

void print_matrices(const Invariants &invariants, int number, const char *what) {
  const Invariant *const invariant = find(invariants, number);
  if (invariant == nullptr || invariants.modes.empty()) {
    return;
  }
  print_heading(invariants, number, what, "  mode", kMatrixColumns);
  for (size_t mode = 0; mode < invariants.modes.size(); ++mode) {
    std::printf("%6d", invariants.modes[mode]);
    print_values(&invariant->values[9 * mode], 9);
  }
}

/// One line per pair of modes; the pair in reverse order has the negative or the transpose.
template <class Line>
void print_pairs(const Invariants &invariants, int number, const char *what, const char *columns,
                 Line line) {
  const Invariant *const invariant = find(invariants, number);
  const size_t modes = invariants.modes.size();
  if (invariant == nullptr || modes == 0) {
    return;
  }
  print_heading(invariants, number, what, "  mode  mode", columns);
  for (size_t i = 0; i < modes; ++i) {
    for (size_t k = i; k < modes; ++k) {
      line(*invariant, i, k);
    }
  }
}

void print_pair_of_modes(const Invariants &invariants, size_t i, size_t k) {
  std::printf("%6d%6d", invariants.modes[i], invariants.modes[k]);
}

nlohmann::ordered_json array_json(const Invariant &invariant) {
  return {{"shape", invariant.shape}, {"values", invariant.values}};
}

nlohmann::ordered_json rows_json(const std::array<double, 9> &m) {
  return {{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}};
}

const char *name_of(InvariantSet set) {
  return set == InvariantSet::kFull ? "full" : set == InvariantSet::kFast ? "fast" : "rigid";
}

}  // namespace

Invariants read_invariants(const std::string &path, InvariantSet set) {
  const Record record = open_record(path);
  const auto compute = set == InvariantSet::kFull   ? QDL_FullComputeInvars
                       : set == InvariantSet::kFast ? QDL_FastComputeInvars
                                                    : QDL_RigidComputeInvars;
  compute(record.get());
  Invariants invariants;
  invariants.path = path;
  invariants.set = set;
  invariants.units = read_units(record.get());
  for (int32_t mode = 0; mode < QDL_ModeCount(record.get()); ++mode) {
    invariants.modes.push_back(QDL_ModeNumber(record.get(), mode));
  }
  invariants.all = read_all(record.get(), set);
  locate_centre(invariants);
  return invariants;
}

void print_tables(const Invariants &invariants) {
  const size_t modes = invariants.modes.size();
  print_body(invariants);
  print_vectors(invariants, 3, "sum of m p");
  print_vectors(invariants, 4, "sum of m r x p + J q");
  print_pairs(invariants, 5, "sum of m p x p'", kVectorColumns,
              [&](const Invariant &fifth, size_t i, size_t k) {
                if (i != k) {
                  print_pair_of_modes(invariants, i, k);
                  print_values(&fifth.values[3 * modes * i + k], 3, modes);
                }
              });
  print_pairs(invariants, 6, "the generalized mass where it is not zero", "",
              [&](const Invariant &sixth, size_t i, size_t k) {
                if (sixth.values[modes * i + k] != 0.0) {
                  print_pair_of_modes(invariants, i, k);
                  print_values(&sixth.values[modes * i + k], 1);
                }
              });
  print_matrices(invariants, 8, "sum of m ~r ~p");
  print_pairs(invariants, 9, "sum of m ~p ~p'", kMatrixColumns,
              [&](const Invariant &ninth, size_t i, size_t k) {
                print_pair_of_modes(invariants, i, k);
                print_values(&ninth.values[9 * (modes * i + k)], 9);
              });
}

void print_json(const Invariants &invariants) {
  nlohmann::ordered_json arrays;
  for (const Invariant &invariant : invariants.all) {
    arrays[std::to_string(invariant.number)] = array_json(invariant);
  }
  nlohmann::ordered_json all = {
      {"file", invariants.path},
      {"set", name_of(invariants.set)},
      {"units",
       {{"mass", invariants.units.mass},
        {"length", invariants.units.length},
        {"time", invariants.units.time},
        {"force", invariants.units.force}}},
      {"modes", invariants.modes},
      {"mass", invariants.mass},
      {"centre", nullptr},
      {"inertia_about_origin", rows_json(invariants.inertia_about_origin)},
      {"inertia_about_centre", nullptr},
      {"invariants", arrays}};
  if (invariants.centre) {
    all["centre"] = *invariants.centre;
    all["inertia_about_centre"] = rows_json(*invariants.inertia_about_centre);
  }
  // Text in a file need not be UTF-8.
  std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace qdlflex::cli
