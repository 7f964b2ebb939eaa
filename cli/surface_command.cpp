#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "edit_command.h"
#include "faces.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

struct Coarsening {
  double resolution = 0.0;
  double angle = 0.0;
  int32_t colinear = 0;
  std::vector<int32_t> nodes;
  bool keep_stress_nodes = false;
};

struct SurfaceOptions {
  EditOptions edit;
  bool strip = false;
  std::string coarsen;
  bool prune = false;
};

/// A number without the exponents of Fortran, which are nothing to the library.
std::optional<double> parse_plain_real(std::string_view text) {
  return text.find_first_of("dD") == std::string_view::npos ? parse_real(text) : std::nullopt;
}

std::optional<Coarsening> parse_coarsening(const std::string &text) {
  const auto fields = split(text, ',');
  if (fields.size() < 3) {
    return {};
  }
  const auto resolution = parse_plain_real(fields[0]);
  const auto angle = parse_plain_real(fields[1]);
  const auto colinear = parse_integer(fields[2]);
  if (!resolution || !angle || !colinear) {
    return {};
  }
  Coarsening result = {*resolution, *angle, *colinear, {}, false};
  for (size_t k = 3; k < fields.size(); ++k) {
    const int32_t node = parse_integer(fields[k]).value_or(0);
    if (node != 0) {
      result.nodes.push_back(node);
    } else if (fields[k] == "preserve_str") {
      result.keep_stress_nodes = true;
    } else {
      return {};
    }
  }
  return result;
}

/// The library takes nonsense for a default; a mistyped argument should not pass for that.
std::string check_coarsening(const std::string &text) {
  return parse_coarsening(text) ? std::string()
                                : "\"" + text + "\" is not of the form R,ANGLE,COLINEAR[,NODES]";
}

/// In the only form about which the library and this command agree.
std::string library_form(const Coarsening &coarsening) {
  std::array<char, 80> start{};
  std::snprintf(start.data(), start.size(), "%.17g,%.17g,%d", coarsening.resolution,
                coarsening.angle, coarsening.colinear);
  std::string text = start.data();
  for (const int32_t node : coarsening.nodes) {
    text += "," + std::to_string(node);
  }
  return coarsening.keep_stress_nodes ? text + ",preserve_str" : text;
}

void require(int32_t result, const char *what) {
  if (result == 0) {
    throw Failure(std::string("the model cannot be ") + what);
  }
}

void coarsen(QDL_Record *record, const Coarsening &coarsening) {
  for (const int32_t node : coarsening.nodes) {
    if (QDL_NodeIndex(record, node) < 0) {
      throw Failure("the model has no node " + std::to_string(node));
    }
  }
  require(QDL_TrimGeometry(record, library_form(coarsening).c_str()), "coarsened");
}

using Values = std::unique_ptr<double[], decltype(&QDL_FreeMemory)>;

/// Mass, first moment and inertia of the body. As invariants of the file they are what readers go
/// by, whatever the nodes of the file add up to.
class WholeBody {
 public:
  explicit WholeBody(QDL_Record *record)
      : mass_(QDL_Invar1(record)),
        moment_(QDL_Invar2(record), QDL_FreeMemory),
        inertia_(QDL_Invar7(record), QDL_FreeMemory) {}

  void set(QDL_Record *record) const {
    if (!(mass_ > 0.0) || !moment_ || !inertia_) {
      return;
    }
    const double *const j = inertia_.get();
    const std::array<double, 6> six = {j[0], j[4], j[8], j[1], j[2], j[5]};
    const bool set = QDL_SetInvar1(record, mass_) != 0 &&
                     QDL_SetInvar2(record, moment_.get()) != 0 &&
                     QDL_SetInvar7(record, six.data()) != 0;
    require(set ? 1 : 0, "pruned");
  }

 private:
  double mass_;
  Values moment_;
  Values inertia_;
};

/// Invariants that the writer is to add are those of the body, not of the nodes that are left.
void compute_wanted_invariants(QDL_Record *record, const std::string &write_options) {
  if (QDL_ModeCount(record) == 0) {
    return;
  }
  if (write_options.find("full_invar") != std::string::npos) {
    QDL_FullComputeInvars(record);
  } else if (write_options.find("fast_invar") != std::string::npos) {
    QDL_FastComputeInvars(record);
  }
}

void prune(QDL_Record *record, const std::string &write_options) {
  constexpr int32_t kNodalMasses = 8;
  if (QDL_Exists(record, kNodalMasses) == 0) {
    require(QDL_DiscardUnreferencedNodes(record), "pruned");
    return;
  }
  compute_wanted_invariants(record, write_options);
  const WholeBody body(record);
  const int32_t nodes_before = QDL_NodeCount(record);
  require(QDL_DiscardUnreferencedNodes(record), "pruned");
  if (QDL_NodeCount(record) < nodes_before) {
    body.set(record);
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
    coarsen(record, parse_coarsening(options.coarsen).value());
  }
  if (options.prune) {
    prune(record, options.edit.write_options);
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
