// Filling a model through the setters, and changing its units.

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <unordered_map>
#include <vector>

#include "bench/sample.h"

namespace qdlflex::bench {
namespace {

std::vector<std::int32_t> shuffled(std::int32_t count) {
  std::vector<std::int32_t> ids(static_cast<std::size_t>(count));
  std::iota(ids.begin(), ids.end(), 1);
  std::mt19937 random(7);
  std::shuffle(ids.begin(), ids.end(), random);
  return ids;
}

constexpr std::int32_t kNodes = 20'000;
constexpr std::int32_t kModes = 100;
constexpr std::size_t kModeBytes = std::size_t{48} * kNodes;

void write_sequentially(const std::string &path) {
  const std::vector<char> mode(kModeBytes, 'x');
  std::FILE *file = std::fopen(path.c_str(), "wb");
  for (int i = 0; i < kModes; ++i) {
    require(std::fwrite(mode.data(), 1, mode.size(), file) == mode.size(), "a plain write");
  }
  std::fflush(file);
  std::fclose(file);
}

void set_vector(QDL_Record *model, std::int32_t mode, std::int32_t node) {
  const double six[6] = {1.0 * mode, 2.0, 3.0, 4.0, 5.0, 6.0};
  QDL_SetModeVec(model, mode, node, QDL_MODE_SHAPE, six);
}

template <class SetAll>
void set_beside_sequential_write(benchmark::State &state, const char *job, SetAll set_all) {
  const Folder folder;
  const std::string plain = folder.file("plain.bin");
  const Model model(QDL_Create(kNodes, kModes));
  set_nodes(model, kNodes);
  compare(
      state, {job, "one sequential write of the same bytes", 1.0 / 3}, [&] { set_all(model); },
      [&] { write_sequentially(plain); });
}

void set_mode_by_mode(QDL_Record *model) {
  for (std::int32_t mode = 1; mode <= kModes; ++mode) {
    for (std::int32_t node = 1; node <= kNodes; ++node)
      set_vector(model, mode, node);
  }
}

void set_node_by_node(QDL_Record *model) {
  for (std::int32_t node = 1; node <= kNodes; ++node) {
    for (std::int32_t mode = 1; mode <= kModes; ++mode)
      set_vector(model, mode, node);
  }
}

void add_and_find_nodes(benchmark::State &state) {
  const std::vector<std::int32_t> ids = shuffled(1'000'000);
  std::int64_t ours_sum = 0;
  std::int64_t peer_sum = 0;
  const auto ours = [&] {
    const Model model(QDL_Create(0, 0));
    for (const std::int32_t id : ids)
      QDL_LookupOrAddNode(model, id);
    ours_sum = 0;
    for (std::int32_t id = 1; id <= 1'000'000; ++id)
      ours_sum += QDL_NodeIndex(model, id) % 7;
  };
  const auto peer = [&] {
    std::unordered_map<std::int32_t, std::int32_t> index;
    for (const std::int32_t id : ids)
      index.try_emplace(id, static_cast<std::int32_t>(index.size()));
    peer_sum = 0;
    for (std::int32_t id = 1; id <= 1'000'000; ++id)
      peer_sum += index.find(id)->second % 7;
  };
  ours();
  peer();
  require(ours_sum == peer_sum, "both find the same indices");
  compare(state, {"add and find 1,000,000 nodes in random order", "`std::unordered_map`", 0.5},
          ours, peer);
}

/// Ten times the items in one model beside ten models with a tenth each: a cost linear in the
/// number gives a ratio near 1.
template <class Fill>
void linear_cost(benchmark::State &state, const char *job, std::int32_t items, Fill fill) {
  compare(
      state, {job, "ten models with a tenth each", 0.5},
      [&] {
        const Model model(QDL_Create(items, 0));
        fill(model, items);
      },
      [&] {
        for (int i = 0; i < 10; ++i) {
          const Model model(QDL_Create(items / 10, 0));
          fill(model, items / 10);
        }
      });
}

void set_faces(QDL_Record *model, std::int32_t faces) {
  for (std::int32_t face = 0; face < faces; ++face) {
    const std::int32_t nodes[4] = {face + 1, face + 2, face + 4, face + 3};
    QDL_SetFaceList(model, 4, nodes);
  }
}

void set_interface_nodes(QDL_Record *model, std::int32_t nodes) {
  for (std::int32_t node = 1; node <= nodes; ++node) {
    QDL_AddNode(model, node);
    QDL_SetInterfaceNode(model, node);
  }
}

void set_nodal_loads(QDL_Record *model, std::int32_t loads) {
  for (std::int32_t load = 0; load < loads; ++load) {
    QDL_SetModalLoadNodal(model, 0, load / 6 + 1, load % 6 + 1, 0.5 * load);
  }
}

void set_load_cases(benchmark::State &state) {
  constexpr std::int32_t kCases = 500;
  const auto fill = [](std::int32_t cases) {
    const Model model(QDL_Create(0, kCases));
    for (std::int32_t load_case = 0; load_case < cases; ++load_case) {
      for (std::int32_t mode = 1; mode <= kCases; ++mode) {
        QDL_SetModalLoad(model, load_case, mode, 1.0);
      }
    }
  };
  compare(
      state, {"500 load cases of 500 modes", "ten models with 50 cases each", 0.5},
      [&] { fill(kCases); },
      [&] {
        for (int i = 0; i < 10; ++i)
          fill(kCases / 10);
      });
}

/// The decimal method spelled out: two logarithms and two powers for each value.
double by_logarithms(double value, double factor) {
  const auto power = [](double exponent) {
    const double whole = std::floor(std::pow(10.0, std::fabs(exponent)) + 0.5);
    return exponent < 0 ? 1.0 / whole : whole;
  };
  const double value_exponent = std::floor(std::log10(std::fabs(value)));
  const double factor_exponent = std::floor(std::log10(std::fabs(factor)));
  const double value_mantissa = value / power(value_exponent);
  const double factor_mantissa = factor / power(factor_exponent);
  return std::fabs(power(value_exponent + factor_exponent)) * (factor_mantissa * value_mantissa);
}

void change_units(benchmark::State &state) {
  constexpr std::size_t kValues = 3'000'000;
  std::vector<double> coordinates(kValues);
  std::mt19937 random(3);
  std::uniform_real_distribution<double> spread(-999.0, 999.0);
  for (double &value : coordinates)
    value = spread(random);
  std::vector<double> ours = coordinates;
  std::vector<double> theirs = coordinates;
  constexpr double kInch = 0.0254;
  const auto convert = [&] {
    ours = coordinates;
    QDL_Convert_Units(ours.data(), static_cast<std::int32_t>(kValues), kInch);
  };
  const auto spell_out = [&] {
    theirs = coordinates;
    for (double &value : theirs)
      value = by_logarithms(value, kInch);
  };
  convert();
  spell_out();
  require(ours == theirs, "both conversions agree bit for bit");
  compare(state, {"convert the coordinates of 1,000,000 nodes", "`log10` and `pow` per value", 5},
          convert, spell_out);
}

const bool registered = [] {
  register_row("set_mode_by_mode", [](benchmark::State &state) {
    set_beside_sequential_write(state, "set mode vectors mode by mode (20,000 nodes, 100 modes)",
                                set_mode_by_mode);
  });
  register_row("set_node_by_node", [](benchmark::State &state) {
    set_beside_sequential_write(state, "set mode vectors node by node (20,000 nodes, 100 modes)",
                                set_node_by_node);
  });
  register_row("add_and_find_nodes", add_and_find_nodes);
  register_row("set_faces", [](benchmark::State &state) {
    linear_cost(state, "set 1,000,000 faces", 1'000'000, set_faces);
  });
  register_row("set_interface_nodes", [](benchmark::State &state) {
    linear_cost(state, "set 100,000 interface nodes", 100'000, set_interface_nodes);
  });
  register_row("set_nodal_loads", [](benchmark::State &state) {
    linear_cost(state, "set 1,000,000 nodal loads", 1'000'000, set_nodal_loads);
  });
  register_row("set_load_cases", set_load_cases);
  register_row("change_units", change_units);
  return true;
}();

}  // namespace
}  // namespace qdlflex::bench
