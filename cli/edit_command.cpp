#include "edit_command.h"

#include <cstdio>

#include "console.h"
#include "write_record.h"

namespace qdlflex::cli {

namespace {

struct Counts {
  int32_t nodes = 0;
  int32_t faces = 0;
};

Counts counts_of(QDL_Record *record) {
  Counts counts;
  int32_t length = 0;
  counts.nodes = QDL_NodeCount(record);
  QDL_FaceListSize(record, &counts.faces, &length);
  return counts;
}

}  // namespace

void add_edit_options(CLI::App &command, EditOptions &options) {
  options.write_options = user_write_options().value_or("");
  command.add_option("file", options.input, "QDL file")->type_name("FILE")->required();
  command.add_option("-o,--output", options.output, "QDL file to write")
      ->type_name("OUT.qdl")
      ->required();
  command.add_option("--options", options.write_options, "Options for the writer")
      ->type_name("TEXT");
  command.add_flag("-v,--verbose", options.verbose, "Show the library's information lines");
}

void edit_file(const EditOptions &options, const std::function<void(QDL_Record *)> &edit) {
  install_message_handlers(options.verbose);
  check_output_is_not(options.input, options.output);
  const Record record = open_record(options.input);
  // The file's encoding is no longer known once the modes have moved elsewhere.
  const std::string write_options =
      options.write_options.empty() ? faithful_write_options(record.get()) : options.write_options;
  const Counts before = counts_of(record.get());
  edit(record.get());
  write_record(record.get(), options.output, write_options);
  const Counts after = counts_of(record.get());
  std::printf("%s: %d nodes (before: %d), %d faces (before: %d)\n", options.output.c_str(),
              after.nodes, before.nodes, after.faces, before.faces);
}

}  // namespace qdlflex::cli
