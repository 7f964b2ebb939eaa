#pragma once

#include <array>
#include <cstdint>

#include "format/source.h"
#include "format/toc.h"
#include "record/record.h"
#include "support/boundary.h"

namespace qdlflex {

/// How the reading of one block ended.
enum class Reading {
  kDone,
  kProblem,   // the block's own "Problem ..." message is due
  kReported,  // failed, and has said why
};

/// Reads the blocks of a file into a record, each in its place; counts are compared with the bytes
/// that remain before anything is allocated for them.
class BlockReader {
 public:
  explicit BlockReader(QDL_Record &record) : record_(record), source_(open(record)) {}

  bool summary();
  void units();
  bool units_were_readable() const { return units_readable_; }
  bool header();

  bool nodal_coordinates();
  bool global_body_properties();
  bool nodal_masses();
  bool nodal_inertias();
  bool interface_nodes();
  bool faces();

  bool eigenvalues();
  bool mode_shapes();
  bool mode_list();
  bool modal_stress();
  bool modal_strain();
  bool modal_statistics();
  bool pre_stress();
  bool pre_strain();

  bool generalized_stiffness();
  bool generalized_mass();
  bool generalized_damping();
  bool transformation();
  bool modal_preload();
  bool modal_loads();
  bool nodal_loads();
  bool matrix_operators();
  bool monitor_points();
  bool rotor_dynamics();

 private:
  using Step = Reading (BlockReader::*)();

  static Source open(QDL_Record &record) {
    return Source(*record.source.file, source_encoding(record));
  }

  /// Runs a step at the block's place when the record's file has the block. `no_memory` is the
  /// block's text for memory that could not be had; without one the general text is given.
  bool read(Block block, const char *no_memory, Step step, int line = __builtin_LINE());
  void report_unreachable(Block block) const;

  Reading read_units();
  Reading read_header();
  Reading read_nodal_coordinates();
  Reading read_global_body_properties();
  Reading read_nodal_masses();
  Reading read_nodal_inertias();
  Reading read_interface_nodes();
  Reading read_element_faces();
  Reading read_element_topology();
  Reading read_eigenvalues();
  Reading read_mode_shapes();
  Reading read_modal_stress();
  Reading read_modal_strain();
  Reading read_modal_statistics();
  Reading read_pre_stress();
  Reading read_pre_strain();
  Reading read_generalized_stiffness();
  Reading read_generalized_mass();
  Reading read_generalized_damping();
  Reading read_transformation();
  Reading read_modal_preload();
  Reading read_modal_loads();
  Reading read_nodal_loads();
  Reading read_matrix_operators();
  Reading read_monitor_points();
  Reading read_rotor_dynamics();

  struct ModeHead {
    std::int32_t modes = 0;
    std::int32_t nodes = 0;
    std::int64_t values_start = 0;
    std::int64_t mode_bytes = 0;  // with the mode number
  };

  Reading read_generalized(GeneralizedMatrix &matrix);
  Reading read_inertia_entry(const unsigned char *bytes);
  bool read_matrix_operator(MatrixOperator &matrix_operator);
  bool read_monitor_point(MonitorPoint &point);
  bool read_modal_load(ModalLoadCase &load_case, std::int32_t modes);
  bool read_nodal_load(NodalLoadCase &load_case);
  bool read_face_group(std::vector<std::int32_t> &list, std::int32_t &count);
  Reading read_stress_like(std::int32_t kind);
  Reading read_pre_vectors(std::int32_t kind, std::vector<Vector6> &vectors);
  bool order_nodes(const std::vector<std::int32_t> &ids);
  bool set_node_set(std::int32_t kind, const std::vector<std::int32_t> &ids);
  bool locate_modes(std::int32_t kind, const ModeHead &head, std::vector<std::int32_t> &numbers);
  bool read_mode_head(ModeHead &head, std::vector<std::int32_t> &ids);
  bool head_fits(const ModeHead &head) const;

  /// The node with an identifier; one that has none is created where the file lists no nodes of its
  /// own. Blocks mostly list the nodes in order, so the one after the last found is tried first.
  Node *node_of(std::int32_t id);

  template <std::size_t N>
  bool text(std::array<char, N> &field);
  bool text(std::string &field, std::size_t width);

  QDL_Record &record_;
  Source source_;
  bool units_readable_ = true;
  std::array<bool, kBlockCount + 1> tried_{};
  std::size_t next_node_ = 0;
};

}  // namespace qdlflex
