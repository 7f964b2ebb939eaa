// Edits, refusals, and which blocks a file gets.

#include "io/write_rules.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>

#include "io/write_rules_steps.h"

namespace qdltest {

std::string format(const char *text, ...) {
  std::array<char, 1024> buffer{};
  std::va_list arguments;
  va_start(arguments, text);
  std::vsnprintf(buffer.data(), buffer.size(), text, arguments);
  va_end(arguments);
  return buffer.data();
}

Outcome write_by_the_rules(Body &body, const Wishes &wishes, const EditedFaces &faces,
                           const std::vector<double> &found_transformation) {
  return Write(body, wishes, faces, found_transformation).run();
}

Outcome Write::run() {
  edit();
  if (refuse())
    return out_;
  out_.written = true;
  out_.code = wishes_.form.code | (body_.coarsened ? kCoarsenedBit : 0);
  if (wishes_.empty)
    choose_empty_body();
  else
    choose_everything();
  if (wishes_.mks && may_convert_)
    convert_to_si();
  cut_to_range();
  announce();
  describe_blocks();
  return out_;
}

void Write::edit() {
  const Edit edit = wishes_.edit;
  if (edit == Edit::kShift || edit == Edit::kShiftAndStrip)
    shift_frame();
  if (edit == Edit::kSketch) {
    info("Using sketch file " + faces_.sketch_file + " to replace 6 faces with 2");
    model_.faces = faces_.sketched;
  }
  if (edit == Edit::kStrip || edit == Edit::kShiftAndStrip) {
    info("Stripping interior faces\n");
    model_.faces = faces_.stripped;
  }
  if (edit == Edit::kCoarsen) {
    info("Coarsening to resolution 30%% with face-angle 10.00 deg");
    info("Preserving nodes: ");
    for (const std::int32_t id : model_.interface_nodes)
      info(format("%d ", id));
    if (model_.interface_nodes.empty())
      info(" NONE");
    info("\nFace reduction from 6 to 3");
    model_.faces = faces_.coarsened;
  }
  body_.coarsened |= edit == Edit::kSketch || edit == Edit::kCoarsen;
}

// Only nodal masses tell where the centre is. They also give the invariants that depend on the
// place, but the eighth, which follows by its difference.
void Write::shift_frame() {
  const double mass = summed_invariant(model_, 1)[0];
  if (mass == 0.0)
    return;
  out_.computed = true;
  const std::vector<double> moment = summed_invariant(model_, 2);
  const Vec3 centre = {moment[0] / mass, moment[1] / mass, moment[2] / mass};
  for (Node &node : model_.nodes)
    for (std::size_t c = 0; c < 3; ++c)
      node.xyz[c] -= centre[c];
  info(format("Shifting LBRF to CM at (%.3e,%.3e,%.3e)\n", centre[0], centre[1], centre[2]));
  if (has(6))
    model_.global_mass[1] = 0.0;
  const auto move_moment = [&](std::vector<double> &six) {
    if (six.empty() || rigid_modes() != 6)
      return;
    for (std::size_t c = 0; c < 3; ++c)
      six[3 + c] -= cross(centre, {six[0], six[1], six[2]})[c];
  };
  move_moment(model_.preload);
  for (LoadCase &load : model_.load_cases)
    move_moment(load.values);
  for (const int number : {2, 4, 7})
    if (body_.known.contains(number))
      invariant(number) = summed_invariant(model_, number);
  const std::vector<double> &i3 = invariant(3);
  for (std::size_t i = 0; body_.known.contains(8) && i < invariant(8).size(); ++i) {
    const std::size_t k = i / 9, row = i / 3 % 3, column = i % 3;
    Vec3 unit{};
    unit[column] = 1.0;
    invariant(8)[i] -=
        cross(centre, cross({i3[k], i3[modes() + k], i3[2 * modes() + k]}, unit))[row];
  }
}

bool Write::refuse() {
  const std::string &form = wishes_.form.options;
  if (wishes_.sparse && form.find("full_str") != std::string::npos)
    error("Cannot specify full and sparse stress and strain modes.");
  for (const std::string release : {"2", "1"}) {
    const std::string start = "8." + release + " compatible QDL cannot ";
    if (form.find("8" + release + "_comp") == std::string::npos)
      continue;
    if (wishes_.invariants != InvariantWish::kNone)
      error(start + "contain Invariants");
    if (wishes_.sparse)
      error(start + "have sparse stress or strain modes");
  }
  const bool refused = !out_.errors.empty();
  if (refused)
    error("Problem writing version number.");
  return refused;
}

// --- Which blocks ------------------------------------------------------------------------------

void Write::choose_stored(const std::set<int> &blocks) {
  std::ranges::set_intersection(blocks, body_.blocks,
                                std::inserter(out_.blocks, out_.blocks.end()));
}

void Write::choose_geometry() {
  choose_stored({4, 9, 10, 17});
  out_.blocks.insert(11);
  if (has(14))
    out_.blocks.insert((wishes_.form.code & 0xff) <= 20 ? 5 : 14);
}

void Write::choose_empty_body() {
  choose_geometry();
  if (!has(9) && !knows({1, 2, 7}) && !(has(19) && has(20) && has(24)))
    error(
        "There is insufficient mass data to compute a full set of mass invariants.\nSome or all "
        "mass invariants will be set to zero.");
  info("Computing *rigid* invariants");
  for (const int number : {1, 2, 3, 7})
    obtain(number);
  out_.blocks.insert({19, 20, 24});
  choose_global_mass(true);
}

void Write::choose_everything() {
  choose_geometry();
  choose_stored({8, 15});
  choose_modes();
  may_convert_ = wishes_.invariants != InvariantWish::kUnclear;
  const bool invariants_known = choose_invariants() || has(21);
  if (invariants_known) {
    project_forces();
    project_damping();
    for (const int number : {1, 2, 7})
      obtain(number);
  }
  if (invariants_known && may_convert_)
    discard_nodes();
  choose_global_mass(invariants_known);
  choose_stored({18, 27, 28, 29, 31, 32, 34, 35, 36, 37});
  out_.blocks.insert(30);
  if (first_ >= end_)
    out_.blocks = without(out_.blocks, {7, 8, 15, 16, 18, 21, 22, 23, 25, 26, 27, 28, 29, 30});
  // Nodal vectors need the nodes of the modes.
  for (const auto &[modes, vectors] : {std::pair(18, 31), std::pair(29, 32)})
    if (!writes(modes))
      out_.blocks.erase(vectors);
  rigid_modes_ = rigid_modes();
}

void Write::choose_modes() {
  end_ = modes();
  if (wishes_.no_ortho) {
    out_.blocks.insert({12, 13});
    return;
  }
  if (modes() > 0)
    orthonormalize();
  out_.blocks.insert(7);
  choose_stored({16});
  const Band &band = wishes_.band;
  info(format("Exporting frequency range [%le,%le]\n", band.lower, band.upper));
  const std::vector<Eigenvalue> &table = model_.eigenvalues;
  const auto first = std::ranges::find_if(
      table, [&](const Eigenvalue &mode) { return mode.frequency > band.lower; });
  const auto end = std::ranges::find_if(table, [&](const Eigenvalue &mode) {
    return mode.frequency > band.upper || mode.mass == 0.0;
  });
  first_ = first == table.end() ? 0 : static_cast<std::size_t>(first - table.begin());
  end_ = static_cast<std::size_t>(end - table.begin());
  const std::int32_t shift = modes() > 0 ? body_.mode_numbers[first_] - 1 : 0;
  for (std::int32_t &number : body_.mode_numbers)
    number -= shift;
}

// True if a computation was asked for and ran.
bool Write::choose_invariants() {
  choose_stored({19, 20, 21, 22, 23, 24, 25, 26});
  const InvariantWish wish = wishes_.invariants;
  if (wish == InvariantWish::kUnclear)
    error("Illegal invariants option, use full_invar or fast_invar.");
  if (wish == InvariantWish::kNone || wish == InvariantWish::kUnclear)
    return false;
  const bool full = wish != InvariantWish::kFast;
  const std::set<int> fast_numbers = {1, 2, 3, 4, 7, 8}, fast_blocks = {19, 20, 21, 22, 24, 25};
  const std::set<int> numbers = full ? std::set{1, 2, 3, 4, 5, 7, 8, 9} : fast_numbers;
  const std::set<int> blocks = full ? std::set{19, 20, 21, 22, 23, 24, 25, 26} : fast_blocks;
  if (!knows(numbers) && !std::ranges::includes(body_.blocks, blocks) && !(has(9) && modes() > 0))
    error(
        format("There is insufficient mass data to compute a %s set of mass invariants.\nSome or "
               "all mass invariants will be set to zero.",
               full ? "full" : "partial"));
  info(full ? "Computing *all* invariants" : "Computing fast set of invariants");
  for (const int number : numbers)
    obtain(number);
  out_.blocks = without(out_.blocks, {23, 26});
  out_.blocks.insert(blocks.begin(), blocks.end());
  return true;
}

void Write::choose_global_mass(bool invariants_known) {
  const bool from_nodes = has(4) && has(9);
  if (invariants_known || has(6) || from_nodes)
    out_.blocks.insert(6);
  if (!invariants_known && (has(6) || !from_nodes))
    return;
  for (const int number : {1, 2, 7})
    obtain(number);
  out_.computed = true;
  const double mass = invariant(1)[0];
  model_.global_mass = {mass};
  for (const double moment : invariant(2))
    model_.global_mass.push_back(mass == 0.0 ? 0.0 : moment / mass);
  for (std::size_t i = 0; i < 9; ++i)
    model_.global_mass.push_back(i % 4 == 0 ? invariant(7)[i] : -invariant(7)[i]);
  if (invariants_known)
    body_.blocks.insert(6);
}

}  // namespace qdltest
