// Combining modes beside OpenBLAS's matrix product and beside copying the same bytes.

#include <qdlflex/qdlflex.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench/compare.h"
#include "bench/open_blas.h"
#include "bench/peak_memory.h"
#include "bench/sample.h"
#include "modes/mode_rewrite.h"
#include "modes/mode_store.h"

namespace qdlflex::bench {
namespace {

using Values = std::vector<double>;

struct Size {
  std::int32_t nodes;
  std::int32_t modes;

  std::size_t mode_values() const { return 6 * static_cast<std::size_t>(nodes); }
  std::size_t values() const { return mode_values() * static_cast<std::size_t>(modes); }
  std::size_t coefficients() const {
    return static_cast<std::size_t>(modes) * static_cast<std::size_t>(modes);
  }
  std::string text() const {
    return std::to_string(modes) + " modes of " + std::to_string(nodes) + " nodes";
  }
};

Values random_values(std::size_t count) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> uniform(-0.5, 0.5);
  Values values(count);
  for (double &value : values)
    value = uniform(random);
  return values;
}

// Gives a model all its modes in one piece.
void set_all_modes(QDL_Record &record, const Size &size, const Values &modes) {
  auto rewrite = ModeRewrite::begin(record, QDL_MODE_SHAPE, size.modes, size.nodes,
                                    ModeRewrite::Measure::kCurrentUnits);
  require(rewrite.has_value(), "a file for the modes");
  for (std::int32_t mode = 0; mode < size.modes; ++mode) {
    const double *six = modes.data() + static_cast<std::size_t>(mode) * size.mode_values();
    require(rewrite->write_rows(mode, 0, size.nodes, six), "the modes are written");
  }
  require(rewrite->finish(), "the modes are written");
  rewrite->adopt(record);
}

QDL_Record *model_of(const Size &size, const Values &modes) {
  QDL_Record *record = QDL_Create(size.nodes, size.modes);
  for (std::int32_t node = 1; node <= size.nodes; ++node)
    QDL_SetNodeCoordinates(record, node, node, 0, 0);
  for (std::int32_t mode = 1; mode <= size.modes; ++mode)
    QDL_AddMode(record, mode);
  set_all_modes(*record, size, modes);
  return record;
}

// Keeps the size of modes that are transformed again and again.
Values dense_coefficients(const Size &size) {
  Values coefficients = random_values(size.coefficients());
  for (double &value : coefficients)
    value *= std::sqrt(12.0 / size.modes);
  return coefficients;
}

// Row i has its only value, 1 or -1, in column (i + shift) mod modes.
Values permutation(const Size &size, std::size_t shift) {
  const auto modes = static_cast<std::size_t>(size.modes);
  Values coefficients(size.coefficients());
  for (std::size_t i = 0; i < modes; ++i)
    coefficients[i * modes + (i + shift) % modes] = i % 2 == 0 ? 1.0 : -1.0;
  return coefficients;
}

void transform(QDL_Record *model, const Size &size, const Values &coefficients) {
  require(QDL_TransformModes(model, QDL_MODE_SHAPE, size.modes, coefficients.data()) == 1,
          "the modes are transformed");
}

bool has_modes(QDL_Record *model, const Size &size, const Values &expected) {
  Values six(size.mode_values());
  for (std::int32_t mode = 0; mode < size.modes; ++mode) {
    const double *values = expected.data() + static_cast<std::size_t>(mode) * six.size();
    if (!fetch_mode(*model, QDL_MODE_SHAPE, mode, six.data()))
      return false;
    for (std::size_t i = 0; i < six.size(); ++i)
      if (std::fabs(six[i] - values[i]) > 1e-12 * size.modes)
        return false;
  }
  return true;
}

void dense(benchmark::State &state, const Size &size) {
  const Comparison comparison{"combine " + size.text() + ", file to file",
                              "`dgemm` of OpenBLAS, memory to memory", 0.5};
  Dgemm *const dgemm = open_blas_dgemm();
  if (dgemm == nullptr)
    return not_measured(state, comparison, "OpenBLAS is not installed");
  const Values modes = random_values(size.values());
  // dgemm takes the same numbers column by column.
  const Values coefficients = dense_coefficients(size);
  Values columns(coefficients.size());
  const auto count = static_cast<std::size_t>(size.modes);
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t j = 0; j < count; ++j)
      columns[j * count + i] = coefficients[i * count + j];
  Values product(modes.size());
  const int rows = 6 * size.nodes;
  const double one = 1.0;
  const double zero = 0.0;
  const auto multiply = [&] {
    dgemm("N", "N", &rows, &size.modes, &size.modes, &one, modes.data(), &rows, columns.data(),
          &size.modes, &zero, product.data(), &rows, 1, 1);
  };

  const Model model(model_of(size, modes));
  const double memory = peak_memory([&] { transform(model, size, coefficients); });
  multiply();
  require(has_modes(model, size, product), "the modes are those of dgemm");
  compare(
      state, comparison, [&] { transform(model, size, coefficients); }, multiply);
  state.counters["peak_MiB"] = memory;
}

// Reads a file and writes another one, as whoever moves modes has to.
void copy_file(const std::string &from, const std::string &to, std::vector<char> &buffer) {
  std::FILE *source = std::fopen(from.c_str(), "rb");
  std::FILE *target = std::fopen(to.c_str(), "wb");
  require(source != nullptr && target != nullptr, "files to copy");
  while (const std::size_t bytes = std::fread(buffer.data(), 1, buffer.size(), source))
    require(std::fwrite(buffer.data(), 1, bytes, target) == bytes, "the copy is written");
  std::fclose(source);
  require(std::fclose(target) == 0, "the copy is written");
}

void sparse(benchmark::State &state, const char *name, const Size &size, std::size_t shift) {
  const Values modes = random_values(size.values());
  const Values coefficients = permutation(size, shift);
  Values expected(modes.size());
  for (std::size_t v = 0; v < modes.size(); ++v) {
    const std::size_t mode = v / size.mode_values();
    const std::size_t target = (mode + shift) % static_cast<std::size_t>(size.modes);
    expected[target * size.mode_values() + v % size.mode_values()] =
        mode % 2 == 0 ? modes[v] : -modes[v];
  }
  const Model model(model_of(size, modes));
  const double memory = peak_memory([&] { transform(model, size, coefficients); });
  require(has_modes(model, size, expected), "the modes are where the matrix puts them");

  const Folder folder;
  std::vector<char> buffer(1 << 20);
  {
    std::ofstream file(folder.file("modes"), std::ios::binary);
    file.write(reinterpret_cast<const char *>(modes.data()),
               static_cast<std::streamsize>(modes.size() * sizeof(double)));
    require(file.good(), "a file of modes");
  }
  compare(
      state,
      {std::string(name) + " of " + size.text() + ", file to file",
       "copying a file of the same bytes", 0.5},
      [&] { transform(model, size, coefficients); },
      [&] {
        copy_file(folder.file("modes"), folder.file("copy"), buffer);
        std::filesystem::remove(folder.file("copy"));
      });
  state.counters["peak_MiB"] = memory;
}

bool register_rows() {
  for (const std::int32_t modes : {50, 100, 200}) {
    register_row(("transform_dense_" + std::to_string(modes)).c_str(),
                 [modes](benchmark::State &state) {
                   dense(state, {2000000 / modes, modes});
                 });
  }
  register_row("transform_diagonal", [](benchmark::State &state) {
    sparse(state, "diagonal combination", {20000, 100}, 0);
  });
  register_row("transform_permutation", [](benchmark::State &state) {
    sparse(state, "permutation", {20000, 100}, 37);
  });
  return true;
}
const bool registered = register_rows();

}  // namespace
}  // namespace qdlflex::bench
