#include "write_record.h"

#include <cstdlib>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr const char *kWriteOptionsVariable = "ZEB_QDLWRITE_OPTIONS";

/// Tells whether a table of eigenvalues says all that the record knows of its modes. Generalized
/// entries would be solved into new modes, and a mode without mass would end the table.
bool fits_eigenvalue_table(QDL_Record *record) {
  if (QDL_NumberOfGenStiff(record) > 0 || QDL_NumberOfGenMass(record) > 0) {
    return false;
  }
  for (int32_t index = 0; index < QDL_ModeCount(record); ++index) {
    double mass = 0.0;
    if (QDL_Eigenvalue(record, QDL_ModeNumber(record, index), nullptr, nullptr, nullptr, &mass,
                       nullptr) == 0 ||
        mass == 0.0) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<std::string> user_write_options() {
  const char *const set = std::getenv(kWriteOptionsVariable);
  return set != nullptr && *set != '\0' ? std::optional<std::string>(set) : std::nullopt;
}

std::string faithful_write_options(QDL_Record *record) {
  // The writer's own limits leave out modes above a frequency of 1e8 and below -1.
  std::string options =
      fits_eigenvalue_table(record) ? "highpass(-9e99),lowpass(9e99)" : "no_ortho";
  if (!is_xdr(record)) {
    options += ",no_xdr";
  }
  if (QDL_Double_Prec(record) == 0) {
    options += ",single";
  }
  return options;
}

void write_record(QDL_Record *record, const std::string &path, const std::string &options) {
  setenv(kWriteOptionsVariable, options.c_str(), 1);
  if (QDL_write_QDL(record, path.c_str()) == 0) {
    throw Failure(path + " was not written");
  }
}

}  // namespace qdlflex::cli
