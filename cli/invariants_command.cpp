#include <memory>
#include <string>

#include "commands.h"
#include "console.h"
#include "invariants.h"

namespace qdlflex::cli {

void add_invariants_command(CLI::App &app, Job &job) {
  struct Options {
    std::string file;
    bool full = false;
    bool fast = false;
    bool rigid = false;
    bool json = false;
    bool verbose = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App *const command =
      app.add_subcommand("invariants", "Compute the inertia invariants of a QDL file.");
  command->add_option("file", options->file, "QDL file")->type_name("FILE")->required();
  CLI::Option *const fast = command->add_flag(
      "--fast", options->fast, "All but invariants 5 and 9, those of pairs of modes (default)");
  CLI::Option *const full =
      command->add_flag("--full", options->full, "All invariants")->excludes(fast);
  command->add_flag("--rigid", options->rigid, "Only mass, centre of mass and inertia")
      ->excludes(fast)
      ->excludes(full);
  command->add_flag("--json", options->json, "Print JSON instead of tables");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job] {
    job = [options] {
      install_message_handlers(options->verbose);
      const InvariantSet set = options->full    ? InvariantSet::kFull
                               : options->rigid ? InvariantSet::kRigid
                                                : InvariantSet::kFast;
      const Invariants invariants = read_invariants(options->file, set);
      options->json ? print_json(invariants) : print_tables(invariants);
    };
  });
}

}  // namespace qdlflex::cli
