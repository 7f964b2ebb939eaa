#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <qdlflex/qdlflex.h>

#include "build/nodes_and_modes.h"
#include "record/derived.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

bool is_legal_case(std::int32_t load_case) {
  if (load_case >= 0)
    return true;
  QDL_Error(
      "The load case index %d is illegal.\n"
      "The load case index must be non-negative.",
      load_case);
  return false;
}

/// A case, after all cases up to it have been made. Either all of them are made or none.
ModalLoadCase &modal_case(QDL_Record &record, std::int32_t load_case) {
  const auto index = static_cast<std::size_t>(load_case);
  std::vector<ModalLoadCase> &cases = record.modal_loads;
  const std::size_t existing = cases.size();
  if (index >= existing)
    cases.resize(index + 1);
  for (std::size_t i = existing; i < cases.size(); ++i)
    std::snprintf(cases[i].label.data(), cases[i].label.size(), "Load Case %zu", i + 1);
  return cases[index];
}

NodalLoadCase &nodal_case(QDL_Record &record, std::int32_t load_case) {
  const auto index = static_cast<std::size_t>(load_case);
  if (index >= record.nodal_loads.size())
    record.nodal_loads.resize(index + 1);
  return record.nodal_loads[index];
}

/// Lets a vector of modal values reach the present modes; modes that it lacked have zeros.
void reach_modes(std::vector<double> &values, const QDL_Record &record) {
  if (values.size() < record.mode_numbers.size())
    values.resize(record.mode_numbers.size());
}

bool set_modal_load(QDL_Record &record, std::int32_t load_case, std::int32_t mode_number,
                    double value) {
  if (!is_legal_case(load_case))
    return false;
  const std::int32_t mode = find_or_add_mode(record, mode_number);
  if (mode == kNoIndex)
    return false;
  std::vector<double> &values = modal_case(record, load_case).values;
  reach_modes(values, record);
  values[static_cast<std::size_t>(mode)] = value;
  raise(record, Block::kModalLoads);
  return true;
}

/// `text` is not empty.
void store_label(ModalLoadCase &modal, const char *text) {
  const std::size_t longest = modal.label.size() - 1;
  const std::size_t length = std::strlen(text);
  if (length > longest) {
    QDL_Warning("Modal load label too big: max size %ld, specified size %ld.  Truncating label.",
                static_cast<long>(longest), static_cast<long>(length));
  }
  modal.label.fill('\0');
  std::copy_n(text, std::min(length, longest), modal.label.begin());
}

bool set_label(QDL_Record &record, std::int32_t load_case, const char *text) {
  if (!is_legal_case(load_case))
    return false;
  ModalLoadCase &modal = modal_case(record, load_case);
  if (text != nullptr && text[0] != '\0')
    store_label(modal, text);
  else
    store_label(modal, std::to_string(std::int64_t{load_case} + 1).c_str());
  return true;
}

bool set_nodal_load(QDL_Record &record, std::int32_t load_case, std::int32_t node_id,
                    std::int32_t coordinate, double value) {
  if (!is_legal_case(load_case))
    return false;
  if (coordinate < 1 || coordinate > kComponents) {
    QDL_Error(
        "The coordinate number %d is illegal.\n"
        "The coordinate number must be 1 to 6.",
        coordinate);
    return false;
  }
  const std::int32_t node = find_or_add_node(record, node_id);
  nodal_case(record, load_case).entries.push_back({node, coordinate, value});
  note_nodal_loads_changed(record);
  raise(record, Block::kModalLoadNodal);
  return true;
}

bool set_preload(QDL_Record &record, std::int32_t mode_number, double value) {
  const std::int32_t mode = find_or_add_mode(record, mode_number);
  if (mode == kNoIndex)
    return false;
  ModalPreload &preload = record.preload;
  reach_modes(preload.values, record);
  if (!preload.present) {
    preload.present = true;
    preload.processed = 0;
  }
  preload.values[static_cast<std::size_t>(mode)] = value;
  raise(record, Block::kModalPreload);
  return true;
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetModalLoad(QDL_Record *model, int32_t loadCase, int32_t modeNumber, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return set_modal_load(record, loadCase, modeNumber, value) ? 1 : 0;
  });
}

int32_t QDL_SetModalLoadLabel(QDL_Record *model, int32_t loadCase, const char *label) {
  return with_model(model, kArea, 0,
                    [&](QDL_Record &record) { return set_label(record, loadCase, label) ? 1 : 0; });
}

int32_t QDL_SetModalLoadNodal(QDL_Record *model, int32_t loadCase, int32_t nodeId,
                              int32_t coordinate, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return set_nodal_load(record, loadCase, nodeId, coordinate, value) ? 1 : 0;
  });
}

int32_t QDL_SetModalPreload(QDL_Record *model, int32_t modeNumber, double value) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    return set_preload(record, modeNumber, value) ? 1 : 0;
  });
}
