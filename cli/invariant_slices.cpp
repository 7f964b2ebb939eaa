#include "invariant_slices.h"

#include <string>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

/// An array of the library, which said itself why there is none.
std::vector<double> values_of(int number, double *array, size_t count) {
  const LibraryArray<double> owner(array);
  if (array == nullptr) {
    throw Failure("invariant " + std::to_string(number) + " cannot be had");
  }
  return {array, array + count};
}

}  // namespace

int32_t invariant_slices(QDL_Record *record, int number) {
  const int32_t modes = QDL_ModeCount(record);
  const bool rigid = number == 1 || number == 2 || number == 7;
  const bool by_mode = number == 5 || number == 8 || number == 9;
  return rigid || (!by_mode && modes > 0) ? 1 : by_mode ? modes : 0;
}

std::vector<double> read_invariant_slice(QDL_Record *record, int number, int32_t slice) {
  const auto modes = static_cast<size_t>(QDL_ModeCount(record));
  switch (number) {
    case 1:
      return {QDL_Invar1(record)};
    case 2:
      return values_of(number, QDL_Invar2(record), 3);
    case 3:
      return values_of(number, QDL_Invar3(record), 3 * modes);
    case 4:
      return values_of(number, QDL_Invar4(record), 3 * modes);
    case 5:
      return values_of(number, QDL_Invar5(record, slice), 3 * modes);
    case 6:
      return values_of(number, QDL_Invar6(record), modes * modes);
    case 7:
      return values_of(number, QDL_Invar7(record), 9);
    case 8:
      return values_of(number, QDL_Invar8(record, slice), 9);
    default:
      break;
  }
  std::vector<double> row;
  row.reserve(9 * modes);
  for (int32_t other = 0; other < QDL_ModeCount(record); ++other) {
    const std::vector<double> matrix = values_of(number, QDL_Invar9(record, slice, other), 9);
    row.insert(row.end(), matrix.begin(), matrix.end());
  }
  return row;
}

}  // namespace qdlflex::cli
