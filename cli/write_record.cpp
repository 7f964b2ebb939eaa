#include "write_record.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "console.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr const char *kWriteOptionsVariable = "ZEB_QDLWRITE_OPTIONS";

// The writer's own limits leave out modes above a frequency of 1e8 and below -1.
constexpr const char *kEveryFrequency = "highpass(-9e99),lowpass(9e99)";

// Indices of blocks.
constexpr int32_t kEigenvalueTable = 6;
constexpr int32_t kStiffness = 11;
constexpr int32_t kMass = 12;
constexpr int32_t kTransformation = 15;

bool has_generalized_matrices(QDL_Record *record) {
  return QDL_Exists(record, kStiffness) != 0 || QDL_Exists(record, kMass) != 0;
}

/// Tells whether a table of eigenvalues says all that the record knows of its modes. Generalized
/// entries would be solved into new modes, and a mode without mass would end the table.
bool fits_eigenvalue_table(QDL_Record *record) {
  const bool lacks_table = QDL_ModeCount(record) > 0 && QDL_Exists(record, kEigenvalueTable) == 0;
  if (lacks_table || has_generalized_matrices(record)) {
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

void warn_of_losses_without_table(QDL_Record *record) {
  if (QDL_Exists(record, kTransformation) != 0) {
    print_warning("the mode shape transformation is not written");
  }
  if (QDL_Exists(record, kEigenvalueTable) != 0) {
    print_warning("the table of eigenvalues is not written, only generalized matrices");
  }
}

/// A name beside an existing file under which the new one is written, so that the old one stays
/// until the new one is whole. What is no regular file is written straight away.
class Replacement {
 public:
  explicit Replacement(const std::string &path) : written_(path) {
    std::error_code none;
    if (!std::filesystem::is_regular_file(path, none)) {
      return;
    }
    if (access(path.c_str(), W_OK) != 0) {
      throw Failure(path + " must not be written");
    }
    replaced_ = std::filesystem::canonical(path);
    int number = getpid();
    do {
      written_ = replaced_.string() + "." + std::to_string(number++) + ".part";
    } while (std::filesystem::exists(written_));
  }

  const std::string &path() const { return written_; }

  void finish() const {
    if (replaced_.empty()) {
      return;
    }
    std::error_code error;
    std::filesystem::permissions(written_, std::filesystem::status(replaced_, error).permissions(),
                                 error);
    std::filesystem::rename(written_, replaced_, error);
    if (error) {
      discard();
      throw Failure(replaced_.string() + ": " + error.message());
    }
  }

  /// Devices, pipes and links stay.
  void discard() const {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(written_, ignored)) {
      std::filesystem::remove(std::filesystem::canonical(written_, ignored), ignored);
    }
  }

 private:
  std::string written_;
  std::filesystem::path replaced_;  // empty: nothing
};

}  // namespace

std::optional<std::string> user_write_options() {
  const char *const set = std::getenv(kWriteOptionsVariable);
  return set != nullptr && *set != '\0' ? std::optional<std::string>(set) : std::nullopt;
}

std::string same_form_options(QDL_Record *record) {
  std::string options;
  if (!is_xdr(record)) {
    options += ",no_xdr";
  }
  if (QDL_Double_Prec(record) == 0) {
    options += ",single";
  }
  return options;
}

std::string faithful_write_options(QDL_Record *record) {
  if (fits_eigenvalue_table(record)) {
    return kEveryFrequency + same_form_options(record);
  }
  warn_of_losses_without_table(record);
  return "no_ortho" + same_form_options(record);
}

void set_write_options(const std::string &options) {
  setenv(kWriteOptionsVariable, options.c_str(), 1);
}

void write_record(QDL_Record *record, const std::string &path, const std::string &options,
                  const std::function<void(const std::string &written)> &accept) {
  set_write_options(options);
  const Replacement replacement(path);
  if (QDL_write_QDL(record, replacement.path().c_str()) == 0) {
    throw Failure(path + " was not written");
  }
  try {
    if (accept) {
      accept(replacement.path());
    }
  } catch (...) {
    replacement.discard();
    throw;
  }
  replacement.finish();
}

}  // namespace qdlflex::cli
