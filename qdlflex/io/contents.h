#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "record/record.h"

namespace qdlflex {

/// Prints blocks of a model for people to read, as it stands in memory.
class ContentsReport {
 public:
  ContentsReport(QDL_Record &record, std::FILE *out) : record_(record), out_(out) {}

  /// Nothing for an id that is no block's.
  void print(std::int32_t block_id);

 private:
  struct Entry {
    Block block;
    const char *title;
    void (ContentsReport::*content)();
  };
  static std::span<const Entry> entries();

  void frame(std::int32_t block_id, const char *title);

  void version_code();
  void header();
  void content_summary();
  void nodal_coordinates();
  void element_topology();
  void global_body_properties();
  void nodal_masses();
  void nodal_inertias();
  void units();
  void element_faces();
  void interface_nodes();

  void eigenvalues();
  void mode_shapes();
  void modal_stress();
  void modal_strain();
  void modal_statistics();
  void pre_stress();
  void pre_strain();

  void generalized_stiffness();
  void generalized_mass();
  void generalized_damping();
  void transformation();
  void invariant_1();
  void invariant_2();
  void invariant_3();
  void invariant_4();
  void invariant_5();
  void invariant_7();
  void invariant_8();
  void invariant_9();
  void modal_preload();
  void modal_loads();
  void matrix_operators();
  void nodal_loads();
  void monitor_points();
  void rotor_dynamics();

  std::int32_t mode_number(std::size_t mode) const { return record_.mode_numbers[mode]; }
  std::int32_t mode_count() const { return qdlflex::mode_count(record_); }

  // Modal node data: tables of six values per node.
  void six_columns(std::int32_t kind);
  void six_values(std::int32_t kind, std::int32_t node_id, const double *six);
  void mode_tables(std::int32_t kind, const char *name);
  void pre_vectors(std::int32_t kind, std::span<const Vector6> vectors);

  const double *invariant(int number);
  bool is_known(int number) const;
  void inertia_rows(const double *nine, int indent);
  void rows_of_three(const double *values);
  void vectors_per_mode(const double *matrix);
  void print_rows(std::span<const double> values, std::size_t columns);
  void matrix_operator(const MatrixOperator &matrix);
  void monitor_operator(std::int32_t point, std::int32_t number);
  void rotor_matrix(const char *title, std::int32_t index);

  QDL_Record &record_;
  std::FILE *out_;
};

}  // namespace qdlflex
