#include "numerics/coupling_masses.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "modes/mode_store.h"
#include "record/lookups.h"
#include "support/vector_clones.h"

namespace qdlflex {
namespace {

/// Products are formed in tiles that stay in registers.
constexpr std::size_t kTileRows = 4;
constexpr std::size_t kTileColumns = 8;

std::size_t rounded_up(std::size_t count, std::size_t multiple) {
  return (count + multiple - 1) / multiple * multiple;
}

/// Components of some modes for a chunk of nodes: a row per component, a column per mode, with
/// columns of zeros up to whole tiles.
struct Panel {
  std::size_t columns;
  std::vector<double> values;

  Panel(std::size_t modes, std::size_t tile, std::size_t rows)
      : columns(rounded_up(modes, tile)), values(columns * rows) {}

  void set_column(std::size_t column, const double *components, std::size_t rows) {
    for (std::size_t row = 0; row < rows; ++row)
      values[row * columns + column] = components[row];
  }
};

/// tile += left^T right, for the tiles of columns that the pointers lead to.
QDLFLEX_VECTOR_CLONES
void add_tile(const double *left, std::size_t left_stride, const double *right,
              std::size_t right_stride, std::size_t rows, double *tile, std::size_t tile_stride) {
  double sums[kTileRows][kTileColumns];
  for (std::size_t i = 0; i < kTileRows; ++i)
    std::copy_n(tile + i * tile_stride, kTileColumns, sums[i]);
  for (std::size_t row = 0; row < rows; ++row, left += left_stride, right += right_stride) {
    for (std::size_t i = 0; i < kTileRows; ++i) {
      for (std::size_t j = 0; j < kTileColumns; ++j)
        sums[i][j] += left[i] * right[j];
    }
  }
  for (std::size_t i = 0; i < kTileRows; ++i)
    std::copy_n(sums[i], kTileColumns, tile + i * tile_stride);
}

void add_products(const Panel &left, const Panel &right, std::size_t rows,
                  std::vector<double> &products) {
  for (std::size_t j = 0; j < right.columns; j += kTileColumns) {
    for (std::size_t i = 0; i < left.columns; i += kTileRows) {
      add_tile(left.values.data() + i, left.columns, right.values.data() + j, right.columns, rows,
               products.data() + i * right.columns + j, right.columns);
    }
  }
}

/// Turns the components of a node into momenta.
void weigh(const Node &node, double *six) {
  for (std::size_t c = 0; c < 3; ++c)
    six[c] *= node.mass;
  const Vector3 rotation = {six[3], six[4], six[5]};
  const Matrix3 inertia = node.inertia ? symmetric_matrix(*node.inertia) : Matrix3{};
  for (std::size_t row = 0; row < 3; ++row) {
    six[3 + row] = inertia[3 * row] * rotation[0] + inertia[3 * row + 1] * rotation[1] +
                   inertia[3 * row + 2] * rotation[2];
  }
}

/// The modes with the numbers 1, 2, ... in chunks of nodes. Each is read once; one that fails has
/// zeros from then on, and products with it are void.
class NumberedModes {
 public:
  NumberedModes(QDL_Record &record, std::size_t modes) : record_(record) {
    for (std::size_t mode = 0; mode < modes; ++mode)
      indices_.push_back(find_mode(record, number_of(mode)));
    failed_.resize(modes);
  }

  bool failed(std::size_t mode) const { return failed_[mode]; }

  void read(std::size_t mode, std::int64_t first, std::int64_t rows, double *six) {
    if (failed_[mode] || read_rows(record_, kModeShapes, indices_[mode], first, rows, six))
      return;
    report_unreadable_mode(kModeShapes, number_of(mode));
    failed_[mode] = true;
  }

 private:
  static std::int32_t number_of(std::size_t mode) { return static_cast<std::int32_t>(mode) + 1; }

  QDL_Record &record_;
  std::vector<std::int32_t> indices_;
  std::vector<bool> failed_;
};

/// Rows for which the panels of all modes stay in the processor's cache.
std::int64_t chunk_nodes(std::size_t modes) {
  constexpr std::size_t kPanelBytes = std::size_t{8} << 20;
  const std::size_t node_bytes = modes * kComponents * sizeof(double);
  return static_cast<std::int64_t>(std::clamp<std::size_t>(kPanelBytes / node_bytes, 8, 512));
}

/// The wanted part of the padded products.
std::vector<double> without_padding(const std::vector<double> &products, std::size_t stride,
                                    const NumberedModes &modes, std::size_t normal,
                                    std::size_t additional) {
  std::vector<double> masses(normal * additional);
  for (std::size_t a = 0; a < normal; ++a) {
    for (std::size_t b = 0; b < additional; ++b) {
      const bool known = !modes.failed(a) && !modes.failed(normal + b);
      masses[a * additional + b] = known ? products[a * stride + b] : 0.0;
    }
  }
  return masses;
}

}  // namespace

std::vector<double> coupling_masses(QDL_Record &record, std::int32_t normal_modes,
                                    std::int32_t additional_modes) {
  const auto normal = static_cast<std::size_t>(normal_modes);
  const auto additional = static_cast<std::size_t>(additional_modes);
  const std::int64_t nodes = mode_node_count(record, kModeShapes);
  const std::int64_t most_nodes = chunk_nodes(normal + additional);
  std::vector<double> six(static_cast<std::size_t>(most_nodes * kComponents));
  Panel momenta(normal, kTileRows, six.size());
  Panel shapes(additional, kTileColumns, six.size());
  std::vector<double> products(momenta.columns * shapes.columns);

  NumberedModes modes(record, normal + additional);
  for (std::int64_t first = 0; first < nodes; first += most_nodes) {
    const std::int64_t count = std::min(nodes - first, most_nodes);
    const auto rows = static_cast<std::size_t>(count * kComponents);
    for (std::size_t a = 0; a < normal; ++a) {
      modes.read(a, first, count, six.data());
      for (std::int64_t i = 0; i < count; ++i)
        weigh(record.nodes[static_cast<std::size_t>(first + i)], six.data() + i * kComponents);
      momenta.set_column(a, six.data(), rows);
    }
    for (std::size_t b = 0; b < additional; ++b) {
      modes.read(normal + b, first, count, six.data());
      shapes.set_column(b, six.data(), rows);
    }
    add_products(momenta, shapes, rows, products);
  }
  return without_padding(products, shapes.columns, modes, normal, additional);
}

}  // namespace qdlflex
