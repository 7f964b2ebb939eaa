#include <algorithm>
#include <cstring>

#include <qdlflex/qdlflex.h>

#include "record/record.h"
#include "support/allocate.h"
#include "support/boundary.h"
#include "support/item_at.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdldata";

ModalLoadCase *modal_case(QDL_Record *model, std::int32_t index) {
  return model == nullptr ? nullptr : item_at(model->modal_loads, index);
}

NodalLoadCase *nodal_case(QDL_Record *model, std::int32_t index) {
  return model == nullptr ? nullptr : item_at(model->nodal_loads, index);
}

/// A nodal load, all zeros (and no node) where there is none.
NodalLoadEntry nodal_load(QDL_Record *model, std::int32_t load_case, std::int32_t entry) {
  NodalLoadCase *nodal = nodal_case(model, load_case);
  const NodalLoadEntry *found = nodal == nullptr ? nullptr : item_at(nodal->entries, entry);
  return found == nullptr ? NodalLoadEntry{} : *found;
}

/// A new array of one value per mode: values beyond the modes are left out, missing ones are zero.
/// A null `values` gives a null array.
double *per_mode_array(const QDL_Record *model, const std::vector<double> *values,
                       std::int32_t *count) {
  if (count != nullptr)
    *count = 0;
  if (values == nullptr)
    return nullptr;
  return guarded(kArea, static_cast<double *>(nullptr), [&] {
    const std::size_t modes = model->mode_numbers.size();
    auto array = caller_array<double>(modes);
    const std::size_t common = std::min(modes, values->size());
    std::copy_n(values->data(), common, array.get());
    std::fill_n(array.get() + common, modes - common, 0.0);
    if (count != nullptr)
      *count = mode_count(*model);
    return array.release();
  });
}

}  // namespace

double *QDL_GetModalPreload(QDL_Record *model, int32_t *count) {
  const bool exists = QDL_ModalPreloadExist(model) != 0;
  return per_mode_array(model, exists ? &model->preload.values : nullptr, count);
}

int32_t QDL_ModalPreloadExist(QDL_Record *model) {
  return model != nullptr && model->preload.present ? 1 : 0;
}

int32_t QDL_ModalPreloadProcessed(QDL_Record *model) {
  return QDL_ModalPreloadExist(model) != 0 ? model->preload.processed : 0;
}

int32_t QDL_SetModalPreloadProcessed(QDL_Record *model, int32_t processed) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    record.preload.processed = processed != 0 ? 1 : 0;
    return 1;
  });
}

int32_t QDL_GetModalLoadCaseCount(QDL_Record *model) {
  return model == nullptr ? 0 : static_cast<int32_t>(model->modal_loads.size());
}

double *QDL_GetModalLoad(QDL_Record *model, int32_t loadCase, int32_t *count) {
  const ModalLoadCase *modal = modal_case(model, loadCase);
  return per_mode_array(model, modal == nullptr ? nullptr : &modal->values, count);
}

int32_t QDL_GetModalLoadCaseLabel(QDL_Record *model, int32_t loadCase, char *label) {
  const ModalLoadCase *modal = modal_case(model, loadCase);
  if (modal == nullptr || label == nullptr)
    return 0;
  const std::size_t width = modal->label.size();
  const std::size_t length = ::strnlen(modal->label.data(), width);
  std::copy_n(modal->label.data(), length, label);
  std::fill_n(label + length, width - length, '\0');
  return 1;
}

int32_t QDL_ModalLoadProcessed(QDL_Record *model, int32_t loadCase) {
  const ModalLoadCase *modal = modal_case(model, loadCase);
  return modal == nullptr ? 0 : modal->processed;
}

int32_t QDL_SetModalLoadProcessed(QDL_Record *model, int32_t loadCase, int32_t processed) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    ModalLoadCase *modal = item_at(record.modal_loads, loadCase);
    if (modal == nullptr)
      return 0;
    modal->processed = processed != 0 ? 1 : 0;
    return 1;
  });
}

int32_t QDL_GetModalLoadNodalCaseCount(QDL_Record *model) {
  return model == nullptr ? 0 : static_cast<int32_t>(model->nodal_loads.size());
}

int32_t QDL_GetModalLoadNodalCount(QDL_Record *model, int32_t loadCase) {
  const NodalLoadCase *nodal = nodal_case(model, loadCase);
  return nodal == nullptr ? 0 : static_cast<int32_t>(nodal->entries.size());
}

int32_t QDL_GetModalLoadNodalNode(QDL_Record *model, int32_t loadCase, int32_t entry) {
  return QDL_NodeID(model, nodal_load(model, loadCase, entry).node);
}

int32_t QDL_GetModalLoadNodalCoord(QDL_Record *model, int32_t loadCase, int32_t entry) {
  return nodal_load(model, loadCase, entry).coordinate;
}

double QDL_GetModalLoadNodalLoad(QDL_Record *model, int32_t loadCase, int32_t entry) {
  return nodal_load(model, loadCase, entry).value;
}
