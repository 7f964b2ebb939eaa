#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <qdlflex/qdlflex.h>

#include "format/version.h"
#include "record/faces.h"
#include "record/record.h"
#include "support/boundary.h"

using namespace qdlflex;

namespace {

constexpr const char *kArea = "qdldata";

class Box {
 public:
  void include(const Vector3 &point) {
    for (std::size_t axis = 0; axis < point.size(); ++axis) {
      low_[axis] = std::min(low_[axis], point[axis]);
      high_[axis] = std::max(high_[axis], point[axis]);
    }
  }

  double diagonal() const {
    return std::hypot(high_[0] - low_[0], high_[1] - low_[1], high_[2] - low_[2]);
  }

 private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Vector3 low_{kInfinity, kInfinity, kInfinity};
  Vector3 high_{-kInfinity, -kInfinity, -kInfinity};
};

/// The first node counts whether or not a face uses it.
double measure_body(const QDL_Record &record) {
  Box box;
  box.include(record.nodes.front().xyz);
  for_each_face(record.faces, [&](std::span<const std::int32_t> face) {
    for (const std::int32_t node : face) {
      box.include(is_node_index(record, node) ? record.nodes[static_cast<std::size_t>(node)].xyz
                                              : Vector3{});
    }
  });
  return box.diagonal();
}

template <std::size_t width>
void copy_field(const std::array<char, width> &field, char *buffer) {
  if (buffer != nullptr)
    std::ranges::copy(field, buffer);
}

void cut_trailing_newline(char *text, std::size_t width) {
  const std::size_t length = ::strnlen(text, width);
  if (length > 0 && text[length - 1] == '\n')
    text[length - 1] = '\0';
}

}  // namespace

double QDL_BodySize(QDL_Record *model) {
  if (model == nullptr || model->nodes.empty())
    return 0.0;
  if (model->body_size == 0.0)
    model->body_size = measure_body(*model);
  return model->body_size;
}

int32_t QDL_TotalMassInertia(QDL_Record *model, double *mass, double *centre, double *inertia) {
  const bool known = model != nullptr && centre != nullptr && inertia != nullptr &&
                     QDL_CalculateGlobalMassFromNodeMass(model) != 0;
  const GlobalMass properties = known ? model->global_mass : GlobalMass{};
  if (mass != nullptr)
    *mass = properties.mass;
  if (centre != nullptr)
    std::ranges::copy(properties.centre, centre);
  if (inertia != nullptr)
    std::ranges::copy(properties.inertia, inertia);
  return known ? 1 : 0;
}

int32_t QDL_Header(QDL_Record *model, char *title, char *date, char *inputName, char *inputType,
                   char *comment1, char *comment2, char *comment3) {
  if (model == nullptr)
    return 0;
  const Header &header = model->header;
  copy_field(header.title, title);
  copy_field(header.date, date);
  if (date != nullptr)
    cut_trailing_newline(date, header.date.size());
  copy_field(header.input_name, inputName);
  copy_field(header.input_type, inputType);
  copy_field(header.comments[0], comment1);
  copy_field(header.comments[1], comment2);
  copy_field(header.comments[2], comment3);
  return 1;
}

int32_t QDL_FaceListSize(QDL_Record *model, int32_t *faceCount, int32_t *listLength) {
  const FaceList none;
  const FaceList &faces = model == nullptr ? none : model->faces;
  if (faceCount != nullptr)
    *faceCount = faces.count;
  if (listLength != nullptr)
    *listLength = static_cast<int32_t>(faces.list.size());
  return model == nullptr ? 0 : 1;
}

int32_t QDL_ElementFaces(QDL_Record *model, int32_t *list) {
  if (model == nullptr || !model->faces.present || list == nullptr)
    return 0;
  std::ranges::copy(model->faces.list, list);
  return 1;
}

int32_t QDL_Version(QDL_Record *model) {
  return model == nullptr ? 0 : static_cast<int32_t>(version_number(model->version_code));
}

int32_t QDL_SetVersion(QDL_Record *model, int32_t version) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    const std::uint32_t flags = record.version_code & ~std::uint32_t{0xFF};
    record.version_code = kept_version_code(flags | version_number(static_cast<uint32_t>(version)));
    return 1;
  });
}

int32_t QDL_Double_Prec(QDL_Record *model) {
  return model != nullptr && model->mode_data[kModeShapes].backing.channel.double_precision ? 1 : 0;
}

int32_t QDL_DiscreteMethod(QDL_Record * /*model*/) {
  return 0;
}

int32_t QDL_GetFlexType(QDL_Record *model) {
  return model != nullptr && present(*model, Block::kModeShapes) ? 1 : 0;
}
