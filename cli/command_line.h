#pragma once

namespace qdlflex::cli {

/// Does what the command line asks for, reports what goes wrong, and returns the exit code. No
/// model is left open.
int run_command_line(int argc, char **argv);

}  // namespace qdlflex::cli
