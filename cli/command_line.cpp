#include "command_line.h"

#include <qdlflex/qdlflex.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "commands.h"
#include "console.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

/// A full disk shows at the latest here.
void finish_output() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw Failure(std::string("standard output: ") + std::strerror(errno));
  }
}

int run(int argc, char **argv) {
  CLI::App app("Work with QDL files: modal flexible bodies.", "qdlflex");
  app.set_version_flag("--version", std::string("qdlflex ") + QDL_LibraryVersion());
  app.require_subcommand(1);
  Job job;
  int exit_code = kExitDone;
  add_check_command(app, job, exit_code);
  add_convert_command(app, job);
  add_diff_command(app, job, exit_code);
  add_edges_command(app, job);
  add_export_command(app, job);
  add_import_command(app, job);
  add_info_command(app, job);
  add_invariants_command(app, job);
  add_orthonormalize_command(app, job);
  add_report_command(app, job);
  add_surface_command(app, job);
  add_transform_command(app, job);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    const int code = app.exit(error);
    finish_output();
    return code == 0 ? kExitDone : kExitUsage;
  }
  job();
  finish_output();
  return exit_code;
}

}  // namespace

int run_command_line(int argc, char **argv) {
  int result = kExitFailed;
  try {
    result = run(argc, argv);
  } catch (const std::exception &error) {
    print_error(error.what());
  }
  QDL_Terminate();
  return result;
}

}  // namespace qdlflex::cli
