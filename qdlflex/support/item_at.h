#pragma once

#include <cstddef>
#include <cstdint>

namespace qdlflex {

/// The item at an index that a caller gave; null outside the list.
template <class Items>
auto item_at(Items &items, std::int32_t index) -> decltype(items.data()) {
  if (index < 0 || static_cast<std::size_t>(index) >= items.size())
    return nullptr;
  return items.data() + index;
}

}  // namespace qdlflex
