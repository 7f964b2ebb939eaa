#include "ccx_import.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>

#include "ccx_deck.h"
#include "ccx_frd.h"
#include "ccx_tables.h"
#include "console.h"
#include "nodal_masses.h"
#include "record.h"
#include "write_record.h"

namespace qdlflex::cli {

namespace {

constexpr const char *kDefaultInterfaceSet = "INTERFACE";
constexpr double kMassTolerance = 1e-4;

struct ModelSource {
  FrdFile results;
  CcxDeck deck;
  CcxTables tables;
  NodalMasses masses;
};

void require(int32_t result, const std::string &what) {
  if (result == 0) {
    throw Failure("the model does not take " + what);
  }
}

void check_output_is_no_input(const CcxImport &options) {
  for (const std::string &input : {options.results, options.deck, options.tables,
                                   options.mass_matrix, options.mass_matrix_rows}) {
    check_output_is_not(input, options.output);
  }
}

// --- Masses -----------------------------------------------------------------------------------

NodalMasses nodal_masses(const CcxImport &options, const FrdFile &results, const CcxDeck &deck) {
  if (!options.mass_matrix.empty()) {
    return read_ccx_nodal_masses(options.mass_matrix, options.mass_matrix_rows);
  }
  if (options.density) {
    return masses_of_elements(results, densities_by_material(results, {{"", *options.density}}));
  }
  if (deck.densities.empty()) {
    throw Failure(
        "no masses: give the mass matrix (--mass, --dof), a deck with *DENSITY (--inp) "
        "or --density");
  }
  return masses_of_elements(results, densities_by_material(results, deck.densities));
}

double total(const NodalMasses &masses) {
  double sum = 0.0;
  for (const auto &[node, mass] : masses) {
    sum += mass;
  }
  return sum;
}

/// The solver totals the mass of element sets. One of them may be the body, or all together.
void compare_with_solver(double mass, const std::map<std::string, double> &masses_of_sets) {
  if (masses_of_sets.empty()) {
    return;
  }
  double sum = 0.0;
  for (const auto &[set, of_set] : masses_of_sets) {
    if (std::abs(mass - of_set) <= kMassTolerance * of_set) {
      return;
    }
    sum += of_set;
  }
  if (std::abs(mass - sum) > kMassTolerance * sum) {
    char text[160];
    std::snprintf(text, sizeof text, "the nodal masses add up to %.7g, the solver's total is %.7g",
                  mass, sum);
    print_warning(text);
  }
}

// --- Modes ------------------------------------------------------------------------------------

/// The most exact of what the solver printed. A table holds seven digits and the result file's
/// parameter as many, but 0 for a negative value; the frequency has about ten from 1 upwards.
double eigenvalue(const FrdMode &mode, const CcxTables &tables, const std::string &path) {
  double value = mode.generalized_stiffness;
  if (!tables.eigenvalues.empty()) {
    const auto found = tables.eigenvalues.find(mode.number);
    if (found == tables.eigenvalues.end()) {
      throw Failure(path + ": no eigenvalue of mode " + std::to_string(mode.number));
    }
    value = found->second;
  }
  const double circular = 2.0 * std::numbers::pi * mode.frequency;
  const bool agree = std::abs(circular * circular - value) <= 1e-6 * value;
  return mode.frequency >= 1.0 && agree ? circular * circular : value;
}

/// From the components of the file to those of the model: displacements get rotations of zero;
/// tensors are xx, yy, zz, xy, xz, yz, and strains carry the engineering shear.
std::array<double, 6> model_components(FrdField field, const std::array<double, 6> &c) {
  if (field == frd_displacement) {
    return c;
  }
  const double shear = field == frd_strain ? 2.0 : 1.0;
  return {c[0], c[1], c[2], shear * c[3], shear * c[5], shear * c[4]};
}

void set_mode_field(QDL_Record *record, FrdFile &results, const FrdMode &mode, FrdField field) {
  constexpr std::array<QDL_ModeKind, frd_field_count> kinds = {QDL_MODE_SHAPE, QDL_MODE_STRESS,
                                                               QDL_MODE_STRAIN};
  for (const FrdValue &value : results.read(field, *mode.fields[field])) {
    const auto components = model_components(field, value.components);
    require(QDL_SetModeVec(record, mode.number, value.node, kinds[field], components.data()),
            "the values of mode " + std::to_string(mode.number));
  }
}

/// A model has a field in all of its modes or in none, and displacements at all of its nodes.
void check_fields(const FrdFile &results) {
  const FrdMode &first = results.modes().begin()->second;
  for (const auto &[number, mode] : results.modes()) {
    const std::string name = results.path() + ": mode " + std::to_string(number);
    const auto &displacement = mode.fields[frd_displacement];
    if (!displacement) {
      throw Failure(name + " has no displacements (*NODE FILE with U)");
    }
    if (displacement->count != static_cast<int64_t>(results.nodes().size())) {
      throw Failure(name + " has displacements at " + std::to_string(displacement->count) + " of " +
                    std::to_string(results.nodes().size()) +
                    " nodes: *NODE FILE must not be limited to a set");
    }
    for (const FrdField field : {frd_stress, frd_strain}) {
      if (mode.fields[field].has_value() != first.fields[field].has_value()) {
        throw Failure(name + (mode.fields[field] ? " has " : " lacks ") +
                      (field == frd_stress ? "stresses" : "strains") + ", unlike mode " +
                      std::to_string(first.number));
      }
    }
    if (std::abs(mode.generalized_mass - 1.0) > 1e-6) {
      throw Failure(name + " has a generalized mass other than 1");
    }
  }
}

void set_modes(QDL_Record *record, ModelSource &source, const CcxImport &options) {
  ProgressBar progress("modes", static_cast<int64_t>(source.results.modes().size()));
  for (const auto &[number, mode] : source.results.modes()) {
    const std::string name = "mode " + std::to_string(number);
    const double stiffness = eigenvalue(mode, source.tables, options.tables);
    require(QDL_SetGeneralizedMass(record, number, number, 1.0), name);
    require(QDL_SetGeneralizedStiffness(record, number, number, stiffness), name);
    for (const FrdField field : {frd_displacement, frd_stress, frd_strain}) {
      if (mode.fields[field]) {
        set_mode_field(record, source.results, mode, field);
      }
    }
    progress.advance();
  }
}

// --- Everything else --------------------------------------------------------------------------

/// The solver knows no units, so its numbers form a consistent system whatever the units are.
void set_units(QDL_Record *record, const Units &units) {
  require(QDL_SetUnits(record, units.mass.c_str(), units.length.c_str(), units.time.c_str(),
                       units.force.c_str()),
          "the units");
  const double factor = QDL_UCF(record);
  if (std::abs(factor - 1.0) > 1e-6) {
    char text[200];
    std::snprintf(text, sizeof text,
                  "these units are not consistent, as a solver's are: with %s, %s and %s the unit "
                  "of force is %g times %s",
                  units.mass.c_str(), units.length.c_str(), units.time.c_str(), 1.0 / factor,
                  units.force.c_str());
    throw Failure(text);
  }
}

void set_header(QDL_Record *record, const ModelSource &source, const CcxImport &options) {
  std::string title = source.results.title();
  std::string input = std::filesystem::path(options.results).filename().string();
  std::string type = "CalculiX";
  std::string masses = options.mass_matrix.empty()
                           ? "Nodal masses: element volume, diagonal scaling"
                           : "Nodal masses: mass matrix, diagonal scaling";
  std::string none;
  require(QDL_SetHeader(record, title.data(), input.data(), type.data(), masses.data(), none.data(),
                        none.data()),
          "the header");
}

void set_nodes(QDL_Record *record, const ModelSource &source) {
  int64_t without_mass = 0;
  for (const FrdNode &node : source.results.nodes()) {
    const auto &[x, y, z] = node.position;
    const std::string name = "node " + std::to_string(node.id);
    require(QDL_SetNodeCoordinates(record, node.id, x, y, z), name);
    const auto mass = source.masses.find(node.id);
    if (mass == source.masses.end()) {
      ++without_mass;
    } else {
      require(QDL_SetNodalMass(record, node.id, mass->second), name);
    }
  }
  if (without_mass > 0) {
    print_warning(std::to_string(without_mass) + " nodes have no mass");
  }
}

/// All faces of all elements, those inside the body too: the library strips them when asked.
void set_faces(QDL_Record *record, const FrdFile &results) {
  for (const FrdElement &element : results.elements()) {
    for (const ElementFace &face : faces(element.type)) {
      std::array<int32_t, 4> nodes{};
      for (size_t k = 0; k < static_cast<size_t>(face.corner_count); ++k) {
        nodes[k] = element.nodes[static_cast<size_t>(face.corners[k])];
      }
      require(QDL_SetFaceList(record, face.corner_count, nodes.data()),
              "a face of element " + std::to_string(element.id));
    }
  }
}

void set_interface_nodes(QDL_Record *record, const CcxDeck &deck, const CcxImport &options) {
  const std::string name =
      options.interface_set.empty() ? kDefaultInterfaceSet : upper(options.interface_set);
  const auto set = deck.node_sets.find(name);
  if (set == deck.node_sets.end()) {
    if (!options.interface_set.empty()) {
      throw Failure(options.deck + ": there is no node set " + name);
    }
    return;
  }
  size_t missing = 0;
  for (const int32_t node : set->second) {
    if (QDL_NodeIndex(record, node) < 0) {
      ++missing;
    } else {
      require(QDL_SetInterfaceNode(record, node), "interface node " + std::to_string(node));
    }
  }
  if (missing > 0) {
    print_warning(std::to_string(missing) + " of " + std::to_string(set->second.size()) +
                  " nodes of the set " + name + " are not in the results");
  }
}

void warn_of_what_is_left_out(const FrdFile &results) {
  if (results.other_element_count() > 0) {
    print_warning(std::to_string(results.other_element_count()) +
                  " elements that are no solids give no faces and no mass");
  }
  if (results.modal_step_count() > 1) {
    print_warning("the results hold " + std::to_string(results.modal_step_count()) +
                  " steps with modes; the last is taken");
  }
}

void print_summary(const ModelSource &source, const std::string &output, double mass) {
  const auto &modes = source.results.modes();
  const FrdMode &last = modes.rbegin()->second;
  std::printf(
      "%s: %zu nodes, %zu elements, %zu modes up to %.6g cycles per unit of time, mass %.7g\n",
      output.c_str(), source.results.nodes().size(), source.results.elements().size(), modes.size(),
      last.frequency, mass);
}

}  // namespace

void import_ccx(const CcxImport &options) {
  check_output_is_no_input(options);

  ModelSource source = {FrdFile(options.results), {}, {}, {}};
  check_fields(source.results);
  warn_of_what_is_left_out(source.results);
  if (!options.deck.empty()) {
    source.deck = read_ccx_deck(options.deck);
    source.results.refine_positions(source.deck.nodes);
  }
  if (!options.tables.empty()) {
    source.tables = read_ccx_tables(options.tables);
  }
  source.masses = nodal_masses(options, source.results, source.deck);
  const double mass = total(source.masses);
  compare_with_solver(mass, source.tables.masses_of_sets);

  const Record record(QDL_Create(static_cast<int32_t>(source.results.nodes().size()),
                                 static_cast<int32_t>(source.results.modes().size())));
  if (!record) {
    throw Failure("no memory for the model");
  }
  set_units(record.get(), options.units);
  set_header(record.get(), source, options);
  set_nodes(record.get(), source);
  set_faces(record.get(), source.results);
  set_interface_nodes(record.get(), source.deck, options);
  set_modes(record.get(), source, options);
  write_record(record.get(), options.output, options.write_options);
  print_summary(source, options.output, mass);
}

}  // namespace qdlflex::cli
