#pragma once

#include <memory>
#include <vector>

#include "record/record.h"

namespace qdlflex {

/// The open models in order of creation. The process owns them: what is left at its end is closed
/// then and its temporary files are removed.
std::vector<std::unique_ptr<QDL_Record>> &open_models();

/// Whether the file is the source or a temporary file of any open model.
bool in_use_by_open_model(const FileIdentity &identity);

}  // namespace qdlflex
