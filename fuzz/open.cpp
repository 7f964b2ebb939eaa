// Any bytes as a file: opening gives a message or a usable model, and looking at a model doesn't
// change what it tells.

#include "support/exercise.h"
#include "support/harness.h"
#include "support/snapshot.h"

using namespace qdlfuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  const std::string path = write_file("input.qdl", data, size);
  QDL_Record *const model = QDL_CreateFromQDL(path.c_str());
  require((model != nullptr) == (QDL_FindQDL(path.c_str()) != nullptr),
          "a file that can't be opened is on the list, or the other way round");
  if (model == nullptr) {
    require(messages().errors > 0, "a file is refused without an error");
    return 0;
  }
  require(QDL_IsValid(model) == 1, "a model that was opened isn't valid");
  qdltest::exercise(model);
  const Snapshot first = snapshot(model);
  for (std::int32_t block = 0; block <= 38; ++block)
    report(model, block);
  const std::string changed = first.difference(snapshot(model));
  require(changed.empty(), "reports and getters changed: " + changed);
  return 0;
}
