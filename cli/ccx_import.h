#pragma once

#include <optional>
#include <string>

#include "units.h"

namespace qdlflex::cli {

struct CcxImport {
  std::string results;           // JOB.frd
  std::string deck;              // the others may be empty
  std::string tables;            // JOB.dat
  std::string mass_matrix;       // JOB.mas, with
  std::string mass_matrix_rows;  // JOB.dof
  std::optional<double> density;
  std::string interface_set;  // empty: INTERFACE, if the deck has it
  Units units;
  std::string output;
  std::string write_options;  // for the library's writer
};

/// Makes a QDL file of the modes that CalculiX computed, and says in a few lines on standard
/// output what it holds. Throws a Failure; no output file is left then.
void import_ccx(const CcxImport &options);

}  // namespace qdlflex::cli
