#include "record/open_models.h"

#include <algorithm>

namespace qdlflex {
namespace {

bool is_file(const Channel &channel, const FileIdentity &identity) {
  return channel.file != nullptr && channel.file->identity().same_as(identity);
}

}  // namespace

using Models = std::vector<std::unique_ptr<QDL_Record>>;

/// Ends what is left at the end of the process.
struct ModelsAtExit {
  Models &models;
  ~ModelsAtExit() { models.clear(); }
};

Models &open_models() {
  // The list itself is never destroyed, as the host may still call us while it ends.
  static Models &models = *new Models;
  static const ModelsAtExit at_exit{models};
  return models;
}

bool in_use_by_open_model(const FileIdentity &identity) {
  return std::ranges::any_of(open_models(), [&](const auto &model) {
    return is_file(model->source, identity) ||
           std::ranges::any_of(model->mode_data, [&](const ModeData &data) {
             return is_file(data.backing.channel, identity);
           });
  });
}

}  // namespace qdlflex
