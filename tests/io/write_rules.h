// What a write has to do, as plain data and plain loops: a model of the writer for its tests that
// follows the rules of the format and uses nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "io/write_fixture.h"

namespace qdltest {

// What a record holds. Content without a block in the set is empty; nodal masses, where there are
// any, come in the order of the nodes.
struct Body {
  SampleModel content;
  std::set<int> blocks;
  std::vector<std::int32_t> mode_numbers;
  bool damping_on_axes = false;
  bool coarsened = false;
  bool single = false;  // new modes are kept in single precision, as those of its file
  std::set<int> known;  // the invariants that it has obtained
  std::set<std::int32_t> geometry_nodes;
};

enum class Edit { kNone, kShift, kStrip, kCoarsen, kSketch, kShiftAndStrip };
enum class InvariantWish { kNone, kFull, kFast, kBoth, kUnclear };

struct Band {
  std::string options;
  double lower, upper;
};

struct Wishes {
  WriteForm form;
  bool no_ortho, sparse, mks, empty, skip_load_nodes;
  InvariantWish invariants;
  Band band;
  Edit edit;
};

// The faces that an edit leaves of a body.
struct EditedFaces {
  std::string sketch_file;
  std::vector<std::int32_t> stripped, coarsened, sketched;
};

struct Outcome {
  bool written = false;
  std::int32_t code = 0;
  std::set<int> blocks;
  SampleModel content;
  bool computed = false;  // numbers are not those of the body, so that rounding may differ
  std::vector<std::string> errors, warnings, infos;  // "*" at the end stands for any text
};

// Writes the body and leaves it as the write does. Of the transformation that the library found
// only the signs of the columns are used: those of eigenvectors are free.
Outcome write_by_the_rules(Body &body, const Wishes &wishes, const EditedFaces &faces,
                           const std::vector<double> &found_transformation);

}  // namespace qdltest
