#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "record.h"

namespace qdlflex::cli {

struct LoadCaseInfo {
  std::string label;
  bool processed;
};

struct MonitorPointInfo {
  std::string name;
  std::string label;
  std::string type;
  std::string result;
  int32_t component;
  std::vector<std::string> operators;
};

struct SubOperatorInfo {
  std::string tag;
  int32_t columns;
};

struct MatrixOperatorInfo {
  std::string name;
  int32_t rows;
  std::vector<SubOperatorInfo> sub_operators;
};

struct RotorInfo {
  std::array<double, 3> point;
  std::array<double, 3> direction;
};

/// What a body carries beside its geometry and modes.
struct ModelData {
  double mass = 0.0;
  std::array<double, 3> centre{};
  std::array<double, 9> inertia{};
  int32_t stiffness_entries = 0;
  int32_t mass_entries = 0;
  int32_t damping_entries = 0;
  std::vector<int32_t> invariants;  // their numbers
  bool has_preload = false;
  bool preload_processed = false;
  std::vector<LoadCaseInfo> load_cases;
  std::vector<int32_t> nodal_load_entries;  // by case
  std::vector<MonitorPointInfo> monitor_points;
  std::vector<MatrixOperatorInfo> matrix_operators;
  std::optional<RotorInfo> rotor;
};

ModelData read_model_data(QDL_Record *record);
void print_model_data(const ModelData &data);
nlohmann::ordered_json model_data_json(const ModelData &data);

}  // namespace qdlflex::cli
