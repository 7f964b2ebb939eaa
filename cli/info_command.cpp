#include <memory>
#include <string>

#include "commands.h"
#include "console.h"
#include "file_info.h"

namespace qdlflex::cli {

void add_info_command(CLI::App &app, Job &job) {
  struct Options {
    std::string file;
    bool json = false;
    bool verbose = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App *const command = app.add_subcommand("info", "Show what a QDL file holds.");
  command->add_option("file", options->file, "QDL file")->type_name("FILE")->required();
  command->add_flag("--json", options->json, "Print JSON instead of tables");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job] {
    job = [options] {
      install_message_handlers(options->verbose);
      const FileInfo info = read_file_info(options->file);
      options->json ? print_json(info) : print_tables(info);
    };
  });
}

}  // namespace qdlflex::cli
