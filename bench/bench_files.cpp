// Opening and writing files.

#include <vector>

#include "bench/sample.h"

namespace qdlflex::bench {
namespace {

constexpr std::int32_t kNodes = 20'000;
constexpr std::int32_t kModes = 50;

/// The job on the large file is ours and that on the small one the peer: a time that does not
/// depend on the mode data gives a ratio near 1.
void open_time(benchmark::State &state) {
  const Folder folder;
  const std::string small = folder.file("small.qdl");
  const std::string large = folder.file("large.qdl");
  write_sample(small, kNodes, 2, "no_ortho");
  write_sample(large, kNodes, 2 * kModes, "no_ortho");
  const auto open = [](const std::string &path) {
    const Model model(QDL_CreateFromQDL(path.c_str()));
  };
  compare(
      state, {"open a file with 50 times the mode data", "open the small file", 0.6},
      [&] { open(large); }, [&] { open(small); });
}

void write_beside_plain(benchmark::State &state, const char *options, const char *job) {
  const Folder folder;
  const std::string ours = folder.file("ours.qdl");
  const std::string plain = folder.file("plain.bin");
  const Model model(QDL_Create(kNodes, kModes));
  set_nodes(model, kNodes);
  set_modes(model, kNodes, kModes);
  write_model(model, ours, options);
  const std::vector<char> bytes(std::filesystem::file_size(ours), 'x');
  const auto write_plain = [&] {
    std::FILE *file = std::fopen(plain.c_str(), "wb");
    require(std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size(), "a plain write");
    std::fflush(file);
    std::fclose(file);
  };
  compare(
      state, {job, "`fwrite` and flush of the same bytes", 0.8},
      [&] { write_model(model, ours, options); }, write_plain);
}

const bool registered = [] {
  register_row("open_time", open_time);
  register_row("write_native_double", [](benchmark::State &state) {
    write_beside_plain(state, "no_ortho no_xdr", "write, native double");
  });
  register_row("write_xdr_double", [](benchmark::State &state) {
    write_beside_plain(state, "no_ortho", "write, XDR double");
  });
  register_row("write_native_single", [](benchmark::State &state) {
    write_beside_plain(state, "no_ortho no_xdr single", "write, native single");
  });
  register_row("write_xdr_single", [](benchmark::State &state) {
    write_beside_plain(state, "no_ortho single", "write, XDR single");
  });
  return true;
}();

}  // namespace
}  // namespace qdlflex::bench
