#include "geometry/strip_faces.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "record/derived.h"
#include "record/faces.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdltools";

using Nodes = std::span<const std::int32_t>;

/// A face and its orientation in one word, so that sorting moves little.
class Face {
 public:
  Face() = default;
  Face(std::size_t at, bool forward)
      : word_(static_cast<std::uint32_t>(at) << 1U | (forward ? 1U : 0U)) {}

  /// Where its count stands in the list of faces.
  std::size_t at() const { return word_ >> 1U; }
  /// Whether its canonical reading follows its winding.
  bool forward() const { return (word_ & 1U) != 0; }

 private:
  std::uint32_t word_ = 0;
};

/// The canonical readings of all faces, in the layout of the list of faces. A face is read from its
/// largest node towards the larger of that node's two neighbours, so that two faces around the same
/// nodes read the same whatever their winding.
class Readings {
 public:
  explicit Readings(std::size_t length) : list_(length) {}

  Face add(std::size_t at, std::int32_t stored_count, Nodes face) {
    std::int32_t *place = list_.data() + at;
    *place++ = face.empty() ? std::min(stored_count, 0) : static_cast<std::int32_t>(face.size());
    const auto start = std::max_element(face.begin(), face.end());
    const bool forward = follows_winding(face, start);
    if (forward) {
      std::rotate_copy(face.begin(), start, face.end(), place);
    } else if (!face.empty()) {
      const auto rest = std::make_reverse_iterator(start + 1);
      place = std::copy(rest, face.rend(), place);
      std::copy(face.rbegin(), rest, place);
    }
    return {at, forward};
  }

  std::int32_t count(Face face) const { return list_[face.at()]; }

  Nodes nodes(Face face) const {
    return Nodes(list_).subspan(face.at() + 1, static_cast<std::size_t>(std::max(count(face), 0)));
  }

  bool equal(Face a, Face b) const {
    return count(a) == count(b) && std::ranges::equal(nodes(a), nodes(b));
  }

  /// Fewer nodes first, then by reading; equal readings in the order of the list.
  bool less(Face a, Face b) const {
    if (count(a) != count(b))
      return count(a) < count(b);
    const auto [in_a, in_b] = std::ranges::mismatch(nodes(a), nodes(b));
    return in_a == nodes(a).end() ? a.at() < b.at() : *in_a < *in_b;
  }

 private:
  static bool follows_winding(Nodes face, Nodes::iterator start) {
    if (face.empty())
      return false;
    const std::int32_t next = start + 1 == face.end() ? face.front() : start[1];
    const std::int32_t previous = start == face.begin() ? face.back() : start[-1];
    return next > previous;
  }

  std::vector<std::int32_t> list_;
};

/// All faces in the order of Readings::less(). They are dealt out by largest node first: few faces
/// share it, so little is left to sort.
std::vector<Face> sorted(const std::vector<Face> &faces, const Readings &readings,
                         std::size_t nodes) {
  const auto bucket = [&, last = std::max<std::size_t>(nodes, 1) - 1](Face face) {
    const Nodes reading = readings.nodes(face);
    const auto largest = static_cast<std::size_t>(reading.empty() ? 0 : std::max(reading[0], 0));
    return std::min(largest, last);
  };
  std::vector<std::size_t> ends(nodes + 1);
  for (const Face face : faces)
    ++ends[bucket(face)];
  std::size_t begin = 0;
  for (std::size_t &end : ends)
    begin += std::exchange(end, begin);

  std::vector<Face> order(faces.size());
  for (const Face face : faces)
    order[ends[bucket(face)]++] = face;
  auto first = order.begin();
  for (const std::size_t end : ends) {
    const auto last = order.begin() + static_cast<std::ptrdiff_t>(end);
    std::sort(first, last, [&](Face a, Face b) { return readings.less(a, b); });
    first = last;
  }
  const auto count = [&](Face face) { return readings.count(face); };
  if (!std::ranges::is_sorted(order, {}, count))
    std::ranges::stable_sort(order, {}, count);
  return order;
}

/// Calls `keep` with every face that stays: of two neighbours that read the same, both go where
/// their windings differ, else the first one goes.
template <class Keep>
void for_each_kept(const std::vector<Face> &order, const Readings &readings, Keep keep) {
  const auto shared = [&](std::size_t i) {
    return readings.equal(order[i], order[i + 1]) && order[i].forward() != order[i + 1].forward();
  };
  const std::size_t last = order.size() - 1;
  for (std::size_t i = 0; i < last; ++i) {
    if (!readings.equal(order[i], order[i + 1]))
      keep(order[i]);
    else if (shared(i))
      ++i;
  }
  // The last face looks back, also at one that has gone together with its predecessor.
  if (last == 0 || !shared(last - 1))
    keep(order[last]);
}

}  // namespace

bool strip_common_faces(QDL_Record &record) {
  if (record.interior_faces_stripped)
    return true;
  return guarded(kArea, false, [&] {
    std::vector<std::int32_t> &list = record.faces.list;
    constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::max();
    if (list.empty() || list.size() > kLongest)
      throw std::bad_alloc();  // reported like memory that could not be had
    Readings readings(list.size());
    std::vector<Face> faces;
    faces.reserve(static_cast<std::size_t>(record.faces.count));
    for_each_face_at(list, [&](std::size_t at, Nodes face) {
      faces.push_back(readings.add(at, list[at], face));
    });
    const std::vector<Face> order = sorted(faces, readings, record.nodes.size());

    // From here on nothing can fail.
    QDL_Info("Stripping interior faces\n");
    auto end = list.begin();
    record.faces.count = 0;
    for_each_kept(order, readings, [&](Face face) {
      const Nodes nodes = readings.nodes(face);
      *end++ = readings.count(face);
      end = std::ranges::copy(nodes, end).out;
      if (!face.forward() && !nodes.empty())
        std::reverse(end - static_cast<std::ptrdiff_t>(nodes.size()) + 1, end);
      ++record.faces.count;
    });
    list.erase(end, list.end());
    record.interior_faces_stripped = true;
    note_faces_changed(record);
    return true;
  });
}

}  // namespace qdlflex

void QDL_StripCommonFaces(QDL_Record *model) {
  qdlflex::with_model(model, qdlflex::kArea, false, qdlflex::strip_common_faces);
}
