#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "record.h"

namespace qdlflex::cli {

/// What the commands share that read a QDL file, edit the model and write another.
struct EditOptions {
  std::string input;
  std::string output;
  std::string write_options;     // empty: those that lose nothing
  bool has_own_options = false;  // from the command line
  bool verbose = false;
};

/// Adds the input, the output and the options of the writer to the command.
void add_edit_options(CLI::App &command, EditOptions &options);

/// Throws a Failure if anything is wrong, errors that the library reports during the edit included;
/// no output is left then.
void edit_file(const EditOptions &options, const std::function<void(QDL_Record *)> &edit);

}  // namespace qdlflex::cli
