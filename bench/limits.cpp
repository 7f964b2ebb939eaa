// Measures time and memory of whole jobs near the limits: a body of a million nodes whose modes
// take more than 2^31 bytes, and one of a thousand modes. Wants 10 GB in the folder of temporary
// files.
//
//   limits       prints the rows of the table in docs/limits.md

#include <malloc.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/peak_memory.h"
#include "bench/sample.h"
#include "bench/surface.h"

namespace {

using namespace qdlflex::bench;

// A job returns whether it worked. Pages of mapped temporary files count as memory here, though the
// system takes them back when it wants them.
template <class Job>
void measure(const std::string &name, const Job &job) {
  ::malloc_trim(0);  // what earlier jobs have released must not serve this one uncounted
  double seconds = 0.0;
  const double mebibytes = peak_memory([&] {
    const auto start = std::chrono::steady_clock::now();
    require(job(), name.c_str());
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  });
  std::printf("| %s | %.2f | %.0f |\n", name.c_str(), seconds, mebibytes);
  std::fflush(stdout);
}

void set_masses(QDL_Record *model, std::int32_t nodes) {
  for (std::int32_t node = 1; node <= nodes; ++node)
    QDL_SetNodalMass(model, node, 1e-6);
}

bool holds_component(QDL_Record *model, std::int32_t mode, std::int32_t node) {
  double values[3];
  return QDL_ModeByNode(model, mode, QDL_MODE_SHAPE, node - 1, values, 0) == 1 &&
         values[0] == component(mode, node, 0) && values[2] == component(mode, node, 2);
}

// Its faces are a sheet of quadrilaterals, so that there are more nodes than modes of them.
void build(const std::string &path, std::int32_t side, std::int32_t modes) {
  const QuadSurface sheet = wavy_sheet(side);
  const auto nodes = static_cast<std::int32_t>(sheet.nodes.size());
  const Model model(QDL_Create(nodes, modes));
  measure("set nodes and faces", [&] {
    set_surface(model, sheet);
    set_masses(model, nodes);
    return QDL_NodeCount(model) == nodes;
  });
  measure("set the modes node by node", [&] {
    set_modes(model, nodes, modes);
    return QDL_ModeCount(model) == modes;
  });
  measure("write", [&] {
    write_model(model, path, "no_ortho");
    return true;
  });
}

void use(const std::string &path, std::int32_t modes) {
  QDL_Record *opened = nullptr;
  measure("open", [&] { return (opened = QDL_CreateFromQDL(path.c_str())) != nullptr; });
  const Model model(opened);
  const std::int32_t nodes = QDL_NodeCount(model);
  require(holds_component(model, modes, nodes), "the last mode has its values at the last node");
  std::vector<double> values(6 * static_cast<std::size_t>(nodes));
  measure("fetch every mode", [&] {
    for (std::int32_t mode = 1; mode <= modes; ++mode) {
      if (QDL_Read_Mode_Double(model, mode, QDL_MODE_SHAPE, values.data(), 0) != 1)
        return false;
    }
    return values[0] == component(modes, 1, 0);
  });
  measure("full invariants", [&] {
    QDL_FullComputeInvars(model);
    return QDL_ModeCount(model) == modes;
  });
  const double axis[] = {0.0, 0.6, 0.8};
  measure("turn the body", [&] { return QDL_Rotate_Origin(model, axis, 30.0, nullptr) == 1; });
  measure("write with orthonormal modes", [&] {
    write_model(model, path + ".ortho", "");
    return true;
  });
}

void simplify(const std::string &path) {
  const auto job = [&path](const char *name, const auto &change) {
    const Model model(QDL_CreateFromQDL(path.c_str()));
    measure(name, [&] { return change(model) == 1; });
  };
  job("remove internal geometry", QDL_RemoveInternalGeometry);
  job("free edges", [](QDL_Record *model) { return QDL_GenerateFreeEdges(model); });
  job("coarsen", [](QDL_Record *model) { return QDL_TrimGeometry(model, "0.02,10,1"); });
  job("discard unreferenced nodes", QDL_DiscardUnreferencedNodes);
}

void body(std::int32_t side, std::int32_t modes, bool with_surface) {
  const Folder folder;
  const std::string path = folder.file("body.qdl");
  std::printf("\n%d nodes, %d modes\n", (side + 1) * (side + 1), modes);
  build(path, side, modes);
  use(path, modes);
  if (with_surface)
    simplify(path);
}

}  // namespace

int main() {
  body(1000, 50, true);
  body(100, 1000, false);
  return 0;
}
