#include "model_data.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace qdlflex::cli {
namespace {

constexpr int32_t kFirstInvariantIndex = 18;
constexpr std::array<int32_t, 8> kInvariantNumbers = {1, 2, 3, 4, 5, 7, 8, 9};

template <size_t N>
std::string name_of(const std::array<const char *, N> &names, int32_t number) {
  const bool known = number >= 1 && number <= static_cast<int32_t>(N);
  return known ? names[static_cast<size_t>(number - 1)] : std::to_string(number);
}

const std::array<const char *, 4> kPointTypes = {"MONPNT1", "MONPNT2", "MONPNT3", "MONDSP1"};
const std::array<const char *, 5> kResultTypes = {"DISP", "STRESS", "STRAIN", "FORCE", "GENERAL"};
const std::array<const char *, 4> kOperators = {"displacement", "velocity", "acceleration", "load"};

void read_loads(QDL_Record *record, ModelData &data) {
  data.has_preload = QDL_ModalPreloadExist(record) != 0;
  data.preload_processed = QDL_ModalPreloadProcessed(record) != 0;
  for (int32_t index = 0; index < QDL_GetModalLoadCaseCount(record); ++index) {
    std::array<char, 257> label{};
    QDL_GetModalLoadCaseLabel(record, index, label.data());
    data.load_cases.push_back({label.data(), QDL_ModalLoadProcessed(record, index) != 0});
  }
  for (int32_t index = 0; index < QDL_GetModalLoadNodalCaseCount(record); ++index) {
    data.nodal_load_entries.push_back(QDL_GetModalLoadNodalCount(record, index));
  }
}

MonitorPointInfo read_monitor_point(QDL_Record *record, int32_t index) {
  std::array<char, 9> name{};
  std::array<char, 57> label{};
  QDL_GetMonitorPointNameLabel(record, index, name.data(), label.data());
  MonitorPointInfo point{name.data(),
                         label.data(),
                         name_of(kPointTypes, QDL_GetMonitorPointType(record, index)),
                         name_of(kResultTypes, QDL_GetMonitorPointResultType(record, index)),
                         QDL_GetMonitorPointComponent(record, index),
                         {}};
  for (int32_t number = 1; number <= 4; ++number) {
    if (QDL_MonitorPointHasOperator(record, index, number) != 0) {
      point.operators.push_back(name_of(kOperators, number));
    }
  }
  return point;
}

MatrixOperatorInfo read_matrix_operator(QDL_Record *record, int32_t index) {
  std::array<char, 80> name{};
  QDL_GetMatrixOperatorName(record, index, name.data());
  MatrixOperatorInfo info{name.data(), QDL_GetMatrixOperatorNumRows(record, index), {}};
  for (int32_t sub = 0; sub < QDL_GetMatrixOperatorNumSubOperator(record, index); ++sub) {
    std::array<char, 8> tag{};
    int32_t columns = 0;
    QDL_GetMatrixOperatorSubTag(record, index, sub, tag.data());
    QDL_GetMatrixOperatorSubNumCols(record, index, sub, &columns);
    info.sub_operators.push_back({tag.data(), columns});
  }
  return info;
}

std::string joined(const std::vector<std::string> &texts) {
  std::string all;
  for (const std::string &text : texts) {
    all += (all.empty() ? "" : ", ") + text;
  }
  return all.empty() ? "none" : all;
}

const char *axes(bool processed) {
  return processed ? "on principal axes" : "not yet on principal axes";
}

void print_mass(const ModelData &data) {
  std::printf("%-12s%.10g\n", "mass", data.mass);
  std::printf("%-12s%.10g, %.10g, %.10g\n", "centre", data.centre[0], data.centre[1],
              data.centre[2]);
  std::printf("%-12s%.10g, %.10g, %.10g (xx, yy, zz), %.10g, %.10g, %.10g (xy, xz, yz)\n",
              "inertia", data.inertia[0], data.inertia[4], data.inertia[8], data.inertia[1],
              data.inertia[2], data.inertia[5]);
}

void print_loads(const ModelData &data) {
  if (data.has_preload) {
    std::printf("%-12s%s\n", "preload", axes(data.preload_processed));
  }
  for (const LoadCaseInfo &load_case : data.load_cases) {
    std::printf("%-12s%s, %s\n", "load case", load_case.label.c_str(), axes(load_case.processed));
  }
  for (const int32_t entries : data.nodal_load_entries) {
    std::printf("%-12s%d entries\n", "nodal loads", entries);
  }
}

void print_operators(const ModelData &data) {
  for (const MonitorPointInfo &point : data.monitor_points) {
    std::printf("%-12s%s (%s), %s, %s, component %d, operators: %s\n", "monitor",
                point.name.c_str(), point.label.c_str(), point.type.c_str(), point.result.c_str(),
                point.component, joined(point.operators).c_str());
  }
  for (const MatrixOperatorInfo &info : data.matrix_operators) {
    std::printf("%-12s%s, %d rows", "operator", info.name.c_str(), info.rows);
    for (const SubOperatorInfo &sub : info.sub_operators) {
      std::printf(", %s with %d columns", sub.tag.c_str(), sub.columns);
    }
    std::printf("\n");
  }
}

}  // namespace

ModelData read_model_data(QDL_Record *record) {
  ModelData data;
  QDL_TotalMassInertia(record, &data.mass, data.centre.data(), data.inertia.data());
  const bool has_modes = QDL_ModeCount(record) > 0;
  data.stiffness_entries = has_modes ? QDL_NumberOfGenStiff(record) : 0;
  data.mass_entries = has_modes ? QDL_NumberOfGenMass(record) : 0;
  data.damping_entries = QDL_NumberOfGenDamp(record);
  for (size_t i = 0; i < kInvariantNumbers.size(); ++i) {
    if (QDL_Exists(record, kFirstInvariantIndex + static_cast<int32_t>(i)) != 0) {
      data.invariants.push_back(kInvariantNumbers[i]);
    }
  }
  read_loads(record, data);
  for (int32_t index = 0; index < QDL_GetMonitorPointCount(record); ++index) {
    data.monitor_points.push_back(read_monitor_point(record, index));
  }
  for (int32_t index = 0; index < QDL_GetMatrixOperatorCount(record); ++index) {
    data.matrix_operators.push_back(read_matrix_operator(record, index));
  }
  RotorInfo rotor{};
  if (QDL_RotorDynamicsAxis(record, rotor.point.data(), rotor.direction.data()) != 0) {
    data.rotor = rotor;
  }
  return data;
}

void print_model_data(const ModelData &data) {
  print_mass(data);
  std::printf("%-12s%d stiffness, %d mass, %d damping entries\n", "matrices",
              data.stiffness_entries, data.mass_entries, data.damping_entries);
  if (!data.invariants.empty()) {
    std::printf("%-12s", "invariants");
    for (const int32_t number : data.invariants) {
      std::printf("%d ", number);
    }
    std::printf("\n");
  }
  print_loads(data);
  print_operators(data);
  if (data.rotor) {
    const auto &[point, direction] = *data.rotor;
    std::printf("%-12sthrough (%g, %g, %g) along (%g, %g, %g)\n", "rotor axis", point[0], point[1],
                point[2], direction[0], direction[1], direction[2]);
  }
}

nlohmann::ordered_json model_data_json(const ModelData &data) {
  using Json = nlohmann::ordered_json;
  Json load_cases = Json::array();
  for (const LoadCaseInfo &load_case : data.load_cases) {
    load_cases.push_back({{"label", load_case.label}, {"on_principal_axes", load_case.processed}});
  }
  Json points = Json::array();
  for (const MonitorPointInfo &point : data.monitor_points) {
    points.push_back({{"name", point.name},
                      {"label", point.label},
                      {"type", point.type},
                      {"result", point.result},
                      {"component", point.component},
                      {"operators", point.operators}});
  }
  Json operators = Json::array();
  for (const MatrixOperatorInfo &info : data.matrix_operators) {
    Json subs = Json::array();
    for (const SubOperatorInfo &sub : info.sub_operators) {
      subs.push_back({{"tag", sub.tag}, {"columns", sub.columns}});
    }
    operators.push_back({{"name", info.name}, {"rows", info.rows}, {"sub_operators", subs}});
  }
  Json all = {{"mass", data.mass},
              {"centre", data.centre},
              {"inertia", data.inertia},
              {"stiffness_entries", data.stiffness_entries},
              {"mass_entries", data.mass_entries},
              {"damping_entries", data.damping_entries},
              {"invariants", data.invariants},
              {"preload", nullptr},
              {"load_cases", load_cases},
              {"nodal_load_entries", data.nodal_load_entries},
              {"monitor_points", points},
              {"matrix_operators", operators},
              {"rotor_axis", nullptr}};
  if (data.has_preload) {
    all["preload"] = {{"on_principal_axes", data.preload_processed}};
  }
  if (data.rotor) {
    all["rotor_axis"] = {{"point", data.rotor->point}, {"direction", data.rotor->direction}};
  }
  return all;
}

}  // namespace qdlflex::cli
