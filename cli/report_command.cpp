#include <cstdio>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "commands.h"
#include "console.h"
#include "record.h"

namespace qdlflex::cli {

namespace {

constexpr int32_t kBlockCount = 37;

void report(const std::string &file, std::vector<int32_t> blocks) {
  const Record record = open_record(file);
  if (blocks.empty()) {
    blocks.resize(kBlockCount);
    std::iota(blocks.begin(), blocks.end(), 1);
  }
  for (const int32_t block : blocks)
    QDL_Contents(record.get(), block, stdout);
}

}  // namespace

void add_report_command(CLI::App &app, Job &job) {
  struct Options {
    std::string file;
    std::vector<int32_t> blocks;
    bool verbose = false;
  };
  const auto options = std::make_shared<Options>();
  CLI::App *const command = app.add_subcommand("report", "Print the contents of a QDL file.");
  command->add_option("file", options->file, "QDL file")->type_name("FILE")->required();
  command->add_option("--block", options->blocks, "Print this block; may be given several times")
      ->type_name("N")
      ->check(CLI::Range(1, kBlockCount))
      ->expected(1)
      ->take_all();
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job] {
    job = [options] {
      install_message_handlers(options->verbose);
      report(options->file, options->blocks);
    };
  });
}

}  // namespace qdlflex::cli
