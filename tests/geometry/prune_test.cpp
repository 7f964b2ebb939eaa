// Nodes that the geometry does not use are discarded with everything that belongs to them.
#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "geometry/body.h"
#include "geometry/job_fixture.h"
#include "numerics/qdlinvar.h"
#include "record/record.h"

namespace {

using namespace qdltest;
using Faces = std::vector<std::vector<std::int32_t>>;  // identifiers

// A block of 3 x 3 x 3 hexahedra: 64 nodes, 8 of them inside.
constexpr std::int32_t kSide = 4;

std::int32_t id_at(std::int32_t i, std::int32_t j, std::int32_t k) {
  return 1000 - 7 * (i + kSide * (j + kSide * k));
}

bool is_inner(std::int32_t id) {
  const std::int32_t place = (1000 - id) / 7;
  const auto inside = [](std::int32_t c) { return c > 0 && c < kSide - 1; };
  return inside(place % kSide) && inside(place / kSide % kSide) && inside(place / kSide / kSide);
}

// The quad at (a, b) of the layer c across an axis, seen from its positive end.
std::vector<std::int32_t> quad(int axis, std::int32_t a, std::int32_t b, std::int32_t c) {
  const auto node = [&](std::int32_t u, std::int32_t v) {
    return axis == 0 ? id_at(c, u, v) : axis == 1 ? id_at(v, c, u) : id_at(u, v, c);
  };
  return {node(a, b), node(a + 1, b), node(a + 1, b + 1), node(a, b + 1)};
}

// Outer faces only, or those of every hexahedron.
Faces block_faces(bool all) {
  Faces faces;
  for (int axis = 0; axis < 3; ++axis) {
    for (std::int32_t place = 0; place < (kSide - 1) * (kSide - 1); ++place) {
      for (std::int32_t c = 0; c < kSide; ++c) {
        std::vector<std::int32_t> face = quad(axis, place % 3, place / 3, c);
        const bool above = c < kSide - 1;  // an element that has it as its lower face
        if (c > 0 && (all || !above))
          faces.push_back(face);
        std::ranges::reverse(face);
        if (above && (all || c == 0))
          faces.push_back(face);
      }
    }
  }
  return faces;
}

// A number that tells where it stands, exact in single precision.
double number(std::int32_t kind, std::size_t mode, std::int32_t id, std::size_t component) {
  return 4096.0 * kind + 1024.0 * static_cast<double>(mode) + id +
         0.125 * static_cast<double>(component);
}

std::vector<Six> rows(std::int32_t kind, std::size_t mode, const std::vector<std::int32_t> &ids) {
  std::vector<Six> values(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (std::size_t c = 0; c < 6; ++c)
      values[i][c] = number(kind, mode, ids[i], c);
  }
  return values;
}

// Stress and strain nodes stand in another order than the nodes; both sets have inner nodes.
Body block() {
  Body body;
  body.mode_numbers = {3, 8};
  for (std::int32_t k = 0; k < kSide; ++k) {
    for (std::int32_t place = 0; place < kSide * kSide; ++place) {
      const std::int32_t i = place % kSide;
      const std::int32_t j = place / kSide;
      const std::int32_t id = id_at(i, j, k);
      body.nodes.push_back({id, {1.0 * i, 2.0 * j, 3.0 * k}, 0.5 + id, id % 2 == 0, Six{}});
      if (id % 2 == 0)
        body.nodes.back().inertia = {1.0 + id, 2.0, 3.0, 0.25, 0.5, 0.125};
      body.kinds[0].node_ids.push_back(id);
      if (id % 3 != 0)
        body.kinds[1].node_ids.push_back(id);
      if (id % 4 == 0)
        body.kinds[2].node_ids.insert(body.kinds[2].node_ids.begin(), id);
    }
  }
  for (std::int32_t kind = 0; kind < 3; ++kind) {
    ModeValues &data = body.kinds[static_cast<std::size_t>(kind)];
    for (std::size_t mode = 0; mode < 2; ++mode)
      data.modes.push_back(rows(kind, mode, data.node_ids));
  }
  body.pre_stress = rows(5, 0, body.kinds[1].node_ids);
  body.pre_strain = rows(6, 0, body.kinds[2].node_ids);
  return body;
}

// The body after nodes have gone, with its node sets in the order of the nodes.
Body without(const Body &body, const std::function<bool(std::int32_t)> &goes) {
  Body left = body;
  std::erase_if(left.nodes, [&](const BodyNode &node) { return goes(node.id); });
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const ModeValues &old = body.kinds[kind];
    ModeValues data{{}, std::vector<std::vector<Six>>(old.modes.size())};
    std::vector<Six> pre;
    const std::vector<Six> &old_pre = kind == 1 ? body.pre_stress : body.pre_strain;
    for (const BodyNode &node : left.nodes) {
      const auto found = std::ranges::find(old.node_ids, node.id);
      if (found == old.node_ids.end())
        continue;
      const auto slot = static_cast<std::size_t>(found - old.node_ids.begin());
      data.node_ids.push_back(node.id);
      for (std::size_t mode = 0; mode < old.modes.size(); ++mode)
        data.modes[mode].push_back(old.modes[mode][slot]);
      if (kind > 0 && !old_pre.empty())
        pre.push_back(old_pre[slot]);
    }
    left.kinds[kind] = data;
    if (kind > 0)
      (kind == 1 ? left.pre_stress : left.pre_strain) = pre;
  }
  return left;
}

Body shell() {
  return without(block(), is_inner);
}

Faces faces_of(QDL_Record *model) {
  Faces faces;
  const std::vector<std::int32_t> &list = model->faces.list;
  for (std::size_t at = 0; at < list.size(); at += static_cast<std::size_t>(list[at]) + 1) {
    std::vector<std::int32_t> face;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(list[at]); ++i)
      face.push_back(QDL_NodeID(model, list[at + i]));
    faces.push_back(face);
  }
  return faces;
}

std::vector<std::int32_t> interface_ids(QDL_Record *model) {
  std::vector<std::int32_t> ids;
  for (const std::int32_t node : model->interface_nodes)
    ids.push_back(QDL_NodeID(model, node));
  return ids;
}

class Pruning : public JobFixture {
 protected:
  QDL_Record *block_model(const Body &body, const Faces &faces) {
    QDL_Record *model = build(body, 10);
    for (const auto &face : faces)
      QDL_SetFaceList(model, static_cast<std::int32_t>(face.size()), face.data());
    clear_messages();
    return model;
  }
  QDL_Record *block_with_outer_faces() { return block_model(block(), block_faces(false)); }
};

TEST_F(Pruning, ASolidBlockKeepsItsSurface) {
  QDL_Record *stripped = block_model(block(), block_faces(true));
  QDL_StripCommonFaces(stripped);
  QDL_Record *model = block_model(block(), block_faces(true));
  QDL_Mode(model, 3, 0, std::vector<double>(3 * 64).data(), 0);
  EXPECT_EQ(QDL_RemoveInternalGeometry(model), 1);
  EXPECT_EQ(QDL_NodeCount(model), 56);
  EXPECT_EQ(faces_of(model), faces_of(stripped));
  EXPECT_EQ(faces_of(model).size(), 54U);
  ASSERT_EQ(infos.size(), 5U);
  EXPECT_EQ(infos[0], "\n Remove internal geometry of QDL\n");
  EXPECT_EQ(infos[1], "Stripping interior faces\n");
  const std::vector<std::string> words = {"Shape", "Stress", "Strain"};
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const std::string &name = model->mode_data[kind].backing.channel.file->name();
    EXPECT_EQ(infos[2 + kind], "Shortened " + words[kind] + " mode file: " + name + "\n");
  }
  expect_body(model, shell(), 0.0);
  for (std::int32_t i = 0; i < 56; ++i)
    EXPECT_EQ(QDL_NodeIndex(model, QDL_NodeID(model, i)), i);
  EXPECT_EQ(QDL_NodeIndex(model, id_at(1, 1, 2)), -1);

  clear_messages();
  EXPECT_EQ(QDL_RemoveInternalGeometry(model), 1);
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  expect_no_messages();
  EXPECT_EQ(QDL_NodeCount(model), 56);
}

TEST_F(Pruning, WorksOnFilesOfEveryEncodingInAnyUnits) {
  SampleModel sample = sample_model();
  const Body body = body_of(sample);
  sample.faces = {3, 0, 1, 3};
  sample.interface_nodes = {7};
  sample.nodal_load_cases = {{{7, 1, 2.5}}, {{23, 3, 1.5}, {101, 2, 0.5}}};
  const Body left = without(body, [](std::int32_t id) { return id == 40; });
  for (const std::int32_t code : every_version_code()) {
    if ((code & 0xff) < 60)
      continue;  // element faces, strain and nodal loads came with later versions
    SCOPED_TRACE(version_name(code));
    std::set<int> blocks = usual_blocks(code);
    blocks.erase(30);
    QDL_Record *model = open(build_file(code, blocks, sample));
    ASSERT_EQ(QDL_SetUnits(model, "KILOGRAM", "METER", "SECOND", "KNEWTON"), 1);
    EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
    // Values are copied as they are: no precision is lost in a second rounding.
    expect_body(model, scaled(left, 1e-3, 1e-3, 1.0), 1e-15);
    EXPECT_EQ(model->mode_data[0].backing.base.length, 1.0);
    EXPECT_EQ(interface_ids(model), (std::vector<std::int32_t>{7}));
    EXPECT_EQ(faces_of(model), (Faces{{101, 7, 23}}));
    EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 1, 0), 23);
    EXPECT_EQ(QDL_Double_Prec(model), precision_of(code) == Precision::kDouble ? 1 : 0);
    EXPECT_TRUE(errors.empty());
  }
}

TEST_F(Pruning, KeepsEveryNodeWhereAllAreUsed) {
  QDL_Record *model = block_with_outer_faces();
  const std::vector<std::int32_t> inner = {id_at(1, 1, 1), id_at(1, 1, 2), id_at(1, 2, 1),
                                           id_at(1, 2, 2), id_at(2, 1, 1), id_at(2, 1, 2),
                                           id_at(2, 2, 1), id_at(2, 2, 2)};
  QDL_SetFaceList(model, 8, inner.data());
  QDL_SwapNodesByID(model, inner[0], inner[1]);
  clear_messages();
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  expect_no_messages();
  EXPECT_EQ(QDL_NodeCount(model), 64);
  EXPECT_EQ(QDL_NodeID(model, QDL_NodeIndex(model, inner[0])), inner[0]);
}

TEST_F(Pruning, KeepsInterfaceNodesAndLoadedNodes) {
  QDL_Record *model = block_with_outer_faces();
  const std::int32_t attached = id_at(1, 1, 1);
  const std::int32_t loaded = id_at(2, 1, 2);
  QDL_SetInterfaceNode(model, id_at(3, 3, 3));
  QDL_SetInterfaceNode(model, attached);
  model->interface_nodes.push_back(-1);
  QDL_SetModalLoadNodal(model, 0, id_at(0, 0, 0), 1, 2.0);
  QDL_SetModalLoadNodal(model, 0, loaded, 2, 3.0);
  QDL_SetModalLoadNodal(model, 1, loaded, 3, 4.0);
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  expect_body(
      model,
      without(block(),
              [&](std::int32_t id) { return is_inner(id) && id != attached && id != loaded; }),
      0.0);
  EXPECT_EQ(interface_ids(model), (std::vector<std::int32_t>{id_at(3, 3, 3), attached, 0}));
  EXPECT_EQ(model->is_interface_node.at(static_cast<std::size_t>(QDL_NodeIndex(model, attached))),
            true);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 0, 1), loaded);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 1, 0), loaded);
}

// The interface nodes were chosen before most nodes were there, and their marks end with them.
TEST_F(Pruning, MarksNoOtherNodeAsAnInterfaceNode) {
  QDL_Record *model = QDL_Create(8, 0);
  const auto add_nodes = [&](std::int32_t first, std::int32_t last) {
    for (std::int32_t id = first; id <= last; ++id)
      QDL_SetNodeCoordinates(model, id, id, 0, 0);
  };
  add_nodes(1, 3);
  QDL_SetInterfaceNode(model, 3);
  add_nodes(4, 8);
  const std::vector<std::int32_t> face = {5, 6, 7};
  QDL_SetFaceList(model, 3, face.data());
  ASSERT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  EXPECT_EQ(QDL_SetInterfaceNode(model, 6), 1);
  EXPECT_EQ(interface_ids(model), (std::vector<std::int32_t>{3, 6}));
}

TEST_F(Pruning, LeavesLoadsOfDiscardedNodesOut) {
  const ScopedEnvironment options("ZEB_QDLWRITE_OPTIONS", "optimize_mforce_nodes");
  QDL_Record *model = block_with_outer_faces();
  QDL_SetModalLoadNodal(model, 0, id_at(1, 1, 1), 1, 2.0);
  QDL_SetModalLoadNodal(model, 0, id_at(3, 0, 3), 2, 3.0);
  QDL_SetModalLoadNodal(model, 1, id_at(2, 2, 2), 3, 4.0);
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  expect_body(model, shell(), 0.0);
  EXPECT_EQ(QDL_GetModalLoadNodalCaseCount(model), 2);
  EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 0), 1);
  EXPECT_EQ(QDL_GetModalLoadNodalNode(model, 0, 0), id_at(3, 0, 3));
  EXPECT_EQ(QDL_GetModalLoadNodalCount(model, 1), 0);
}

// What no node stands for stays as it is.
TEST_F(Pruning, LeavesForeignNumbersInFacesAlone) {
  QDL_Record *model = block_with_outer_faces();
  const std::vector<std::int32_t> odd = {3, 0, -5, 64, 0, -2, 2, 63, 1000};
  model->faces.list.insert(model->faces.list.end(), odd.begin(), odd.end());
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  EXPECT_EQ(std::vector<std::int32_t>(model->faces.list.end() - 9, model->faces.list.end()),
            (std::vector<std::int32_t>{3, 0, -5, 64, 0, -2, 2, 55, 1000}));
}

std::vector<std::string> heard;

std::int64_t hear(const char *text) {
  heard.emplace_back(text);
  return 0;
}

std::string lost_text(const std::string &nodes_of, const std::string &data) {
  return "All the nodes referenced in " + nodes_of + " have been removed. " + data +
         " data is eliminated.";
}

TEST_F(Pruning, DropsWhatOnlyInnerNodesHadAfterShorteningTheRest) {
  struct AtAnInnerNode {
    bool modes, pre_vector;
    bool any() const { return modes || pre_vector; }
  };
  const std::array<AtAnInnerNode, 2> cases[] = {{{{true, true}, {true, false}}},
                                                {{{false, true}, {false, true}}},
                                                {{{true, false}, {false, false}}}};
  const std::string words[] = {"Stress", "Strain"};
  for (const auto &kinds : cases) {
    Body body = block();
    std::vector<std::string> expected = {"Shortened Shape mode file: "};
    for (const std::size_t kind : {1U, 2U}) {
      const AtAnInnerNode &lost = kinds[kind - 1];
      if (!lost.any()) {
        expected.push_back("Shortened " + words[kind - 1] + " mode file: ");
        continue;
      }
      ModeValues &data = body.kinds[kind] = {{id_at(1, 1, 1)}, {}};
      if (lost.modes)
        data.modes = {rows(1, 0, data.node_ids), rows(1, 1, data.node_ids)};
      (kind == 1 ? body.pre_stress : body.pre_strain).assign(lost.pre_vector ? 1 : 0, Six{1, 2});
    }
    for (const std::size_t kind : {0U, 1U}) {
      if (kinds[kind].modes)
        expected.push_back(lost_text(words[kind] + " Mode", words[kind] + " Mode"));
      if (kinds[kind].pre_vector)
        expected.push_back(lost_text("Pre-" + words[kind], "Pre-" + words[kind]));
    }
    QDL_Record *model = block_model(body, block_faces(false));
    heard.clear();
    const QDL_MessageHandler handlers[3] = {hear, hear, hear};
    SetMessageHandlers(handlers);
    EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
    ASSERT_EQ(heard.size(), expected.size());
    for (std::size_t i = 0; i < heard.size(); ++i)
      EXPECT_TRUE(heard[i].starts_with(expected[i])) << heard[i];
    for (const int kind : {1, 2}) {
      if (!kinds[static_cast<std::size_t>(kind) - 1].any())
        continue;
      EXPECT_EQ(QDL_ModeNodeCount(model, kind), 0);
      EXPECT_EQ(QDL_Exists(model, (kind == 1 ? 18 : 29) - 1), 0);
      EXPECT_EQ(QDL_Exists(model, (kind == 1 ? 31 : 32) - 1), 0);
    }
  }
}

TEST_F(Pruning, DoesNothingWithoutFacesAndAfterAStripOfItsOwn) {
  QDL_Record *bare = build(block(), 64);
  clear_messages();
  EXPECT_EQ(QDL_RemoveInternalGeometry(bare), 1);
  EXPECT_EQ(QDL_NodeCount(bare), 64);
  EXPECT_EQ(errors.size(), 1U);

  QDL_Record *stripped = block_model(block(), block_faces(true));
  QDL_StripCommonFaces(stripped);
  clear_messages();
  EXPECT_EQ(QDL_RemoveInternalGeometry(stripped), 1);
  expect_no_messages();
  EXPECT_EQ(QDL_NodeCount(stripped), 64);
}

TEST_F(Pruning, KeepsInvariantsOfTheWholeBody) {
  QDL_Record *model = block_with_outer_faces();
  for (const int number : {1, 2, 3, 4, 5, 7, 8, 9})
    qdlflex::obtain_invariant(*model, number);
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  expect_invariants(model, block(), 1e-12);
  const Vec axis = {1, 2, 3};
  const Vec point = {-3, 0, 4};
  EXPECT_EQ(QDL_Mirror(model, axis.data(), point.data()), 1);
  expect_invariants(model, moved(block(), mirror(axis, point)), 1e-12);
}

// The largest displacement is at the first node, the largest of what is left at another one.
TEST_F(Pruning, LooksForMaximaAgainWhereTheirNodeIsGone) {
  Body body = block();
  for (Six &six : body.kinds[0].modes[0])
    six = {1, 0, 0, 0, 0, 0};
  body.kinds[0].modes[0][1 + 4 * (1 + 4 * 1)] = {9, 0, 0, 0, 0, 0};
  body.kinds[0].modes[0][63] = {5, 0, 0, 0, 0, 0};
  QDL_Record *model = block_model(body, block_faces(false));
  std::int32_t node = 0;
  double value = 0.0;
  ASSERT_EQ(QDL_GetMaxModeDisplacement(model, 3, &node, &value), 1);
  ASSERT_EQ(node, id_at(1, 1, 1));
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  ASSERT_EQ(QDL_GetMaxModeDisplacement(model, 3, &node, &value), 1);
  EXPECT_EQ(node, id_at(3, 3, 3));
  EXPECT_EQ(value, 5.0);
}

TEST_F(Pruning, LooksForMaximaAgainThatWereAtUnknownNodes) {
  QDL_Record *model = block_with_outer_faces();
  // As a file may have it: the first stress node and the maximum at an identifier that no node has.
  qdlflex::NodeSet &set = model->mode_data[1].nodes;
  set.slot_of_node[static_cast<std::size_t>(set.node_of_slot[0])] = -1;
  set.node_of_slot[0] = -1;
  set.foreign_ids[0] = 5;
  model->statistics.modes.resize(2);
  model->statistics.modes[0].node_ids = {id_at(3, 3, 3), 5, 5};
  model->statistics.modes[0].values = {1.0, 2.0, 3.0};
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  EXPECT_EQ(model->statistics.modes[0].node_ids[0], id_at(3, 3, 3));
  EXPECT_EQ(model->statistics.modes[0].node_ids[2], 0);
  EXPECT_EQ(model->statistics.modes[0].values[2], 0.0);
}

// Reading gives no model without memory; pruning leaves it whole.
TEST_F(Pruning, LeavesTheModelToBeASurfaceMeshWholeWhenItFails) {
  SampleModel sample = sample_model();
  sample.faces = {3, 0, 1, 3};
  const std::string name = file("body.qdl", build_file(60, {4, 14}, sample).bytes);
  int whole = 0;
  sweep(
      Door::kMemory, Persistence::kOnce,
      [&] {
        {
          const PauseFaults pause;
          QDL_Terminate();
          clear_messages();
        }
        return QDL_CreateFromQDL_SurfaceMesh(name.c_str());
      },
      [&](QDL_Record *model, bool) {
        if (errors.empty())
          EXPECT_TRUE(model != nullptr && QDL_NodeCount(model) == 3);
        else if (model != nullptr && QDL_NodeCount(model) == 4)
          ++whole;
      });
  EXPECT_GT(whole, 0);
}

// A file may have mode shapes at its first nodes only.
TEST_F(Pruning, KeepsModeShapesThatDoNotReachAllNodes) {
  SampleModel sample = sample_model();
  sample.mode_shapes.node_ids = {101, 7, 40};
  for (auto &mode : sample.mode_shapes.values)
    mode.resize(18);
  sample.faces = {3, 0, 2, 3};
  sample.interface_nodes.clear();
  const Body body = body_of(sample);
  QDL_Record *model = open(build_file(60, {4, 7, 8, 14}, sample));
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  EXPECT_EQ(QDL_NodeCount(model), 3);
  ASSERT_EQ(QDL_ModeNodeCount(model, 0), 2);
  std::vector<double> values(6);
  ASSERT_EQ(QDL_Mode(model, 9, 0, values.data(), 0), 1);
  const Six &first = body.kinds[0].modes[1][0];
  const Six &second = body.kinds[0].modes[1][2];
  EXPECT_EQ(values,
            (std::vector<double>{first[0], first[1], first[2], second[0], second[1], second[2]}));
}

TEST_F(Pruning, LosesModeShapesThatCannotBeRewrittenOnRequestOnly) {
  QDL_Record *model = block_with_outer_faces();
  const ScopedEnvironment nowhere("TMP", "/nonexistent/folder");
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 0);
  EXPECT_EQ(errors.size(), 1U);
  expect_body(model, block(), 0.0);

  for (const int block_id : {18, 29, 31, 32})
    model->summary[static_cast<std::size_t>(block_id - 2)] = 0;
  clear_messages();
  const ScopedEnvironment request("OXR_A2A_BDF2SHL_PID", "");
  EXPECT_EQ(QDL_DiscardUnreferencedNodes(model), 1);
  EXPECT_EQ(errors.size(), 1U);
  EXPECT_EQ(QDL_NodeCount(model), 56);
  clear_messages();
  std::vector<double> values(3 * 56);
  EXPECT_EQ(QDL_Mode(model, 3, 0, values.data(), 0), 0);
  expect_only_error("Problem reading mode shape 3");
}

TEST_F(Pruning, ChangesNothingWhenItFails) {
  sweep_job(
      [&] {
        QDL_Record *model = block_with_outer_faces();
        QDL_SetInterfaceNode(model, id_at(3, 0, 0));
        return model;
      },
      QDL_DiscardUnreferencedNodes,
      [](QDL_Record *model, bool done) {
        expect_body(model, done ? shell() : block(), 0.0);
        EXPECT_EQ(faces_of(model), block_faces(false));
        EXPECT_EQ(interface_ids(model), (std::vector<std::int32_t>{id_at(3, 0, 0)}));
      });
}

}  // namespace
