// Rewriting mode data: a body is turned, or cut down to its surface.

#include <algorithm>
#include <cstdio>
#include <vector>

#include "bench/sample.h"

namespace qdlflex::bench {
namespace {

constexpr std::int32_t kNodes = 100'000;
constexpr std::int32_t kModes = 20;

/// One sequential read and one sequential write of part of a file, in pieces of a mebibyte.
void copy_plain(const std::string &from, std::size_t read_bytes, const std::string &to,
                std::size_t written_bytes) {
  std::vector<char> piece(1 << 20);
  std::FILE *const in = std::fopen(from.c_str(), "rb");
  std::FILE *const out = std::fopen(to.c_str(), "wb");
  require(in != nullptr && out != nullptr, "the files of the plain copy");
  std::size_t read = 0;
  std::size_t written = 0;
  while (read < read_bytes) {
    const std::size_t wanted = std::min(piece.size(), read_bytes - read);
    require(std::fread(piece.data(), 1, wanted, in) == wanted, "a plain read");
    read += wanted;
    const std::size_t left = std::min(wanted, written_bytes - written);
    require(std::fwrite(piece.data(), 1, left, out) == left, "a plain write");
    written += left;
  }
  std::fclose(in);
  std::fclose(out);
  std::remove(to.c_str());
}

/// A chain of triangles over every other node.
void set_faces(QDL_Record *model) {
  for (std::int32_t node = 1; node + 4 <= kNodes; node += 4) {
    const std::int32_t face[] = {node, node + 2, node + 4};
    require(QDL_SetFaceList(model, 3, face) == 1, "a face");
  }
}

/// Every round but the first turns what the one before has written. Values in single precision are
/// widened and rounded on the way, which a copy of half the bytes has no share in.
void rotate(benchmark::State &state, const char *options, const char *job, double at_least) {
  const Folder folder;
  const std::string file = folder.file("body.qdl");
  write_sample(file, kNodes, kModes, options);
  const Model model(QDL_CreateFromQDL(file.c_str()));
  const std::size_t real_bytes = QDL_Double_Prec(model) == 1 ? sizeof(double) : sizeof(float);
  const std::size_t bytes = 6 * real_bytes * kNodes * kModes;
  const double axis[] = {1.0, 2.0, -1.0};
  double before[3];
  double after[3];
  QDL_NodeCoordinates(model, 7, before);
  compare(
      state, {job, "a plain copy of the same bytes", at_least},
      [&] { require(QDL_Rotate_Origin(model, axis, 10.0, nullptr) == 1, "the rotation"); },
      [&] { copy_plain(file, bytes, folder.file("plain"), bytes); });
  QDL_NodeCoordinates(model, 7, after);
  require(before[0] != after[0], "the body is turned");
}

void prune(benchmark::State &state) {
  const Folder folder;
  const std::string file = folder.file("body.qdl");
  {
    const Model model(QDL_Create(kNodes, kModes));
    set_nodes(model, kNodes);
    set_modes(model, kNodes, kModes);
    set_faces(model);
    write_model(model, file, "no_ortho no_xdr");
  }
  const std::size_t bytes = 6 * sizeof(double) * kNodes * kModes;
  // A model is pruned once; opening it anew is part of the job.
  compare(
      state, {"open a file and discard half of its nodes", "a plain copy of the same bytes", 0.5},
      [&] {
        const Model model(QDL_CreateFromQDL(file.c_str()));
        require(QDL_DiscardUnreferencedNodes(model) == 1, "the pruning");
        require(QDL_NodeCount(model) < kNodes * 3 / 5, "nodes are gone");
      },
      [&] { copy_plain(file, bytes, folder.file("plain"), bytes / 2); });
}

const bool registered = [] {
  register_row("rotate_native", [](benchmark::State &state) {
    rotate(state, "no_ortho no_xdr", "turn a body, native double", 0.5);
  });
  register_row("rotate_single", [](benchmark::State &state) {
    rotate(state, "no_ortho single", "turn a body, single precision", 0.4);
  });
  register_row("prune", prune);
  return true;
}();

}  // namespace
}  // namespace qdlflex::bench
