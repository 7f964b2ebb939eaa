#include "numerics/modal_invariants.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>
#include <vector>

#include "numerics/mode_chunks.h"
#include "numerics/mode_products.h"
#include "record/invariant_layout.h"

namespace qdlflex {
namespace {

/// 5 and 9 are only derived together.
bool has_partner(int number) {
  return number == 5 || number == 9;
}

/// Zeros in the shape of an invariant.
struct Values {
  InvariantShape shape;
  std::vector<double> values;

  Values(const QDL_Record &record, int number)
      : shape(invariant_shape(number, mode_count(record))), values(shape.size()) {}

  double &at(std::size_t i, std::size_t j, std::size_t k) { return values[shape.offset(i, j, k)]; }
};

void keep(QDL_Record &record, int number, Values &derived) noexcept {
  InvariantSlot &slot = slot_of(record, number);
  slot.origin = Origin::kDerived;
  slot.modes = mode_count(record);
  slot.values = std::move(derived.values);
}

// Invariants 3, 4 and 8

/// Sums for the four modes of a panel. The body's coordinates take the place of a mode's vectors.
struct BodySums {
  LaneSums<3> moments{};
  std::array<LaneSums<3>, 2> cross_products{};  // the second one is not used
  LaneSums<9> tilde_products{};
};

void add_chunk(const ModeChunks &chunk, std::vector<BodySums> &sums) {
  std::array<LaneVectors, ModeChunks::kBlockRows> moments{};
  for (std::size_t block = 0; block < chunk.blocks(); ++block) {
    const std::size_t rows = chunk.block_rows(block);
    const double *masses = chunk.masses(block);
    const LaneVectors *positions = chunk.positions(block);
    scale_vectors(masses, positions, rows, moments.data());
    for (std::size_t panel = 0; panel < chunk.panels(); ++panel) {
      const LaneVectors *vectors = chunk.panel(block, panel);
      BodySums &sum = sums[panel];
      add_moments(masses, vectors, rows, sum.moments);
      add_cross_products(masses, positions, 0, vectors, rows, sum.cross_products.data());
      add_tilde_products(moments.data(), 0, vectors, rows, sum.tilde_products);
    }
  }
}

void derive_3_4_8(QDL_Record &record) {
  Values third(record, 3);
  Values fourth(record, 4);
  Values eighth(record, 8);
  ModeChunks chunk(record);
  std::vector<BodySums> sums(chunk.panels());
  while (chunk.next())
    add_chunk(chunk, sums);

  for (std::size_t mode = 0; mode < chunk.modes(); ++mode) {
    if (chunk.is_lost(mode))
      continue;
    const BodySums &sum = sums[mode / kLanes];
    const std::size_t lane = mode % kLanes;
    for (std::size_t c = 0; c < 3; ++c) {
      third.at(0, c, mode) = sum.moments.of[c][lane];
      fourth.at(0, c, mode) = sum.cross_products[0].of[c][lane] + chunk.rotational_moment(mode)[c];
    }
    for (std::size_t entry = 0; entry < 9; ++entry)
      eighth.at(0, mode, entry) = sum.tilde_products.of[entry][lane];
  }
  for (const auto &[number, derived] :
       {std::pair{3, &third}, std::pair{4, &fourth}, std::pair{8, &eighth}}) {
    if (!is_known(record, number))
      keep(record, number, *derived);
  }
}

// Invariants 5 and 9

/// Sums for pairs of two neighbouring modes i with the four modes k of a panel, none of them before
/// the panel of i.
struct PairSums {
  std::array<LaneSums<3>, 2> cross_products{};
  std::array<LaneSums<9>, 2> tilde_products{};
};

constexpr std::size_t kPairsPerPanel = kLanes / 2;

/// Calls `body(mode i, panel of k)` for all pair sums in the order in which they are stored.
template <class Body>
void for_each_pair(std::size_t panels, Body body) {
  for (std::size_t i = 0; i < panels * kLanes; i += 2) {
    for (std::size_t panel = i / kLanes; panel < panels; ++panel)
      body(i, panel);
  }
}

void add_chunk(const ModeChunks &chunk, std::vector<PairSums> &sums) {
  std::array<LaneVectors, ModeChunks::kBlockRows> scaled{};
  for (std::size_t block = 0; block < chunk.blocks(); ++block) {
    const std::size_t rows = chunk.block_rows(block);
    const double *masses = chunk.masses(block);
    auto sum = sums.begin();
    for_each_pair(chunk.panels(), [&](std::size_t i, std::size_t panel) {
      const std::size_t lane = i % kLanes;
      const LaneVectors *of_i = chunk.panel(block, i / kLanes);
      const LaneVectors *of_k = chunk.panel(block, panel);
      if (lane == 0 && panel == i / kLanes)
        scale_vectors(masses, of_i, rows, scaled.data());
      add_cross_products(masses, of_i, lane, of_k, rows, sum->cross_products.data());
      add_tilde_products(scaled.data(), lane, of_k, rows, sum->tilde_products[0]);
      add_tilde_products(scaled.data(), lane + 1, of_k, rows, sum->tilde_products[1]);
      ++sum;
    });
  }
}

/// A pair's values and, for the pair in reverse order, their negative and their transpose. Of a
/// mode with itself invariant 5 is zero and invariant 9 made exactly symmetric.
void store_pair(std::size_t i, std::size_t k, const PairSums &sum, Values &fifth, Values &ninth) {
  const LaneSums<3> &cross = sum.cross_products[i % 2];
  const LaneSums<9> &tilde = sum.tilde_products[i % 2];
  const std::size_t lane = k % kLanes;
  for (std::size_t c = 0; c < 3; ++c) {
    fifth.at(k, c, i) = -cross.of[c][lane];
    fifth.at(i, c, k) = cross.of[c][lane];
  }
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const double value = tilde.of[3 * row + column][lane];
      ninth.at(i, k, 3 * row + column) = value;
      ninth.at(k, i, 3 * column + row) = value;
    }
  }
}

void derive_5_9(QDL_Record &record) {
  Values fifth(record, 5);
  Values ninth(record, 9);
  ModeChunks chunk(record);
  const std::size_t panels = chunk.panels();
  std::vector<PairSums> sums(kPairsPerPanel * (panels * (panels + 1) / 2));
  while (chunk.next())
    add_chunk(chunk, sums);

  auto sum = sums.cbegin();
  for_each_pair(panels, [&](std::size_t first_i, std::size_t panel) {
    for (const std::size_t i : {first_i, first_i + 1}) {
      const std::size_t end = std::min((panel + 1) * kLanes, chunk.modes());
      for (std::size_t k = std::max(i, panel * kLanes); k < end; ++k) {
        if (!chunk.is_lost(i) && !chunk.is_lost(k))
          store_pair(i, k, *sum, fifth, ninth);
      }
    }
    ++sum;
  });
  keep(record, 5, fifth);
  keep(record, 9, ninth);
}

void fill_with_zeros(QDL_Record &record, int number) {
  Values zeros(record, number);
  const int partner = number == 5 ? 9 : 5;
  // Nodal masses without any node replace both by nothing.
  if (has_partner(number) && (present(record, Block::kNodalMasses) || !is_known(record, partner))) {
    Values partners(record, partner);
    keep(record, partner, partners);
  }
  keep(record, number, zeros);
}

}  // namespace

void derive_modal_invariant(QDL_Record &record, int number) {
  if (record.mode_numbers.empty())
    return;
  if (number == 8 && record.nodes.empty())
    throw std::bad_alloc();
  if (!present(record, Block::kNodalMasses) || record.nodes.empty())
    fill_with_zeros(record, number);
  else if (has_partner(number))
    derive_5_9(record);
  else
    derive_3_4_8(record);
}

}  // namespace qdlflex
