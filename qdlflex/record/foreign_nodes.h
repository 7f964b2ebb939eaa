#pragma once

#include <cstddef>

#include "record/record.h"

namespace qdlflex {

/// Calls visit(id) for every identifier in the node sets of stress and strain that no node has.
template <class Record, class Visit>
void for_each_foreign_id(Record &record, Visit visit) {
  for (auto &data : record.mode_data) {
    for (std::size_t slot = 0; slot < data.nodes.node_of_slot.size(); ++slot) {
      if (data.nodes.node_of_slot[slot] == kUnknownNode)
        visit(data.nodes.foreign_ids[slot]);
    }
  }
}

}  // namespace qdlflex
