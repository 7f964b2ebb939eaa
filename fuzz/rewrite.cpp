// A file that can be opened, written and opened again: the same content, and from then on the same
// bytes. The input's size chooses the form of the files.

#include <array>

#include "support/harness.h"
#include "support/round_trip.h"

using namespace qdlfuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  constexpr std::array<const char *, 4> kForms = {"no_ortho", "no_ortho no_xdr", "", "no_xdr"};
  const Execution execution;
  const std::string path = write_file("input.qdl", data, size);
  if (QDL_Record *const model = QDL_CreateFromQDL(path.c_str()))
    require_round_trip(model, kForms[size % kForms.size()]);
  return 0;
}
