#include "mode_pairs.h"

#include <numeric>
#include <span>

#include "body_measures.h"
#include "mode_fields.h"

namespace qdlflex::cli {

namespace {

// Of modes that are orthogonal to one another only one can have more in common with another mode.
constexpr double kLeastAssurance = 0.5;
// Further apart than single precision moves a mode, nearer than two modes of one body are.
constexpr double kParallel = 1e-10;
constexpr size_t kSlabBytes = size_t{64} << 20;

constexpr auto kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// The translations of some modes at the common nodes, mode after mode.
class Slab {
 public:
  Slab(QDL_Record *record, const std::vector<int32_t> &places) : record_(record), places_(places) {}

  size_t capacity() const {
    return std::max<size_t>(1, kSlabBytes / (sizeof(double) * std::max<size_t>(length(), 1)));
  }

  void load(std::span<const int32_t> modes) {
    values_.clear();
    squares_.clear();
    values_.reserve(modes.size() * length());
    for (const int32_t mode : modes) {
      const std::vector<double> half = half_mode_at(record_, mode, QDL_MODE_SHAPE, 0, places_);
      squares_.push_back(dot(half.data(), half.data(), half.size()));
      values_.insert(values_.end(), half.begin(), half.end());
    }
  }

  size_t length() const { return 3 * places_.size(); }
  const double *mode(size_t k) const { return values_.data() + k * length(); }
  double square(size_t k) const { return squares_[k]; }

 private:
  QDL_Record *record_;
  const std::vector<int32_t> &places_;
  std::vector<double> values_;
  std::vector<double> squares_;
};

/// The modal assurance criterion of every mode of one slab with every mode of the other, row by
/// row. Short pieces of the vectors stay in the processor's cache meanwhile.
std::vector<double> assurances(const Slab &a, size_t rows, const Slab &b, size_t columns) {
  constexpr size_t kPiece = 512;
  std::vector<double> products(rows * columns);
  for (size_t first = 0; first < a.length(); first += kPiece) {
    const size_t count = std::min(kPiece, a.length() - first);
    for (size_t i = 0; i < rows; ++i) {
      for (size_t k = 0; k < columns; ++k) {
        products[i * columns + k] += dot(a.mode(i) + first, b.mode(k) + first, count);
      }
    }
  }
  for (size_t i = 0; i < rows; ++i) {
    for (size_t k = 0; k < columns; ++k) {
      double &entry = products[i * columns + k];
      entry = modal_assurance(entry, a.square(i), b.square(k));
    }
  }
  return products;
}

struct Candidate {
  double mac;
  int32_t a;
  int32_t b;
};

/// The modes of both bodies that have no counterpart yet.
class OpenModes {
 public:
  explicit OpenModes(const BodyPair &bodies)
      : bodies_(bodies), shapes_(kind_nodes(bodies, QDL_MODE_SHAPE)) {
    a_.resize(static_cast<size_t>(QDL_ModeCount(bodies.a)));
    b_.resize(static_cast<size_t>(QDL_ModeCount(bodies.b)));
    std::iota(a_.begin(), a_.end(), 0);
    std::iota(b_.begin(), b_.end(), 0);
  }

  /// Most bodies differ little, so that most modes need no search.
  void pair_parallel_in_place() {
    std::vector<Candidate> found;
    Slab a(bodies_.a, shapes_.a);
    Slab b(bodies_.b, shapes_.b);
    for (size_t mode = 0; mode < std::min(a_.size(), b_.size()); ++mode) {
      a.load({&a_[mode], 1});
      b.load({&b_[mode], 1});
      const double mac = assurances(a, 1, b, 1)[0];
      if (1.0 - mac <= kParallel) {
        found.push_back({mac, a_[mode], b_[mode]});
      }
    }
    take(found);
  }

  /// The most alike first.
  void pair_by_assurance() {
    std::vector<Candidate> found = alike();
    std::ranges::stable_sort(found, std::ranges::greater(), &Candidate::mac);
    take(found);
  }

  void pair_still_by_number() {
    std::vector<Candidate> found;
    for (const int32_t mode : a_) {
      const int32_t other = QDL_ModeIndex(bodies_.b, QDL_ModeNumber(bodies_.a, mode));
      if (std::ranges::binary_search(b_, other) && !moves(mode, other)) {
        found.push_back({kNoNumber, mode, other});
      }
    }
    take(found);
  }

  std::vector<ModePair> pairs() const {
    std::vector<ModePair> sorted = pairs_;
    std::ranges::sort(sorted, {}, &ModePair::a);
    return sorted;
  }

 private:
  /// Pairs the candidates in their order, each mode once.
  void take(const std::vector<Candidate> &candidates) {
    for (const auto &[mac, a, b] : candidates) {
      const auto in_a = std::ranges::lower_bound(a_, a);
      const auto in_b = std::ranges::lower_bound(b_, b);
      if (in_a != a_.end() && *in_a == a && in_b != b_.end() && *in_b == b) {
        pairs_.push_back({a, b, std::isnan(mac) ? std::nullopt : std::optional(mac)});
        a_.erase(in_a);
        b_.erase(in_b);
      }
    }
  }

  std::vector<Candidate> alike() const {
    std::vector<Candidate> found;
    Slab a(bodies_.a, shapes_.a);
    Slab b(bodies_.b, shapes_.b);
    for (size_t i = 0; i < a_.size(); i += a.capacity()) {
      const auto rows = std::span(a_).subspan(i, std::min(a.capacity(), a_.size() - i));
      a.load(rows);
      for (size_t k = 0; k < b_.size(); k += b.capacity()) {
        const auto columns = std::span(b_).subspan(k, std::min(b.capacity(), b_.size() - k));
        b.load(columns);
        add_alike(a, rows, b, columns, found);
      }
    }
    return found;
  }

  /// The modes that the slabs hold now.
  static void add_alike(const Slab &a, std::span<const int32_t> rows, const Slab &b,
                        std::span<const int32_t> columns, std::vector<Candidate> &found) {
    const std::vector<double> macs = assurances(a, rows.size(), b, columns.size());
    for (size_t at = 0; at < macs.size(); ++at) {
      if (macs[at] > kLeastAssurance) {
        found.push_back({macs[at], rows[at / columns.size()], columns[at % columns.size()]});
      }
    }
  }

  bool moves(int32_t a, int32_t b) const {
    const auto half_a = half_mode_at(bodies_.a, a, QDL_MODE_SHAPE, 0, shapes_.a);
    const auto half_b = half_mode_at(bodies_.b, b, QDL_MODE_SHAPE, 0, shapes_.b);
    const auto square = [](const std::vector<double> &v) {
      return dot(v.data(), v.data(), v.size());
    };
    return square(half_a) > 0.0 && square(half_b) > 0.0;
  }

  const BodyPair &bodies_;
  KindNodes shapes_;
  std::vector<int32_t> a_;  // ascending
  std::vector<int32_t> b_;
  std::vector<ModePair> pairs_;
};

}  // namespace

KindNodes kind_nodes(const BodyPair &bodies, int32_t kind) {
  KindNodes nodes{kind, {}, {}, {}};
  const auto place = [kind](QDL_Record *record, int32_t id) {
    const int32_t found = QDL_ModeNodeIndex(record, kind, id);
    return found < QDL_ModeNodeCount(record, kind) ? found : -1;
  };
  for (const NodePair &node : bodies.nodes) {
    const int32_t a = place(bodies.a, node.id);
    const int32_t b = place(bodies.b, node.id);
    if (a >= 0 || b >= 0) {
      nodes.ids.push_back(node.id);
      nodes.a.push_back(a);
      nodes.b.push_back(b);
    }
  }
  return nodes;
}

std::vector<double> half_mode_at(QDL_Record *record, int32_t mode_index, int32_t kind, int32_t part,
                                 const std::vector<int32_t> &places) {
  std::vector<double> values(3 * places.size());
  if (QDL_ModeExist(record, kind) == 0) {
    return values;
  }
  std::vector<double> all;
  read_half_mode(record, QDL_ModeNumber(record, mode_index), kind, part, all);
  for (size_t k = 0; k < places.size(); ++k) {
    if (places[k] >= 0) {
      std::copy_n(all.begin() + 3 * static_cast<ptrdiff_t>(places[k]), 3,
                  values.begin() + 3 * static_cast<ptrdiff_t>(k));
    }
  }
  return values;
}

double modal_assurance(double ab, double aa, double bb) {
  // Each factor by itself, as squares of large values have no number.
  return (ab / aa) * (ab / bb);
}

std::vector<ModePair> pair_modes(const BodyPair &bodies) {
  OpenModes modes(bodies);
  modes.pair_parallel_in_place();
  modes.pair_by_assurance();
  modes.pair_still_by_number();
  return modes.pairs();
}

std::vector<int32_t> lonely_modes(const BodyPair &bodies, QDL_Record *record,
                                  int32_t ModePair::*index) {
  std::vector<bool> paired(static_cast<size_t>(QDL_ModeCount(record)));
  for (const ModePair &mode : bodies.modes) {
    paired[static_cast<size_t>(mode.*index)] = true;
  }
  std::vector<int32_t> numbers;
  for (size_t mode = 0; mode < paired.size(); ++mode) {
    if (!paired[mode]) {
      numbers.push_back(QDL_ModeNumber(record, static_cast<int32_t>(mode)));
    }
  }
  return numbers;
}

}  // namespace qdlflex::cli
