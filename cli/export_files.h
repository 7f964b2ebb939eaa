#pragma once

#include <string>

#include "mode_fields.h"

namespace qdlflex::cli {

struct ExportOptions {
  std::string input;
  std::string output;
  std::string modes = "all";
  ModeFieldOptions fields;
};

/// Each throws a Failure if anything is wrong; no output is left then.

/// All nodes and faces as an unstructured grid.
void export_vtu(const ExportOptions &options);

/// The surface: outer faces, free edges as lines, and the nodes that these and the interface use.
void export_vtp(const ExportOptions &options);

/// The outer faces as triangles, with the displacement of one mode added where one is selected.
void export_stl(const ExportOptions &options);

}  // namespace qdlflex::cli
