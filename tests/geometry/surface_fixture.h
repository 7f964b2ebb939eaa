// For tests of what is done with the faces and places of nodes.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <string>
#include <vector>

#include "geometry/job_fixture.h"
#include "record/record.h"

namespace qdltest {

using Ints = std::vector<std::int32_t>;

class SurfaceFixture : public JobFixture {
 protected:
  // A model with the nodes 1 to `nodes` along a line.
  static QDL_Record *model_of(int nodes) {
    QDL_Record *model = QDL_Create(nodes, 0);
    for (int id = 1; id <= nodes; ++id)
      QDL_SetNodeCoordinates(model, id, id, 0.0, 0.0);
    return model;
  }

  // Lists that only a file or a sketch can bring in, too.
  static void set_faces(QDL_Record *model, const std::vector<Ints> &faces) {
    model->faces = {{}, static_cast<std::int32_t>(faces.size()), true};
    for (const Ints &face : faces)
      model->faces.list.insert(model->faces.list.end(), face.begin(), face.end());
  }

  static QDL_Record *model_with(int nodes, const std::vector<Ints> &faces) {
    QDL_Record *model = model_of(nodes);
    set_faces(model, faces);
    return model;
  }

  // Every face with its count.
  static std::vector<Ints> faces_of(QDL_Record *model) {
    std::int32_t count = 0;
    std::int32_t length = 0;
    QDL_FaceListSize(model, &count, &length);
    Ints list(static_cast<std::size_t>(length));
    QDL_ElementFaces(model, list.data());
    std::vector<Ints> faces;
    for (auto at = list.begin(); at < list.end();) {
      const auto end = at + 1 + std::max(*at, 0);
      faces.emplace_back(at, end);
      at = end;
    }
    EXPECT_EQ(count, static_cast<std::int32_t>(faces.size()));
    return faces;
  }

  // What a function returned as a new array, which is released.
  static Ints taken(std::int32_t *array, std::int32_t count) {
    const Ints values(array, array + count);
    QDL_FreeMemory(array);
    return values;
  }
};

}  // namespace qdltest
