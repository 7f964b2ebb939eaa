#include "record/invariant_layout.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include "record/row_layout.h"

namespace qdlflex {
namespace {

constexpr std::size_t kMostValues = SIZE_MAX / sizeof(double);

std::size_t checked_product(std::size_t a, std::size_t b) {
  if (b != 0 && a > kMostValues / b)
    throw std::length_error("invariant");
  return a * b;
}

/// Copies the values of the indices that both shapes have.
void copy_common(std::vector<double> &to, const InvariantShape &to_shape,
                 const std::vector<double> &from, const InvariantShape &from_shape) {
  const auto common = [&](std::size_t axis) {
    return std::min(to_shape.extents[axis], from_shape.extents[axis]);
  };
  for (std::size_t i = 0; i < common(0); ++i) {
    for (std::size_t j = 0; j < common(1); ++j) {
      std::copy_n(from.data() + from_shape.offset(i, j, 0), common(2),
                  to.data() + to_shape.offset(i, j, 0));
    }
  }
}

}  // namespace

std::size_t InvariantShape::size() const {
  return checked_product(checked_product(extents[0], extents[1]), extents[2]);
}

InvariantShape invariant_shape(int number, std::int32_t modes) {
  const auto m = static_cast<std::size_t>(modes);
  switch (number) {
    case 1:
      return {{1, 1, 1}};
    case 2:
      return {{1, 1, 3}};
    case 3:
    case 4:
      return {{1, 3, m}};
    case 5:
      return {{m, 3, m}};
    case 7:
      return {{1, 1, 9}};
    case 8:
      return {{1, m, 9}};
    case 9:
      return {{m, m, 9}};
    default:
      return {};
  }
}

Block invariant_block(int number) {
  constexpr std::array<Block, kLastInvariant + 1> kBlocks = {
      Block{},
      Block::kInvariant1,
      Block::kInvariant2,
      Block::kInvariant3,
      Block::kInvariant4,
      Block::kInvariant5,
      Block{},
      Block::kInvariant7,
      Block::kInvariant8,
      Block::kInvariant9,
  };
  return kBlocks[static_cast<std::size_t>(number)];
}

bool is_modal_invariant(int number) {
  return number != 1 && number != 2 && number != 7;
}

bool is_known(const QDL_Record &record, int number) {
  const Block block = invariant_block(number);
  return slot_of(record, number).origin != Origin::kEmpty ||
         (in_file(record, block) && present(record, block));
}

void lay_out_invariant(QDL_Record &record, int number, std::int32_t modes) {
  InvariantSlot &slot = slot_of(record, number);
  const InvariantShape shape = invariant_shape(number, modes);
  if (slot.modes == modes && slot.values.size() == shape.size())
    return;
  std::vector<double> values(shape.size());
  if (!slot.values.empty())
    copy_common(values, shape, slot.values, invariant_shape(number, slot.modes));
  slot.values = std::move(values);
  slot.modes = modes;
}

void cut_invariant(QDL_Record &record, int number, std::int32_t modes) {
  InvariantSlot &slot = slot_of(record, number);
  if (slot.modes <= modes || slot.values.empty())
    return;
  const auto before = static_cast<std::size_t>(slot.modes);
  const auto kept = static_cast<std::size_t>(modes);
  // In number 8 the modes come first, so that nothing but its end is to be cut.
  if (number == 9)
    cut_rows(slot.values, 9 * before, 9 * kept);
  else if (number != 8)
    cut_rows(slot.values, before, kept);
  slot.values.resize(invariant_shape(number, modes).size());
  slot.modes = modes;
}

double invariant_unit_factor(int number, const UnitRatios &ratios) {
  switch (number) {
    case 1:
      return ratios.mass;
    case 2:
    case 3:
      return ratios.mass * ratios.length;
    default:
      return ratios.mass * (ratios.length * ratios.length);
  }
}

}  // namespace qdlflex
