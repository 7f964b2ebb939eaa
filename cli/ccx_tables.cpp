#include "ccx_tables.h"

#include <array>
#include <cmath>
#include <vector>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr size_t kDirections = 3;

/// The table begins after its heading with the first line of numbers and ends with the first line
/// that is none.
void read_eigenvalues(LineReader &lines, std::map<int32_t, double> &eigenvalues) {
  eigenvalues.clear();
  while (const auto line = lines.next()) {
    const auto fields = words(*line);
    const auto mode = fields.empty() ? std::nullopt : parse_integer(fields[0]);
    if (mode && fields.size() >= 2) {
      eigenvalues[*mode] = lines.real(fields[1]);
    } else if (!eigenvalues.empty()) {
      return;
    }
  }
}

/// A total stands two lines below its heading.
double read_total(LineReader &lines) {
  while (const auto line = lines.next()) {
    if (!trim(*line).empty()) {
      return lines.real(*line);
    }
  }
  lines.fail("the file ends before the total mass");
}

struct Row {
  int32_t node;
  size_t direction;  // 0, 1, 2, or more for what is no translation
};

std::vector<Row> read_rows(const std::string &path) {
  LineReader lines(path);
  std::vector<Row> rows;
  while (const auto line = lines.next()) {
    const auto fields = split(*line, '.');
    if (fields.size() == 1 && fields[0].empty()) {
      continue;
    }
    if (fields.size() != 2) {
      lines.fail("a node and a direction (node.direction) were expected");
    }
    const int32_t direction = lines.integer(fields[1]);
    rows.push_back({lines.integer(fields[0]),
                    direction < 1 ? kDirections : static_cast<size_t>(direction) - 1});
  }
  return rows;
}

/// The part of the matrix that a diagonal needs: its own diagonal and the sums over the terms that
/// couple one direction with itself.
struct MassMatrix {
  std::vector<double> diagonal;
  std::array<double, kDirections> total{};  // the mass of the body
  std::array<double, kDirections> diagonal_total{};

  void add(const Row &row, const Row &column, size_t i, size_t j, double value) {
    if (row.direction >= kDirections || row.direction != column.direction) {
      return;
    }
    total[row.direction] += i == j ? value : 2.0 * value;
    if (i == j) {
      diagonal_total[row.direction] += value;
      diagonal[i] += value;
    }
  }
};

MassMatrix read_matrix(const std::string &path, const std::vector<Row> &rows) {
  MassMatrix matrix;
  matrix.diagonal.resize(rows.size());
  LineReader lines(path);
  const auto index = [&](std::string_view text) {
    const int32_t position = lines.integer(text);
    if (position < 1 || static_cast<size_t>(position) > rows.size()) {
      lines.fail("row or column " + std::to_string(position) + " of a matrix of " +
                 std::to_string(rows.size()) + " rows");
    }
    return static_cast<size_t>(position) - 1;
  };
  while (const auto line = lines.next()) {
    const auto fields = words(*line);
    if (fields.empty()) {
      continue;
    }
    if (fields.size() != 3) {
      lines.fail("a row, a column and a value were expected");
    }
    const size_t i = index(fields[0]);
    const size_t j = index(fields[1]);
    matrix.add(rows[i], rows[j], i, j, lines.real(fields[2]));
  }
  return matrix;
}

Failure not_positive(int32_t node, const std::string &matrix_path, const std::string &rows_path) {
  std::string text = matrix_path;
  text.append(": the mass of node ").append(std::to_string(node));
  text.append(" is not positive; is this the mass matrix that belongs to ").append(rows_path);
  return Failure(text.append("?"));
}

}  // namespace

CcxTables read_ccx_tables(const std::string &path) {
  CcxTables tables;
  LineReader lines(path);
  constexpr std::string_view total = "total mass for set ";
  while (const auto line = lines.next()) {
    const std::string_view text = trim(*line);
    if (text == "E I G E N V A L U E   O U T P U T") {
      read_eigenvalues(lines, tables.eigenvalues);
    } else if (text.starts_with(total)) {
      const auto fields = words(text.substr(total.size()));
      const std::string set = fields.empty() ? std::string() : std::string(fields[0]);
      tables.masses_of_sets[set] = read_total(lines);
    }
  }
  return tables;
}

std::unordered_map<int32_t, double> read_ccx_nodal_masses(const std::string &matrix_path,
                                                          const std::string &rows_path) {
  const std::vector<Row> rows = read_rows(rows_path);
  const MassMatrix matrix = read_matrix(matrix_path, rows);

  struct Sum {
    double mass = 0.0;
    int directions = 0;
  };
  std::unordered_map<int32_t, Sum> sums;
  for (size_t i = 0; i < rows.size(); ++i) {
    const auto [node, direction] = rows[i];
    if (direction >= kDirections) {
      continue;
    }
    if (!(matrix.diagonal[i] > 0.0) || !(matrix.total[direction] > 0.0)) {
      throw not_positive(node, matrix_path, rows_path);
    }
    Sum &sum = sums[node];
    sum.mass += matrix.diagonal[i] * (matrix.total[direction] / matrix.diagonal_total[direction]);
    ++sum.directions;
  }

  std::unordered_map<int32_t, double> masses;
  for (const auto &[node, sum] : sums) {
    masses[node] = sum.mass / sum.directions;
    if (!std::isfinite(masses[node])) {
      throw Failure(matrix_path + ": the mass of node " + std::to_string(node) + " is not finite");
    }
  }
  return masses;
}

}  // namespace qdlflex::cli
