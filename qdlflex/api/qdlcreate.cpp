#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <memory>

#include "io/qdlread.h"
#include "record/open_models.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdlcreate";

/// The first model read from a file of exactly this name, whole or as a surface mesh.
QDL_Record *find_by_name(const char *name, bool surface_mesh) {
  const auto &models = open_models();
  const auto found = std::ranges::find_if(models, [&](const auto &model) {
    return model->surface_mesh == surface_mesh && !model->file_name.empty() &&
           model->file_name == name;
  });
  return found == models.end() ? nullptr : found->get();
}

/// Compares pointers only: a handle that is no longer valid may be asked for.
auto find_handle(const QDL_Record *handle) {
  return std::ranges::find_if(open_models(),
                              [&](const auto &model) { return model.get() == handle; });
}

QDL_Record *append(std::unique_ptr<QDL_Record> record) {
  return open_models().emplace_back(std::move(record)).get();
}

/// The model of a file: one that is open already, else a new one.
QDL_Record *open_model(const char *name, bool surface_mesh) {
  if (name == nullptr)
    return nullptr;
  return guarded(kArea, static_cast<QDL_Record *>(nullptr), [&]() -> QDL_Record * {
    if (QDL_Record *open = find_by_name(name, surface_mesh))
      return open;
    std::shared_ptr<File> file = File::open(name, File::Access::kRead);
    if (file == nullptr)
      return nullptr;
    auto record = std::make_unique<QDL_Record>();
    if (!read_file(*record, std::move(file)))
      return nullptr;
    // Without memory for it the model stays whole, which has been reported.
    if (surface_mesh)
      QDL_RemoveInternalGeometry(record.get());
    record->surface_mesh = surface_mesh;
    return append(std::move(record));
  });
}

/// Ends a model: its files are closed and its temporary ones removed.
void destroy(QDL_Record *model) {
  const auto found = find_handle(model);
  if (found != open_models().end())
    open_models().erase(found);
}

}  // namespace

QDL_Record *QDL_Create(int32_t plannedNodes, int32_t plannedModes) {
  return guarded(kArea, static_cast<QDL_Record *>(nullptr), [&] {
    auto record = std::make_unique<QDL_Record>();
    record->planned_nodes = std::max(plannedNodes, 0);
    record->planned_modes = std::max(plannedModes, 0);
    return append(std::move(record));
  });
}

QDL_Record *QDL_CreateFromQDL(const char *fileName) {
  return open_model(fileName, false);
}

QDL_Record *QDL_CreateFromQDL_SurfaceMesh(const char *fileName) {
  return open_model(fileName, true);
}

QDL_Record *QDL_FindQDL(const char *fileName) {
  return fileName == nullptr ? nullptr : find_by_name(fileName, false);
}

int32_t QDL_IsValid(const QDL_Record *model) {
  return find_handle(model) != open_models().end() ? 1 : 0;
}

int32_t QDL_DeReference(QDL_Record *model) {
  if (QDL_IsValid(model) == 0)
    return 0;
  if (model->reference_count != 1)
    return --model->reference_count;
  destroy(model);
  return 0;
}

void QDL_UnLink(QDL_Record *model) {
  destroy(model);
}

void QDL_Terminate(void) {
  // One by one from the first, as each may be looked up while it is being ended.
  while (!open_models().empty())
    open_models().erase(open_models().begin());
}

void QDL_Destroy(QDL_Record *) {}

void QDL_FreeMemory(void *pointer) {
  std::free(pointer);
}
