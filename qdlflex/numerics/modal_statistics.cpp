#include "numerics/modal_statistics.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "modes/mode_store.h"
#include "record/lookups.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdldata";

// What is searched for, as squares, from the six components of a node.

double squared_length(const double *v) {
  return v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
}

double normal_part(const double *v) {
  return squared_length(v) - v[0] * v[1] - v[1] * v[2] - v[0] * v[2];
}

double squared_displacement(const double *six) {
  return squared_length(six);
}

double squared_rotation(const double *six) {
  return squared_length(six + 3);
}

double squared_stress(const double *six) {
  return normal_part(six) + 3.0 * squared_length(six + 3);
}

/// With engineering shear.
double squared_strain(const double *six) {
  return 0.4444444444444444 * normal_part(six) + 0.3333333333333333 * squared_length(six + 3);
}

struct Search {
  std::int32_t kind;
  double (*square)(const double *six);
};

Search search_for(Statistic statistic) {
  switch (statistic) {
    case Statistic::kDisplacement:
      return {kModeShapes, squared_displacement};
    case Statistic::kRotation:
      return {kModeShapes, squared_rotation};
    case Statistic::kVonMisesStress:
      return {kModalStress, squared_stress};
    default:
      return {kModalStrain, squared_strain};
  }
}

/// The largest value so far; of equal nodes the first.
struct Best {
  double square = 0.0;
  std::int64_t position = kNoIndex;

  void search(const Search &search, const double *six, std::int64_t first, std::int64_t rows) {
    for (std::int64_t row = 0; row < rows; ++row) {
      const double candidate = search.square(six + row * kComponents);
      if (candidate > square) {
        square = candidate;
        position = first + row;
      }
    }
  }

  LargestValue answer(const QDL_Record &record, std::int32_t kind) const {
    return {mode_node_id(record, kind, static_cast<std::int32_t>(position)), std::sqrt(square)};
  }
};

/// The slots of a mode; modes added since the table was made get theirs here.
ModalStatistics &slots_of(QDL_Record &record, std::int32_t mode_index) {
  StatisticsTable &table = record.statistics;
  if (table.modes.size() < record.mode_numbers.size())
    table.modes.resize(record.mode_numbers.size());
  table.present = true;
  return table.modes[static_cast<std::size_t>(mode_index)];
}

std::int32_t answer(QDL_Record *model, Statistic statistic, std::int32_t mode_number,
                    std::int32_t *node_id, double *value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::int32_t mode_index = find_mode(record, mode_number);
    LargestValue largest;
    if (mode_index == kNoIndex || !modal_statistic(record, statistic, mode_index, largest))
      return 0;
    if (node_id != nullptr)
      *node_id = largest.node_id;
    if (value != nullptr)
      *value = largest.value;
    return 1;
  });
}

}  // namespace

bool find_largest(QDL_Record &record, Statistic statistic, std::int32_t mode_index,
                  LargestValue &largest) {
  constexpr std::int64_t kChunkRows = 2048;
  const Search search = search_for(statistic);
  const std::int64_t nodes = mode_node_count(record, search.kind);
  std::vector<double> chunk(static_cast<std::size_t>(std::min(nodes, kChunkRows) * kComponents));
  Best best;
  std::int64_t first = 0;
  // Without any node a read all the same, which tells whether there is mode data at all.
  do {
    const std::int64_t rows = std::min(nodes - first, kChunkRows);
    if (!read_rows(record, search.kind, mode_index, first, rows, chunk.data())) {
      report_unreadable_mode(search.kind,
                             record.mode_numbers[static_cast<std::size_t>(mode_index)]);
      return false;
    }
    best.search(search, chunk.data(), first, rows);
    first += rows;
  } while (first < nodes);
  largest = best.answer(record, search.kind);
  return true;
}

LargestValue largest_of(const QDL_Record &record, Statistic statistic, const double *six) {
  const Search search = search_for(statistic);
  Best best;
  best.search(search, six, 0, mode_node_count(record, search.kind));
  return best.answer(record, search.kind);
}

bool modal_statistic(QDL_Record &record, Statistic statistic, std::int32_t mode_index,
                     LargestValue &largest) {
  if (record.statistics.inconsistent) {
    QDL_Error("Inconsistent number of modes detected at line %d in file %s", __LINE__, kArea);
    return false;
  }
  const auto slot = static_cast<std::size_t>(statistic);
  ModalStatistics &slots = slots_of(record, mode_index);
  if (slots.node_ids[slot] == 0) {
    if (!find_largest(record, statistic, mode_index, largest))
      return false;
    slots.node_ids[slot] = largest.node_id;
    slots.values[slot] = largest.value;
  }
  largest = {slots.node_ids[slot], slots.values[slot]};
  return true;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ModalStatisticsExist(QDL_Record *model) {
  return model != nullptr && present(*model, Block::kModalStatistics) ? 1 : 0;
}

int32_t QDL_GetMaxModeDisplacement(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                   double *value) {
  return answer(model, Statistic::kDisplacement, mode_number, node_id, value);
}

int32_t QDL_GetMaxModeRotation(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                               double *value) {
  return answer(model, Statistic::kRotation, mode_number, node_id, value);
}

int32_t QDL_GetMaxVonMisesStress(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                 double *value) {
  return answer(model, Statistic::kVonMisesStress, mode_number, node_id, value);
}

int32_t QDL_GetMaxVonMisesStrain(QDL_Record *model, int32_t mode_number, int32_t *node_id,
                                 double *value) {
  return answer(model, Statistic::kVonMisesStrain, mode_number, node_id, value);
}
