#include <memory>

#include "commands.h"
#include "console.h"
#include "export_files.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

struct Form {
  const char *name;
  const char *description;
  void (*run)(const ExportOptions &);
  bool has_fields;  // else the shape of one mode only
};

constexpr Form kForms[] = {
    {"vtu", "All nodes and faces as a VTK unstructured grid.", export_vtu, true},
    {"vtp", "The surface and its free edges as VTK polygonal data.", export_vtp, true},
    {"stl", "The surface as triangles, deformed by one mode if wanted.", export_stl, false}};

void check_modes(const std::string &text) {
  try {
    ModeSelection{text};
  } catch (const Failure &failure) {
    throw CLI::ValidationError("--modes", failure.what());
  }
}

void add_form(CLI::App &app, const Form &form, Job &job) {
  const auto options = std::make_shared<ExportOptions>();
  const auto verbose = std::make_shared<bool>(false);
  options->modes = form.has_fields ? "all" : "none";

  CLI::App *const command = app.add_subcommand(form.name, form.description);
  command->add_option("file", options->input, "QDL file")->type_name("FILE")->required();
  command->add_option("-o,--output", options->output, "File to write")
      ->type_name("OUT")
      ->required();
  CLI::Option *const modes =
      command->add_option("--modes", options->modes, "Mode numbers, such as 1,7-12; all; none")
          ->type_name("LIST")
          ->capture_default_str();
  CLI::Option *const scale =
      command->add_option("--scale", options->fields.scale, "Factor of the displacements")
          ->type_name("S")
          ->capture_default_str();
  if (form.has_fields) {
    command->add_flag("--stress", options->fields.stress, "Write modal stress too");
  } else {
    scale->needs(modes);
  }
  command->add_flag("-v,--verbose", *verbose, "Show the library's information lines");
  command->callback([options, verbose, &form, &job] {
    check_modes(options->modes);
    job = [options, verbose, &form] {
      install_message_handlers(*verbose);
      form.run(*options);
    };
  });
}

}  // namespace

void add_export_command(CLI::App &app, Job &job) {
  CLI::App *const command =
      app.add_subcommand("export", "Write geometry and modes for viewers.")->require_subcommand(1);
  for (const Form &form : kForms) {
    add_form(*command, form, job);
  }
}

}  // namespace qdlflex::cli
