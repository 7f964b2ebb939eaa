// Writing a model and reading it again.
#pragma once

#include <qdlflex/qdlflex.h>

#include <string>
#include <string_view>

namespace qdlfuzz {

// Writes the model and requires what holds for every write: success and a file, or failure, an
// error and no file. Returns the file's bytes; empty after a failure.
std::string write_bytes(QDL_Record *model, std::string_view options, const char *name);

// The model written with these options, which keep doubles and all modes as they are, has to come
// back as it stands after the write; what comes back is then written to the same bytes. Ends the
// model.
void require_round_trip(QDL_Record *model, std::string_view options);

}  // namespace qdlfuzz
