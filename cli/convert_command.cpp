#include "commands.h"
#include "edit_command.h"

namespace qdlflex::cli {

void add_convert_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<EditOptions>();
  CLI::App *const command =
      app.add_subcommand("convert", "Write a model again, in another form if wanted.");
  add_edit_options(*command, *options);
  command->callback(
      [options, &job] { job = [options] { edit_file(*options, [](QDL_Record *) {}); }; });
}

}  // namespace qdlflex::cli
