// What the tests of the writer share: bodies with any modes, records made of them, and the files
// that have to come out. All of it is written from the layout of the file.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/qdl_bytes.h"
#include "support/read_fixture.h"

namespace qdltest {

// The options of a write and the version code that they ask for.
struct WriteForm {
  std::string options;
  std::int32_t code;
};

const std::vector<WriteForm> &every_write_form();

// The sample's body with other modes. Every number of a mode tells which mode it belongs to, so
// that a body with fewer modes is what has to be left of one with more. Modes are numbered
// `first_number`, `first_number` + 2, ... Frequencies of modes 0 to 3 are 0.5, 5, 50 and 150.
// Global mass agrees with the invariants and nothing is left to be projected on principal axes.
SampleModel body_with_modes(const std::vector<int> &modes, std::int32_t first_number);

// The modal statistics that a writer finds: the largest von Mises stress and strain, as far as
// there are stress and strain among the blocks.
std::vector<ModeStatistics> statistics_of(const SampleModel &model, const std::set<int> &blocks);

// The content in the shape of a version: older ones have stress and strain at every node.
SampleModel in_version(SampleModel model, std::int32_t version_code);

// The blocks of a complete model that a write with or without solved modes leaves in a file.
std::set<int> written_blocks(std::int32_t version_code, bool solved = true);

std::set<int> without(std::set<int> blocks, const std::set<int> &dropped);

// Faces as elements: neighbours with equally many nodes make a group.
std::vector<ElementGroup> groups_of_faces(const SampleModel &model);

// Where a written file first differs from the expected one; empty if it does not.
std::string difference(const std::vector<std::uint8_t> &written, const SampleFile &expected);

// A model with these blocks of the content, by setters where there are any.
QDL_Record *build_record(const SampleModel &content, const std::set<int> &blocks);

class WriteFixture : public ReadFixture {
 protected:
  std::int32_t write(QDL_Record *record, const std::string &options,
                     const std::string &name = "written.qdl") {
    const ScopedEnvironment variable("ZEB_QDLWRITE_OPTIONS", options.c_str());
    return QDL_write_QDL(record, path(name).c_str());
  }

  // Expects success without an error, and these bytes.
  void expect_written(QDL_Record *record, const std::string &options, const SampleFile &expected,
                      const std::string &name = "written.qdl");

  // Expects these errors, the result 0 and no file.
  void expect_refused(QDL_Record *record, const std::string &options,
                      const std::vector<std::string> &texts);

  bool exists(const std::string &name) const { return std::filesystem::exists(path(name)); }
};

}  // namespace qdltest
