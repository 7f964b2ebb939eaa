#include "edit_command.h"

#include <cstdio>

#include "console.h"
#include "text_input.h"
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

bool has_loads_off_principal_axes(QDL_Record *record) {
  if (QDL_ModalPreloadExist(record) != 0 && QDL_ModalPreloadProcessed(record) == 0) {
    return true;
  }
  for (int32_t index = 0; index < QDL_GetModalLoadCaseCount(record); ++index) {
    if (QDL_ModalLoadProcessed(record, index) == 0) {
      return true;
    }
  }
  return false;
}

/// Nodes that the writer drops from a model with invariants.
int32_t unused_node_count(QDL_Record *record) {
  if (counts_of(record).faces == 0) {
    return 0;
  }
  int32_t used = 0;
  QDL_FreeMemory(QDL_GeometryNodes(record, &used));
  return used > 0 ? QDL_NodeCount(record) - used : 0;
}

/// Next to invariants the writer puts loads on principal axes and drops nodes. Loads get six rigid
/// components, which destroy others where the body has fewer rigid modes.
void check_cost_of_invariants(QDL_Record *record, bool accepted) {
  constexpr int32_t kInvariant3 = 20;
  constexpr int32_t kRigidMotions = 6;
  if (QDL_Exists(record, kInvariant3) == 0) {
    return;
  }
  if (has_loads_off_principal_axes(record)) {
    const int32_t rigid = QDL_RigidBodyModeCount(record);
    if (rigid < kRigidMotions && !accepted) {
      throw Failure("with invariants, loads are written on the six rigid axes; with " +
                    std::to_string(rigid) +
                    " rigid modes they would lose values (--options writes all the same)");
    }
    print_warning("as there are invariants, the loads are written on the rigid axes");
  }
  if (const int32_t unused = unused_node_count(record); unused > 0) {
    print_warning("as there are invariants, nodes without use are not written: " +
                  std::to_string(unused));
  }
}

}  // namespace

void add_edit_options(CLI::App &command, EditOptions &options) {
  options.write_options = user_write_options().value_or("");
  command.add_option("file", options.input, "QDL file")->type_name("FILE")->required();
  command.add_option("-o,--output", options.output, "QDL file to write")
      ->type_name("OUT.qdl")
      ->required();
  command.add_option("--options", options.write_options, "Options for the writer")
      ->type_name("TEXT")
      ->each([&options](const std::string &) { options.has_own_options = true; });
  command.add_flag("-v,--verbose", options.verbose, "Show the library's information lines");
}

void edit_file(const EditOptions &options, const std::function<void(QDL_Record *)> &edit) {
  install_message_handlers(options.verbose);
  check_output_is_not(options.input, options.output);
  const Record record = open_record(options.input);
  // The file's encoding is no longer known once the modes have moved elsewhere.
  const std::string write_options =
      options.write_options.empty() ? faithful_write_options(record.get()) : options.write_options;
  set_write_options(write_options);
  const Counts before = counts_of(record.get());
  const int64_t errors_before = reported_error_count();
  edit(record.get());
  if (reported_error_count() != errors_before) {
    throw Failure(options.output + " is not written after an error");
  }
  check_cost_of_invariants(record.get(), options.has_own_options);
  write_record(record.get(), options.output, write_options);
  const Counts after = counts_of(record.get());
  std::printf("%s: %d nodes (before: %d), %d faces (before: %d)\n", options.output.c_str(),
              after.nodes, before.nodes, after.faces, before.faces);
}

}  // namespace qdlflex::cli
