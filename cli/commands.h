#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace qdlflex::cli {

/// What the command line asks for. Does it and throws a Failure if that cannot be done.
using Job = std::function<void()>;

/// Each adds a subcommand that, when chosen, puts its work into `job`.
void add_convert_command(CLI::App &app, Job &job);
void add_edges_command(CLI::App &app, Job &job);
void add_export_command(CLI::App &app, Job &job);
void add_import_command(CLI::App &app, Job &job);
void add_info_command(CLI::App &app, Job &job);
void add_invariants_command(CLI::App &app, Job &job);
void add_orthonormalize_command(CLI::App &app, Job &job);
void add_surface_command(CLI::App &app, Job &job);
void add_transform_command(CLI::App &app, Job &job);
void add_report_command(CLI::App &app, Job &job);

}  // namespace qdlflex::cli
