#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "record.h"
#include "vtk_xml.h"

namespace qdlflex::cli {

/// Which modes: "all", "none", or numbers and ranges such as "1,7-12".
class ModeSelection {
 public:
  /// Throws a Failure if the text is something else.
  explicit ModeSelection(std::string_view text);

  /// The numbers of the selected modes in the order of the model. Throws a Failure if the model
  /// lacks a mode that is selected by its number, or all modes of a range.
  std::vector<int32_t> of(QDL_Record *record) const;

 private:
  struct Range {
    int32_t first;
    int32_t last;
  };

  bool all_ = false;
  std::vector<Range> ranges_;
};

struct ModeFieldOptions {
  double scale = 1.0;
  bool stress = false;
};

/// One half of a mode, three values a node. Throws a Failure if the library cannot read it.
void read_half_mode(QDL_Record *record, int32_t mode, int32_t kind, int32_t part,
                    std::vector<double> &values);

/// The arrays of modes at some nodes of the model, which are given by their indices: displacements,
/// rotations where a mode has any, stresses where asked for. Only one mode at a time is in memory.
/// The record must outlive the arrays.
std::vector<VtkArray> mode_fields(QDL_Record *record, const std::vector<int32_t> &modes,
                                  const std::vector<int32_t> &nodes,
                                  const ModeFieldOptions &options);

}  // namespace qdlflex::cli
