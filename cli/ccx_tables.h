#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace qdlflex::cli {

/// What the printed tables of CalculiX (JOB.dat) tell beyond the result file.
struct CcxTables {
  std::map<int32_t, double> eigenvalues;         // by mode, of the last step; negative ones too
  std::map<std::string, double> masses_of_sets;  // EMAS totals, by element set
};

CcxTables read_ccx_tables(const std::string &path);

/// Nodal masses from the mass matrix that *FREQUENCY, SOLVER=MATRIXSTORAGE stores (JOB.mas, one
/// triangle) with the node and direction of its rows (JOB.dof): the diagonal, scaled direction by
/// direction so that its sum is the body's mass. A node gets the mean over its directions; a node
/// whose freedoms are all constrained has no row and gets none.
std::unordered_map<int32_t, double> read_ccx_nodal_masses(const std::string &matrix_path,
                                                          const std::string &rows_path);

}  // namespace qdlflex::cli
