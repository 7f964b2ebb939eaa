// Any text as options of the writer: refused when it contradicts itself, else a file of the version
// that the words ask for, which can be opened. The first byte chooses the model.

#include <array>
#include <vector>

#include "support/harness.h"
#include "support/qdl_bytes.h"
#include "support/round_trip.h"

using namespace qdlfuzz;

namespace {

constexpr std::int32_t kNativeDouble = 60;

// A body with generalized matrices of its own and one with eigenvalues alone.
std::string body(bool unsolved) {
  std::set<int> blocks = qdltest::usual_blocks(kNativeDouble);
  if (!unsolved) {
    blocks.erase(12);
    blocks.erase(13);
  }
  const auto bytes = qdltest::build_file(kNativeDouble, blocks).bytes;
  return write_file(unsolved ? "unsolved.qdl" : "solved.qdl", bytes.data(), bytes.size());
}

struct Words {
  explicit Words(std::string_view text) : text_(text) {}
  bool has(std::string_view word) const { return text_.find(word) != std::string_view::npos; }

  bool old() const { return has("82_comp") || has("81_comp"); }
  bool contradictory() const {
    return (has("full_str") && has("sparse_str")) ||
           (old() && (has("invar") || has("single") || has("sparse_str")));
  }
  std::int32_t version() const {
    if (old())
      return has("81_comp") ? 10 : 20;
    if (!has("full_str"))
      return 60;
    return (has("single") ? 51 : 41) - (has("no_xdr") ? 1 : 0);
  }

 private:
  std::string_view text_;
};

void require_units(QDL_Record *model) {
  std::array<std::array<char, 16>, 4> names{};
  QDL_Units(model, names[0].data(), names[1].data(), names[2].data(), names[3].data());
  require(std::string_view(names[0].data()) == "KILOGRAM" &&
              std::string_view(names[1].data()) == "METER" &&
              std::string_view(names[2].data()) == "SECOND" &&
              std::string_view(names[3].data()) == "NEWTON",
          "MKS leaves other units");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const std::array<std::string, 2> bodies = {body(false), body(true)};
  static const std::string sketch = write_file("sketch", "2 3 101 7 40 4 101 7 40 23", 26);
  Bytes input(data, size);
  const std::string &source = bodies[input.byte() % bodies.size()];
  std::string text(input.rest());
  // As the environment holds it; other folders, with devices in them, stay out of reach.
  text.resize(std::min(text.size(), text.find('\0')));
  if (text.find('/') != std::string::npos)
    return -1;

  const Execution execution;
  QDL_Record *const model = QDL_CreateFromQDL(source.c_str());
  require(model != nullptr, "the body can't be opened");
  const Words words(text);
  const bool written = !write_bytes(model, text, "written.qdl").empty();
  require(!(written && words.contradictory()), "contradicting options are accepted");
  QDL_UnLink(model);
  if (!written)
    return 0;
  QDL_Record *const copy = QDL_CreateFromQDL(path_of("written.qdl").c_str());
  require(copy != nullptr, "a file that was written can't be opened");
  require(QDL_Version(copy) == words.version(), "the file has another version");
  require(QDL_Double_Prec(copy) == (words.has("single") ? 0 : 1), "the file has another precision");
  if (words.has("empty"))
    require(QDL_ModeCount(copy) == 0, "an empty body has modes");
  if (words.has("MKS") && !words.has("invar"))
    require_units(copy);
  if (words.has("no_ortho") && !words.has("empty"))
    require(QDL_ModeCount(copy) == 2, "modes are missing");
  return 0;
}
