#include "commands.h"
#include "edit_command.h"
#include "faces.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

struct SurfaceOptions {
  EditOptions edit;
  bool strip = false;
  std::string coarsen;
  bool prune = false;
};

/// The library takes nonsense for a default; a mistyped argument should not pass for that.
std::string check_coarsening(const std::string &text) {
  const auto fields = split(text, ',');
  bool valid = fields.size() >= 3;
  for (size_t k = 0; k < fields.size() && valid; ++k) {
    valid = k < 2 ? parse_real(fields[k]).has_value()
                  : parse_integer(fields[k]).has_value() || (k > 2 && fields[k] == "preserve_str");
  }
  return valid ? std::string() : "\"" + text + "\" is not of the form R,ANGLE,COLINEAR[,NODES]";
}

void require(int32_t result, const char *what) {
  if (result == 0) {
    throw Failure(std::string("the model cannot be ") + what);
  }
}

void edit(const SurfaceOptions &options, QDL_Record *record) {
  if (options.strip || !options.coarsen.empty()) {
    check_faces(record);
  }
  if (options.strip) {
    QDL_StripCommonFaces(record);
  }
  if (!options.coarsen.empty()) {
    require(QDL_TrimGeometry(record, options.coarsen.c_str()), "coarsened");
  }
  if (options.prune) {
    require(QDL_DiscardUnreferencedNodes(record), "pruned");
  }
}

}  // namespace

void add_surface_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<SurfaceOptions>();
  CLI::App *const command =
      app.add_subcommand("surface", "Thin out the faces and nodes of a model.");
  add_edit_options(*command, options->edit);
  command->add_flag("--strip", options->strip, "Remove faces that two elements share");
  command->add_option("--coarsen", options->coarsen, "Merge faces in nearly flat patches")
      ->type_name("R,ANGLE,COLINEAR[,NODES]")
      ->check(check_coarsening);
  command->add_flag("--prune", options->prune, "Remove nodes that nothing refers to");
  command->callback([options, &job] {
    if (!options->strip && options->coarsen.empty() && !options->prune) {
      throw CLI::RequiredError("At least one of --strip, --coarsen, --prune");
    }
    job = [options] {
      edit_file(options->edit, [&](QDL_Record *record) { edit(*options, record); });
    };
  });
}

}  // namespace qdlflex::cli
