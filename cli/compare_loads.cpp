// Loads of two bodies.

#include <array>
#include <tuple>

#include "body_pair.h"
#include "modal_matrix.h"

namespace qdlflex::cli {

namespace {

/// Takes over an array of the library.
std::vector<double> owned(double *array, int32_t count) {
  const LibraryArray<double> owner(array);
  return {array, array + count};
}

struct Load {
  std::vector<double> values;
  bool on_axes;
};

/// Loads on the axes of rigid motion begin with six values that belong to no modes.
void compare_load(BlockDifference &block, const BodyPair &bodies, const Load &of_a,
                  const Load &of_b, const std::string &name) {
  block.both(of_a.on_axes, of_b.on_axes, name + " on principal axes");
  if (of_a.on_axes != of_b.on_axes) {
    return;
  }
  const std::vector<double> &a = of_a.values;
  const std::vector<double> &b = of_b.values;
  if (!of_a.on_axes) {
    compare_modal_rows(block, bodies, a, b, 1, name);
    return;
  }
  constexpr size_t kRigidMotions = 6;
  const double largest = largest_magnitude(a);
  for (size_t k = 0; k < std::min({a.size(), b.size(), kRigidMotions}); ++k) {
    block.compare(a[k], b[k], largest,
                  [&] { return name + ", rigid motion " + std::to_string(k + 1); });
  }
  for (const ModePair &mode : bodies.modes) {
    const auto in_a = static_cast<size_t>(mode.a);
    const auto in_b = static_cast<size_t>(mode.b);
    if (in_a >= kRigidMotions && in_b >= kRigidMotions) {
      block.compare(a[in_a], b[in_b] / mode.factor, largest,
                    [&] { return name + ", " + mode_name(bodies, mode); });
    }
  }
}

BlockDifference compare_preload(const BodyPair &bodies) {
  BlockDifference block = bodies.block("modal preload");
  if (block.both(QDL_ModalPreloadExist(bodies.a) != 0, QDL_ModalPreloadExist(bodies.b) != 0)) {
    const auto read = [](QDL_Record *record) {
      int32_t count = 0;
      double *const values = QDL_GetModalPreload(record, &count);
      return Load{owned(values, count), QDL_ModalPreloadProcessed(record) != 0};
    };
    compare_load(block, bodies, read(bodies.a), read(bodies.b), "preload");
  }
  return block;
}

std::string label_of(QDL_Record *record, int32_t load_case) {
  std::array<char, 257> label{};
  QDL_GetModalLoadCaseLabel(record, load_case, label.data());
  return label.data();
}

BlockDifference compare_modal_loads(const BodyPair &bodies) {
  BlockDifference block = bodies.block("modal loads");
  const int32_t cases_a = QDL_GetModalLoadCaseCount(bodies.a);
  const int32_t cases_b = QDL_GetModalLoadCaseCount(bodies.b);
  block.compare_counts("load cases", cases_a, cases_b);
  for (int32_t load_case = 0; load_case < std::min(cases_a, cases_b); ++load_case) {
    const std::string name = "load case " + std::to_string(load_case + 1);
    block.compare_texts(name, label_of(bodies.a, load_case), label_of(bodies.b, load_case));
    const auto read = [load_case](QDL_Record *record) {
      int32_t count = 0;
      double *const values = QDL_GetModalLoad(record, load_case, &count);
      return Load{owned(values, count), QDL_ModalLoadProcessed(record, load_case) != 0};
    };
    compare_load(block, bodies, read(bodies.a), read(bodies.b), name);
  }
  return block;
}

using NodalLoad = std::tuple<int32_t, int32_t, double>;  // node, coordinate, value

std::vector<NodalLoad> read_nodal_loads(QDL_Record *record, int32_t load_case) {
  const int32_t count = QDL_GetModalLoadNodalCount(record, load_case);
  std::vector<NodalLoad> loads;
  loads.reserve(static_cast<size_t>(count));
  for (int32_t entry = 0; entry < count; ++entry) {
    loads.emplace_back(QDL_GetModalLoadNodalNode(record, load_case, entry),
                       QDL_GetModalLoadNodalCoord(record, load_case, entry),
                       QDL_GetModalLoadNodalLoad(record, load_case, entry));
  }
  std::ranges::sort(loads);
  return loads;
}

BlockDifference compare_nodal_loads(const BodyPair &bodies) {
  BlockDifference block = bodies.block("nodal modal loads");
  const int32_t cases_a = QDL_GetModalLoadNodalCaseCount(bodies.a);
  const int32_t cases_b = QDL_GetModalLoadNodalCaseCount(bodies.b);
  block.compare_counts("load cases", cases_a, cases_b);
  for (int32_t load_case = 0; load_case < std::min(cases_a, cases_b); ++load_case) {
    const std::string name = "load case " + std::to_string(load_case + 1);
    const std::vector<NodalLoad> a = read_nodal_loads(bodies.a, load_case);
    const std::vector<NodalLoad> b = read_nodal_loads(bodies.b, load_case);
    const auto same_place = [](const NodalLoad &one, const NodalLoad &other) {
      return std::get<0>(one) == std::get<0>(other) && std::get<1>(one) == std::get<1>(other);
    };
    if (!std::ranges::equal(a, b, same_place)) {
      block.remark(name + ": loads at other nodes or coordinates");
      continue;
    }
    for (size_t k = 0; k < a.size(); ++k) {
      block.compare(std::get<2>(a[k]), std::get<2>(b[k]), 0.0, [&] {
        return name + ", node " + std::to_string(std::get<0>(a[k])) + ", coordinate " +
               std::to_string(std::get<1>(a[k]));
      });
    }
  }
  return block;
}

}  // namespace

void compare_loads(const BodyPair &bodies, BlockDifferences &blocks) {
  blocks.push_back(compare_preload(bodies));
  blocks.push_back(compare_modal_loads(bodies));
  blocks.push_back(compare_nodal_loads(bodies));
}

}  // namespace qdlflex::cli
