#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "format/sink.h"
#include "io/write_plan.h"
#include "record/record.h"

namespace qdlflex {

/// Writes the version code, the header, the content summary and the blocks of a plan. The first
/// failure is reported and ends the writing.
class BlockWriter {
 public:
  BlockWriter(QDL_Record &record, WritePlan &plan, File &file)
      : record_(record), plan_(plan), file_(file), sink_(file, plan.encoding()) {}

  bool version_code();
  bool header();
  bool summary();
  bool blocks();
  /// Closes the file. What shows only now is the failure of the last step.
  bool close();

 private:
  using Step = bool (BlockWriter::*)();
  struct Entry {
    Block block;
    Step step;
    const char *failure;
  };

  /// Runs a step and flushes, so that a full disk shows in the block that did not fit.
  bool run(Step step, const char *failure, int line = __builtin_LINE());

  bool write_version_code();
  bool write_header();
  bool write_summary();

  bool nodal_coordinates();
  bool element_topology();
  bool global_body_properties();
  bool nodal_masses();
  bool nodal_inertias();
  bool units();
  bool element_faces();
  bool interface_nodes();

  bool eigenvalues();
  bool mode_shapes();
  bool modal_stress();
  bool modal_strain();
  bool modal_statistics();
  bool pre_stress();
  bool pre_strain();

  bool generalized_stiffness();
  bool generalized_mass();
  bool generalized_damping();
  bool transformation();
  bool invariant_1();
  bool invariant_2();
  bool invariant_3();
  bool invariant_4();
  bool invariant_5();
  bool invariant_7();
  bool invariant_8();
  bool invariant_9();
  bool modal_preload();
  bool modal_loads();
  bool matrix_operators();
  bool nodal_loads();
  bool monitor_points();
  bool rotor_dynamics();

  std::int32_t modes() const { return plan_.modes(); }
  bool face_group(std::span<const std::span<const std::int32_t>> faces);
  bool write_modes(std::int32_t kind, const std::vector<std::int32_t> &rows);
  void keep_statistic(std::int32_t kind, std::int32_t mode, const double *six);
  /// For each node written, its position among the kind's nodes; kNoIndex where it has none.
  std::vector<std::int32_t> written_rows(std::int32_t kind) const;
  std::vector<std::int32_t> written_ids(std::int32_t kind, std::size_t count) const;
  bool pre_vectors(const std::vector<std::int32_t> &rows, const std::vector<Vector6> &vectors);
  bool entries(std::span<const GeneralizedEntry> entries, std::int32_t header);
  bool rigid_invariant(int number);
  bool modal_invariant(int number);
  /// The exported modes of an array with one value per mode, zero where it is too short.
  bool mode_range(const double *values, std::size_t count);
  bool monitor_point(const MonitorPoint &point);
  bool matrix_operator(const MatrixOperator &matrix_operator);

  static const Entry kBlocks[];

  QDL_Record &record_;
  WritePlan &plan_;
  File &file_;
  Sink sink_;
  const char *failure_of_last_step_ = "";
};

}  // namespace qdlflex
