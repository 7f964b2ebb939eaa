#include <cmath>
#include <memory>

#include "body_difference.h"
#include "commands.h"
#include "console.h"

namespace qdlflex::cli {

namespace {

struct DiffOptions {
  std::string a;
  std::string b;
  // Sixteen roundings of single precision, and what a text of seven digits can tell.
  double tolerance = 1e-6;
  bool json = false;
  bool verbose = false;
};

}  // namespace

void add_diff_command(CLI::App &app, Job &job, int &exit_code) {
  const auto options = std::make_shared<DiffOptions>();
  CLI::App *const command = app.add_subcommand("diff", "Compare two QDL files.");
  command->add_option("a", options->a, "QDL file")->type_name("A")->required();
  command->add_option("b", options->b, "QDL file")->type_name("B")->required();
  command->add_option("--tolerance", options->tolerance, "Largest relative difference allowed")
      ->type_name("T")
      ->capture_default_str();
  command->add_flag("--json", options->json, "Print JSON instead of text");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job, &exit_code] {
    if (!(options->tolerance >= 0.0) || !std::isfinite(options->tolerance)) {
      throw CLI::ValidationError("--tolerance", "must be 0 or a positive number");
    }
    job = [options, &exit_code] {
      install_message_handlers(options->verbose);
      const BodyDifference difference = compare_bodies(options->a, options->b, options->tolerance);
      options->json ? print_json(difference) : print_text(difference);
      exit_code = difference.same() ? kExitDone : kExitDifferent;
    };
  });
}

}  // namespace qdlflex::cli
