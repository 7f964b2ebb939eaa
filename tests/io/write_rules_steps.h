// The steps of a write by the rules and their numbers.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "io/write_rules.h"

namespace qdltest {

using Vec3 = std::array<double, 3>;
using Rows = std::vector<std::vector<double>>;

std::string format(const char *text, ...) __attribute__((format(printf, 1, 2)));

Vec3 cross(const Vec3 &a, const Vec3 &b);

// Keeps the range of an array [outer][count][inner] in its second extent.
std::vector<double> range_of(const std::vector<double> &values, std::size_t inner,
                             std::size_t count, std::size_t first, std::size_t end);

// New entry k of the second extent: the sum of t[a][k] times old entry a, from `first` on.
std::vector<double> combined(const std::vector<double> &values, std::size_t inner, const Rows &t,
                             std::size_t first);

// The sums over nodes that define invariants 1 to 5 and 7 to 9.
std::vector<double> summed_invariant(const SampleModel &model, int number);

// Six numbers for each of the first modes: force and moment of a unit, or coefficients on the axes.
Rows rigid_resultants(const SampleModel &model, std::size_t rigid_modes);
Rows rigid_projection(const SampleModel &model, std::size_t rigid_modes);

// Ascending eigenvalues, and vectors of unit generalized mass as columns, where modes 0 and 2 are
// coupled, 1 and 3, and no others.
struct Eigenvectors {
  std::vector<double> values;
  Rows vectors;
};
Eigenvectors solve_in_pairs(const SampleModel &model);

struct UnitRatios {
  double mass, length, time, force;  // old unit over new
};
UnitRatios ratios_to_si(const std::array<std::string, 4> &units);
// What turns an eigenvalue into the square of a circular frequency.
double consistency_factor(const std::array<std::string, 4> &units);
void convert(SampleModel &model, const UnitRatios &ratios, std::size_t rigid_modes,
             bool damping_on_axes);

class Write {
 public:
  Write(Body &body, const Wishes &wishes, const EditedFaces &faces,
        const std::vector<double> &found)
      : body_(body), model_(body.content), wishes_(wishes), faces_(faces), found_(found) {}

  Outcome run();

 private:
  std::size_t modes() const { return body_.mode_numbers.size(); }
  bool has(int block) const { return body_.blocks.contains(block); }
  bool writes(int block) const { return out_.blocks.contains(block); }
  void info(const std::string &text) { out_.infos.push_back(text); }
  void error(const std::string &text) { out_.errors.push_back(text); }
  void warn(const std::string &text) { out_.warnings.push_back(text); }
  std::vector<double> &invariant(int number) {
    return model_.invariants[static_cast<std::size_t>(number)];
  }

  // Before the first byte.
  void edit();
  void shift_frame();
  bool refuse();

  // Which blocks there are.
  void choose_stored(const std::set<int> &blocks);
  void choose_geometry();
  void choose_empty_body();
  void choose_everything();
  void choose_modes();
  bool choose_invariants();
  void choose_global_mass(bool invariants_known);

  // What is computed for them.
  void orthonormalize();
  void drop_massless_modes();
  void solve();
  void adopt_sign(Rows &vectors, std::size_t k) const;
  void transform(const Rows &t);
  bool knows(const std::set<int> &numbers) const;
  void obtain(int number);
  std::size_t rigid_modes() const;
  void project_forces();
  void project_damping();
  void discard_nodes();
  void shorten(int block, ModeTable &table, std::vector<double> &pre_vectors,
               const std::string &word);
  void convert_to_si();

  // What goes into the file and is said of it.
  void cut_to_range();
  void cut_damping(std::vector<MatrixEntry> &entries) const;
  void imply_matrices(SampleModel &file) const;
  void announce();
  void describe_blocks();

  Body &body_;
  SampleModel &model_;
  const Wishes &wishes_;
  const EditedFaces &faces_;
  const std::vector<double> &found_;
  Outcome out_;
  std::size_t first_ = 0, end_ = 0, rigid_modes_ = 0;  // the exported modes
  bool may_convert_ = true;
};

}  // namespace qdltest
