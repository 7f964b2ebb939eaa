#include "check.h"

#include <memory>
#include <string>

#include "commands.h"
#include "console.h"

namespace qdlflex::cli {

void add_check_command(CLI::App &app, Job &job, int &exit_code) {
  struct Options {
    std::string file;
    bool json = false;
    bool verbose = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App *const command =
      app.add_subcommand("check", "Tell whether the body in a QDL file can be trusted.");
  command->add_option("file", options->file, "QDL file")->type_name("FILE")->required();
  command->add_flag("--json", options->json, "Print JSON instead of tables");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job, &exit_code] {
    job = [options, &exit_code] {
      install_message_handlers(options->verbose);
      const CheckReport report = check_file(options->file);
      options->json ? print_json(report) : print_tables(report);
      const Verdict verdict = overall(report);
      exit_code = verdict == Verdict::kFailed     ? kExitFailed
                  : verdict == Verdict::kDoubtful ? kExitDoubtful
                                                  : kExitDone;
    };
  });
}

}  // namespace qdlflex::cli
