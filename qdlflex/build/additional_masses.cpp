#include <cstdint>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "build/generalized_entries.h"
#include "build/nodes_and_modes.h"
#include "numerics/coupling_masses.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdltools";

/// Both places of each pair. Room is made first, so that either all entries are stored or none.
void append_coupling_masses(QDL_Record &record, std::int32_t normal, std::int32_t additional) {
  const std::vector<double> masses = coupling_masses(record, normal, additional);
  std::vector<std::int32_t> indices;
  for (std::int32_t number = 1; number <= normal + additional; ++number)
    indices.push_back(find_or_add_mode(record, number));
  record.mass.entries.reserve(record.mass.entries.size() + 2 * masses.size());
  const double *mass = masses.data();
  for (std::int32_t a = 0; a < normal; ++a) {
    for (std::int32_t b = normal; b < normal + additional; ++b, ++mass) {
      const std::int32_t row = indices[static_cast<std::size_t>(a)];
      const std::int32_t column = indices[static_cast<std::size_t>(b)];
      append_generalized_mass(record, row, column, *mass);
      append_generalized_mass(record, column, row, *mass);
    }
  }
}

}  // namespace

int32_t QDL_AnsysAddGenMass(QDL_Record *model, int32_t normal_modes, int32_t additional_modes) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (std::int64_t{normal_modes} + additional_modes != mode_count(record)) {
      QDL_Error("Mode count mismatch while generating additional generalized masses.");
      return 0;
    }
    if (normal_modes > 0 && additional_modes > 0)
      append_coupling_masses(record, normal_modes, additional_modes);
    return 1;
  });
}
