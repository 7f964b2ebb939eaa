#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace qdlflex::cli {

enum ExitCode {
  kExitDone = 0,
  kExitFailed = 1,
  kExitUsage = 2,
  kExitDoubtful = 3,
  kExitDifferent = 3
};

/// What the command line asks for. Does it and throws a Failure if that cannot be done.
using Job = std::function<void()>;

/// Each adds a subcommand that, when chosen, puts its work into `job`. Those of check and diff set
/// the exit code, which is otherwise `kExitDone`.
void add_check_command(CLI::App &app, Job &job, int &exit_code);
void add_convert_command(CLI::App &app, Job &job);
void add_diff_command(CLI::App &app, Job &job, int &exit_code);
void add_edges_command(CLI::App &app, Job &job);
void add_export_command(CLI::App &app, Job &job);
void add_import_command(CLI::App &app, Job &job);
void add_info_command(CLI::App &app, Job &job);
void add_invariants_command(CLI::App &app, Job &job);
void add_orthonormalize_command(CLI::App &app, Job &job);
void add_report_command(CLI::App &app, Job &job);
void add_surface_command(CLI::App &app, Job &job);
void add_transform_command(CLI::App &app, Job &job);

}  // namespace qdlflex::cli
