// Mode data of two bodies, through the pairs of modes that are the same but for order, sign and
// scale.

#include <array>
#include <cstdio>
#include <memory>
#include <utility>

#include "body_measures.h"
#include "body_pair.h"
#include "mode_pairs.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

// Index of a block.
constexpr int32_t kFirstPreVectors = 30;

using Names = std::array<const char *, 6>;
constexpr Names kMotions = {"x", "y", "z", "rotation x", "rotation y", "rotation z"};
constexpr Names kTensor = {"xx", "yy", "zz", "xy", "xz", "yz"};

using Halves = std::array<std::vector<double>, 2>;

Halves read_halves(QDL_Record *record, int32_t mode, int32_t kind,
                   const std::vector<int32_t> &places) {
  return {half_mode_at(record, mode, kind, 0, places), half_mode_at(record, mode, kind, 1, places)};
}

/// The largest values that each half is measured by. The halves of a motion have units of their
/// own, those of a tensor have one.
std::array<double, 2> groups(const Halves &halves, int32_t kind) {
  const double first = largest_magnitude(halves[0]);
  const double second = largest_magnitude(halves[1]);
  return kind == QDL_MODE_SHAPE ? std::array{first, second}
                                : std::array{std::max(first, second), std::max(first, second)};
}

/// Compares mode values of A with those of B divided by the factor.
void compare_halves(BlockDifference &block, const Halves &a, const Halves &b, double factor,
                    const KindNodes &nodes, const std::string &mode) {
  const std::array<double, 2> largest = groups(a, nodes.kind);
  const Names &names = nodes.kind == QDL_MODE_SHAPE ? kMotions : kTensor;
  for (size_t part = 0; part < 2; ++part) {
    for (size_t k = 0; k < a[part].size(); ++k) {
      block.compare(a[part][k], b[part][k] / factor, largest[part], [&] {
        return mode + ", node " + std::to_string(nodes.ids[k / 3]) + ", " + names[3 * part + k % 3];
      });
    }
  }
}

/// How much of a pair of modes differs when B's is divided by the factor.
std::pair<int64_t, double> misfit(const BodyPair &bodies, const Halves &a, const Halves &b,
                                  double factor, const KindNodes &nodes) {
  BlockDifference block = bodies.block("");
  compare_halves(block, a, b, factor, nodes, "");
  return {block.differing(), block.largest_relative().difference};
}

/// The factor from A's mode to B's: 1 or -1, or the least-squares factor where that fits better.
double find_factor(const BodyPair &bodies, const Halves &a, const Halves &b,
                   const KindNodes &nodes) {
  double ab = 0.0;
  double aa = 0.0;
  for (size_t part = 0; part < 2 && aa == 0.0; ++part) {
    ab = dot(a[part].data(), b[part].data(), a[part].size());
    aa = dot(a[part].data(), a[part].data(), a[part].size());
  }
  const double scale = ab / aa;
  const double sign = scale < 0.0 ? -1.0 : 1.0;
  if (!std::isfinite(scale) || scale == 0.0 || std::abs(scale - sign) <= bodies.tolerance) {
    return sign;
  }
  return misfit(bodies, a, b, scale, nodes) < misfit(bodies, a, b, sign, nodes) ? scale : sign;
}

BlockDifference compare_shapes(BodyPair &bodies) {
  BlockDifference block = bodies.block("mode shapes");
  if (!block.both(QDL_ModeExist(bodies.a, QDL_MODE_SHAPE) != 0,
                  QDL_ModeExist(bodies.b, QDL_MODE_SHAPE) != 0)) {
    return block;
  }
  const KindNodes nodes = kind_nodes(bodies, QDL_MODE_SHAPE);
  for (ModePair &mode : bodies.modes) {
    const Halves a = read_halves(bodies.a, mode.a, QDL_MODE_SHAPE, nodes.a);
    const Halves b = read_halves(bodies.b, mode.b, QDL_MODE_SHAPE, nodes.b);
    mode.factor = find_factor(bodies, a, b, nodes);
    const int64_t before = block.differing();
    compare_halves(block, a, b, mode.factor, nodes, mode_name(bodies, mode));
    mode.same_shape = block.differing() == before;
  }
  return block;
}

BlockDifference compare_tensors(const BodyPair &bodies, int32_t kind, const char *name) {
  BlockDifference block = bodies.block(name);
  if (!block.both(QDL_ModeExist(bodies.a, kind) != 0, QDL_ModeExist(bodies.b, kind) != 0)) {
    return block;
  }
  const KindNodes nodes = kind_nodes(bodies, kind);
  for (const ModePair &mode : bodies.modes) {
    compare_halves(block, read_halves(bodies.a, mode.a, kind, nodes.a),
                   read_halves(bodies.b, mode.b, kind, nodes.b), mode.factor, nodes,
                   mode_name(bodies, mode));
  }
  return block;
}

BlockDifference compare_eigenvalues(const BodyPair &bodies) {
  BlockDifference block = bodies.block("eigenvalues");
  constexpr std::array<const char *, 5> kNames = {"frequency", "eigenvalue", "circular frequency",
                                                  "generalized mass", "generalized stiffness"};
  using Values = std::array<double, 5>;
  const auto read = [](QDL_Record *record, int32_t mode, Values &v) {
    return QDL_Eigenvalue(record, QDL_ModeNumber(record, mode), &v[1], &v[0], &v[2], &v[3],
                          &v[4]) != 0;
  };
  for (const ModePair &mode : bodies.modes) {
    const std::string name = mode_name(bodies, mode);
    Values a{};
    Values b{};
    if (!block.both(read(bodies.a, mode.a, a), read(bodies.b, mode.b, b), name + ", frequency")) {
      continue;
    }
    const double square = mode.factor * mode.factor;
    b[3] /= square;
    b[4] /= square;
    for (size_t k = 0; k < a.size(); ++k) {
      block.compare(a[k], b[k], 0.0, [&] { return name + ", " + kNames[k]; });
    }
  }
  return block;
}

BlockDifference compare_statistics(const BodyPair &bodies) {
  BlockDifference block = bodies.block("modal statistics");
  if (QDL_ModalStatisticsExist(bodies.a) == 0 || QDL_ModalStatisticsExist(bodies.b) == 0) {
    return block;  // what is missing is found from the modes
  }
  struct Largest {
    const char *name;
    int32_t kind;
    int32_t (*get)(QDL_Record *, int32_t, int32_t *, double *);
  };
  constexpr std::array<Largest, 4> kLargest = {
      {{"displacement", QDL_MODE_SHAPE, QDL_GetMaxModeDisplacement},
       {"rotation", QDL_MODE_SHAPE, QDL_GetMaxModeRotation},
       {"von Mises stress", QDL_MODE_STRESS, QDL_GetMaxVonMisesStress},
       {"von Mises strain", QDL_MODE_STRAIN, QDL_GetMaxVonMisesStrain}}};
  for (const ModePair &mode : bodies.modes) {
    for (const Largest &largest : kLargest) {
      if (QDL_ModeExist(bodies.a, largest.kind) == 0 ||
          QDL_ModeExist(bodies.b, largest.kind) == 0) {
        continue;
      }
      double a = 0.0;
      double b = 0.0;
      largest.get(bodies.a, QDL_ModeNumber(bodies.a, mode.a), nullptr, &a);
      largest.get(bodies.b, QDL_ModeNumber(bodies.b, mode.b), nullptr, &b);
      block.compare(a, b / std::abs(mode.factor), 0.0,
                    [&] { return mode_name(bodies, mode) + ", largest " + largest.name; });
    }
  }
  return block;
}

struct PreVector {
  int32_t node;
  std::array<double, 6> values;
};

/// The interface gives these only as the library's report, ten digits each.
std::vector<PreVector> read_pre_vectors(QDL_Record *record, int32_t block_index) {
  char *text = nullptr;
  size_t size = 0;
  FILE *const stream = open_memstream(&text, &size);
  if (stream == nullptr) {
    throw std::bad_alloc();
  }
  QDL_Contents(record, block_index + 1, stream);
  std::fclose(stream);
  const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
  std::vector<PreVector> vectors;
  for (const std::string_view line : split({text, size}, '\n')) {
    const std::vector<std::string_view> fields = words(line);
    const auto node = fields.size() == 7 ? parse_integer(fields[0]) : std::nullopt;
    if (!node) {
      continue;
    }
    PreVector vector{*node, {}};
    for (size_t k = 0; k < 6; ++k) {
      vector.values[k] =
          parse_real(fields[k + 1]).value_or(std::numeric_limits<double>::quiet_NaN());
    }
    vectors.push_back(vector);
  }
  std::ranges::sort(vectors, {}, &PreVector::node);
  return vectors;
}

/// Nodes that only one body has are told with the nodes.
BlockDifference compare_pre_vectors_of(const BodyPair &bodies, int32_t index, const char *name) {
  BlockDifference block = bodies.block(name);
  if (!block.both(QDL_Exists(bodies.a, index) != 0, QDL_Exists(bodies.b, index) != 0)) {
    return block;
  }
  const std::vector<PreVector> all_a = read_pre_vectors(bodies.a, index);
  const std::vector<PreVector> all_b = read_pre_vectors(bodies.b, index);
  const auto at = [](const std::vector<PreVector> &all, int32_t node) {
    const auto found = std::ranges::lower_bound(all, node, {}, &PreVector::node);
    return found != all.end() && found->node == node ? found->values : std::array<double, 6>{};
  };
  double largest = 0.0;
  for (const PreVector &vector : all_a) {
    largest = std::max(largest, largest_magnitude({vector.values.begin(), vector.values.end()}));
  }
  for (const NodePair &node : bodies.nodes) {
    const std::array<double, 6> a = at(all_a, node.id);
    const std::array<double, 6> b = at(all_b, node.id);
    for (size_t k = 0; k < 6; ++k) {
      block.compare(a[k], b[k], largest,
                    [&] { return "node " + std::to_string(node.id) + ", " + kTensor[k]; });
    }
  }
  return block;
}

BlockDifference modes_without_counterpart(const BodyPair &bodies) {
  BlockDifference block = bodies.block("modes");
  const auto remark = [&](const std::vector<int32_t> &numbers, const char *text) {
    Listing listing;
    for (const int32_t number : numbers) {
      listing.add(std::to_string(number));
    }
    if (listing.count() > 0) {
      block.remark(listing.text(text));
    }
  };
  remark(lonely_modes(bodies, bodies.a, &ModePair::a), "of A without counterpart");
  remark(lonely_modes(bodies, bodies.b, &ModePair::b), "of B without counterpart");
  return block;
}

}  // namespace

std::string mode_name(const BodyPair &bodies, const ModePair &mode) {
  return "mode " + std::to_string(QDL_ModeNumber(bodies.a, mode.a));
}

void compare_mode_data(BodyPair &bodies, BlockDifferences &blocks) {
  bodies.modes = pair_modes(bodies);
  blocks.push_back(modes_without_counterpart(bodies));
  const BlockDifference shapes = compare_shapes(bodies);
  blocks.push_back(compare_eigenvalues(bodies));
  blocks.push_back(shapes);
  blocks.push_back(compare_tensors(bodies, QDL_MODE_STRESS, "modal stress"));
  blocks.push_back(compare_tensors(bodies, QDL_MODE_STRAIN, "modal strain"));
  blocks.push_back(compare_statistics(bodies));
}

void compare_pre_vectors(const BodyPair &bodies, BlockDifferences &blocks) {
  blocks.push_back(compare_pre_vectors_of(bodies, kFirstPreVectors, "nodal pre-stress"));
  blocks.push_back(compare_pre_vectors_of(bodies, kFirstPreVectors + 1, "nodal pre-strain"));
}

}  // namespace qdlflex::cli
