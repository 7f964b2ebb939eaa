#include "record/open_models.h"

#include <algorithm>

namespace qdlflex {
namespace {

bool is_file(const Channel &channel, const FileIdentity &identity) {
  return channel.file != nullptr && channel.file->identity().same_as(identity);
}

}  // namespace

std::vector<std::unique_ptr<QDL_Record>> &open_models() {
  static std::vector<std::unique_ptr<QDL_Record>> models;
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
