#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qdlflex {

struct TrimArguments {
  double resolution = 0.0;  // fraction of the model's diagonal
  double angle = 0.0;       // between faces, in degrees
  bool drop_colinear = false;
  std::vector<std::int32_t> preserved_ids;
  bool preserve_stress = false;
};

/// Reads resolution, angle, switch and identifiers, with any one character behind each. A
/// resolution or angle out of range is warned about and replaced.
TrimArguments parse_trim_arguments(std::string_view text);

}  // namespace qdlflex
