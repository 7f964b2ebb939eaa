#include "support/surface.h"

#include <algorithm>

#include "record/record.h"

namespace qdlfuzz {

namespace {

void add_sheet(Surface &surface, std::int32_t columns, std::int32_t rows) {
  for (std::int32_t i = 0; i < columns * rows; ++i)
    surface.coordinates.insert(surface.coordinates.end(),
                               {1.0 * (i % columns), 1.0 * (i / columns), 0.0});
  for (std::int32_t row = 0; row + 1 < rows; ++row) {
    for (std::int32_t column = 0; column + 1 < columns; ++column) {
      const std::int32_t corner = row * columns + column;
      surface.faces.push_back({corner, corner + 1, corner + columns + 1, corner + columns});
    }
  }
}

std::int32_t nodes(const Surface &surface) {
  return static_cast<std::int32_t>(surface.coordinates.size() / 3);
}

void change(Surface &surface, Bytes &in) {
  const std::int32_t count = nodes(surface);
  switch (in.small(0, 5)) {
    case 0:
      surface.coordinates.insert(surface.coordinates.end(), {in.real(), in.real(), in.real()});
      break;
    case 1:
      if (count > 0)
        surface.coordinates[static_cast<std::size_t>(in.small(0, 3 * count - 1))] = in.real();
      break;
    case 2:
      surface.interface_nodes.push_back(in.small(-1, count));
      break;
    case 3:
      if (!surface.faces.empty())
        surface.faces.erase(surface.faces.begin() + in.byte() % surface.faces.size());
      break;
    default: {
      std::vector<std::int32_t> face(static_cast<std::size_t>(in.small(0, 6)));
      std::ranges::generate(face, [&] { return in.small(-1, count); });
      surface.faces.push_back(face);
    }
  }
}

}  // namespace

Surface take_surface(Bytes &in) {
  Surface surface;
  const std::int32_t columns = in.small(0, 7);
  add_sheet(surface, columns, in.small(0, 7));
  for (std::int32_t changes = in.byte(); changes > 0 && !in.empty(); --changes)
    change(surface, in);
  return surface;
}

std::vector<std::int32_t> face_list(const Surface &surface) {
  std::vector<std::int32_t> list;
  for (const auto &face : surface.faces) {
    list.push_back(static_cast<std::int32_t>(face.size()));
    list.insert(list.end(), face.begin(), face.end());
  }
  return list;
}

std::int32_t identifier(const Surface &surface, std::int32_t index) {
  return index >= 0 && index < nodes(surface) ? 1000 - 3 * index : 0;
}

QDL_Record *make_model(const Surface &surface) {
  QDL_Record *const model = QDL_Create(0, 0);
  require(model != nullptr, "no model");
  for (std::int32_t i = 0; i < nodes(surface); ++i) {
    const double *xyz = &surface.coordinates[3 * static_cast<std::size_t>(i)];
    QDL_SetNodeCoordinates(model, identifier(surface, i), xyz[0], xyz[1], xyz[2]);
  }
  for (const std::int32_t node : surface.interface_nodes)
    QDL_SetInterfaceNode(model, identifier(surface, node));
  // The setters would not let every face through.
  model->faces = {face_list(surface), static_cast<std::int32_t>(surface.faces.size()), true};
  return model;
}

std::vector<std::vector<std::int32_t>> faces_of(QDL_Record *model) {
  std::int32_t count = 0;
  std::int32_t length = 0;
  QDL_FaceListSize(model, &count, &length);
  std::vector<std::int32_t> list(static_cast<std::size_t>(length));
  QDL_ElementFaces(model, list.data());
  std::vector<std::vector<std::int32_t>> faces;
  for (std::size_t at = 0; at < list.size();) {
    const auto nodes = static_cast<std::size_t>(std::max(list[at], 0));
    ++at;
    require(nodes <= list.size() - at, "a face is longer than the face list");
    faces.emplace_back(list.begin() + static_cast<std::ptrdiff_t>(at),
                       list.begin() + static_cast<std::ptrdiff_t>(at + nodes));
    at += nodes;
  }
  require(static_cast<std::int32_t>(faces.size()) == count, "the number of faces is another");
  return faces;
}

}  // namespace qdlfuzz
