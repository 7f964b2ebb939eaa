#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

#include <qdlflex/qdlflex.h>

#include "build/generalized_entries.h"
#include "numerics/qdlinvar.h"
#include "record/invariant_layout.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";
constexpr double kTolerance = 1e-8;

/// The place of a mode, given by its number; an unknown mode is reported with the caller's line.
std::optional<std::size_t> mode_place(const QDL_Record &record, std::int32_t mode_number,
                                      int line = __builtin_LINE()) {
  const std::int32_t index = find_mode(record, mode_number);
  if (index != kNoIndex)
    return static_cast<std::size_t>(index);
  QDL_Error("Mode number %d does not exist.  Requested at line %d in file %s.\n", mode_number, line,
            kArea);
  return std::nullopt;
}

/// An invariant's values, to be set in part. What the file has for other modes is read first;
/// without that, what is not set is zero.
class EditedInvariant {
 public:
  EditedInvariant(QDL_Record &record, int number)
      : record_(record),
        number_(number),
        slot_(slot_of(record, number)),
        shape_(invariant_shape(number, mode_count(record))) {
    const Block block = invariant_block(number);
    if (slot_.origin == Origin::kEmpty && present(record, block) && in_file(record, block))
      obtain_invariant(record, number);
    lay_out_invariant(record, number, mode_count(record));
  }

  double &at(std::size_t i, std::size_t j, std::size_t k) {
    return slot_.values[shape_.offset(i, j, k)];
  }

  /// Sets all values of invariant 1, 2 or 7.
  void set(std::span<const double> values) { std::ranges::copy(values, slot_.values.begin()); }

  std::int32_t stored() {
    slot_.origin = Origin::kSupplied;
    raise(record_, invariant_block(number_));
    return 1;
  }

 private:
  QDL_Record &record_;
  int number_;
  InvariantSlot &slot_;
  InvariantShape shape_;
};

std::int32_t set_rigid(QDL_Record &record, int number, std::span<const double> values) {
  EditedInvariant invariant(record, number);
  invariant.set(values);
  return invariant.stored();
}

/// Invariants 3 and 4: three components of one mode.
std::int32_t set_vector_of_mode(QDL_Record *model, int number, std::int32_t mode_number,
                                const double *v3) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (v3 == nullptr)
      return 0;
    const auto mode = mode_place(record, mode_number);
    if (!mode)
      return 0;
    EditedInvariant invariant(record, number);
    for (std::size_t component = 0; component < 3; ++component)
      invariant.at(0, component, *mode) = v3[component];
    return invariant.stored();
  });
}

bool is_zero(const double *v3) {
  return std::none_of(v3, v3 + 3, [](double value) { return std::fabs(value) > kTolerance; });
}

/// Kept antisymmetric; of a mode with itself the negative, set last, stays.
std::int32_t set_invariant_5(QDL_Record &record, std::int32_t mode_i, std::int32_t mode_j,
                             const double *v3) {
  const auto i = mode_place(record, mode_i);
  if (!i)
    return 0;
  const auto j = mode_place(record, mode_j);
  if (!j)
    return 0;
  if (*i == *j && !is_zero(v3)) {
    QDL_Warning("I5(%d, %d) is not zero.\n   (%14.8e, %14.8e, %14.8e)", mode_i, mode_j, v3[0],
                v3[1], v3[2]);
  }
  EditedInvariant invariant(record, 5);
  for (std::size_t component = 0; component < 3; ++component) {
    invariant.at(*i, component, *j) = v3[component];
    invariant.at(*j, component, *i) = -v3[component];
  }
  return invariant.stored();
}

std::int32_t set_invariant_6(QDL_Record &record, const double *diagonal) {
  const std::int32_t modes = mode_count(record);
  if (modes == 0)
    return 1;
  if (diagonal == nullptr)
    return 0;
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    if (diagonal[mode] != 1.0) {
      QDL_Error("Inertia Invariant 6 must be an identity matrix.");
      return 0;
    }
    append_generalized_mass(record, mode, mode, 1.0);
  }
  return 1;
}

std::int32_t set_invariant_8(QDL_Record &record, std::int32_t mode_number, const double *m9) {
  const auto mode = mode_place(record, mode_number);
  if (!mode)
    return 0;
  EditedInvariant invariant(record, 8);
  std::copy_n(m9, 9, &invariant.at(0, *mode, 0));
  return invariant.stored();
}

bool are_equal(double a, double b) {
  const double scale = std::fabs(a) > 1.0 ? a : 1.0;
  return std::fabs((a - b) / scale) <= kTolerance;
}

bool is_symmetric(const double *m9) {
  return are_equal(m9[1], m9[3]) && are_equal(m9[2], m9[6]) && are_equal(m9[5], m9[7]);
}

/// The pair in reverse order has the transpose; of a mode with itself the lower triangle, set last,
/// stays.
std::int32_t set_invariant_9(QDL_Record &record, std::int32_t mode_i, std::int32_t mode_j,
                             const double *m9) {
  const auto i = mode_place(record, mode_i);
  if (!i)
    return 0;
  const auto j = mode_place(record, mode_j);
  if (!j)
    return 0;
  if (*i == *j && !is_symmetric(m9)) {
    QDL_Warning(
        "I9(%d, %d) is not symmetric.\n"
        "   %14.8e %14.8e %14.8e\n"
        "   %14.8e %14.8e %14.8e\n"
        "   %14.8e %14.8e %14.8e\n",
        mode_i, mode_j, m9[0], m9[1], m9[2], m9[3], m9[4], m9[5], m9[6], m9[7], m9[8]);
  }
  EditedInvariant invariant(record, 9);
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const double value = m9[3 * row + column];
      invariant.at(*i, *j, 3 * row + column) = value;
      invariant.at(*j, *i, 3 * column + row) = value;
    }
  }
  return invariant.stored();
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetInvar1(QDL_Record *model, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (!(value > 0.0)) {
      QDL_Error("Inertia Invariant 1 must be greater than zero");
      return 0;
    }
    return set_rigid(record, 1, {&value, 1});
  });
}

int32_t QDL_SetInvar2(QDL_Record *model, const double *v3) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return v3 == nullptr ? 0 : set_rigid(record, 2, {v3, 3});
  });
}

int32_t QDL_SetInvar3(QDL_Record *model, int32_t modeNumber, const double *v3) {
  return set_vector_of_mode(model, 3, modeNumber, v3);
}

int32_t QDL_SetInvar4(QDL_Record *model, int32_t modeNumber, const double *v3) {
  return set_vector_of_mode(model, 4, modeNumber, v3);
}

int32_t QDL_SetInvar5(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *v3) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return v3 == nullptr ? 0 : set_invariant_5(record, modeI, modeJ, v3);
  });
}

int32_t QDL_SetInvar6(QDL_Record *model, const double *diagonal) {
  return with_model(model, kArea, 0,
                    [&](QDL_Record &record) { return set_invariant_6(record, diagonal); });
}

int32_t QDL_SetInvar7(QDL_Record *model, const double *xx_yy_zz_xy_xz_yz) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (xx_yy_zz_xy_xz_yz == nullptr)
      return 0;
    Vector6 six;
    std::copy_n(xx_yy_zz_xy_xz_yz, six.size(), six.begin());
    return set_rigid(record, 7, symmetric_matrix(six));
  });
}

int32_t QDL_SetInvar8(QDL_Record *model, int32_t modeNumber, const double *m9) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return m9 == nullptr ? 0 : set_invariant_8(record, modeNumber, m9);
  });
}

int32_t QDL_SetInvar9(QDL_Record *model, int32_t modeI, int32_t modeJ, const double *m9) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return m9 == nullptr ? 0 : set_invariant_9(record, modeI, modeJ, m9);
  });
}
