#include "io/block_reader.h"

#include <qdlflex/qdlflex.h>

#include <cstring>

#include "format/version.h"
#include "record/units.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlread";

/// The text for a block that is damaged; null for blocks that are not read on opening.
const char *problem_text(Block block) {
  switch (block) {
    case Block::kVersionCode:
    case Block::kHeader:
    case Block::kContentSummary:
    case Block::kUnits:
      return "Problem reading Header information";
    case Block::kNodalCoordinates:
      return "Problem reading Node Coordinates Data";
    case Block::kElementTopology:
      return "Problem when reading old style element block";
    case Block::kGlobalBodyProperties:
      return "Problem reading Global Body Properties";
    case Block::kEigenvalues:
      return "Problem reading Eigenvalue Data";
    case Block::kModeShapes:
      return "Problem encountered while caching Mode shape Data";
    case Block::kNodalMasses:
    case Block::kNodalInertias:
      return "Problem reading Nodal Mass information";
    case Block::kGeneralizedStiffness:
      return "Problem reading Generalized Stiffness information";
    case Block::kGeneralizedMass:
      return "Problem reading Generalized Mass information";
    case Block::kElementFaces:
      return "Problem reading Element Faces";
    case Block::kGeneralizedDamping:
      return "Problem reading Generalized Damping information";
    case Block::kModeShapeTransformation:
      return "Problem when reading Mode Shape Transformation";
    case Block::kInterfaceNodes:
      return "Problem when reading Interface Nodes";
    case Block::kModalStress:
      return "Problem when reading Modal Stress info";
    case Block::kModalPreload:
      return "Problem when reading Modal Preloads Block";
    case Block::kModalLoads:
      return "Problem when reading Modal Loads Block";
    case Block::kModalStrain:
      return "Problem when reading Modal Strain info";
    case Block::kModalStatistics:
      return "Problem when reading Modal Statistics Block";
    case Block::kPreStress:
      return "Problem when reading Pre-Stress Block";
    case Block::kPreStrain:
      return "Problem when reading Pre-Strain Block";
    case Block::kMatrixOperators:
      return "Problem when reading Matrix Operator Block";
    case Block::kModalLoadNodal:
      return "Problem when reading Modal Load Nodal Block";
    case Block::kOldMonitorPoints:
    case Block::kMonitorPoints:
      return "Problem when reading Monitor Point Block";
    case Block::kRotorDynamics:
      return "Problem when reading Rotor Dynamics Block";
    default:
      return nullptr;
  }
}

}  // namespace

bool BlockReader::read(Block block, const char *no_memory, Step step, int line) {
  if (!in_file(record_, block))
    return true;
  tried_[static_cast<std::size_t>(block)] = true;
  if (!has_known_offset(record_, block)) {
    report_unreachable(block);
    return false;
  }
  Reading result = Reading::kProblem;
  const std::int64_t start = record_.contents.offsets[static_cast<std::size_t>(block_index(block))];
  const bool had_memory = with_memory([&] {
    if (source_.seek(start))
      result = (this->*step)();
  });
  if (!had_memory) {
    if (no_memory == nullptr) {
      report_allocation_failure(line, kArea);
    } else {
      QDL_Error("%s", no_memory);
    }
    return false;
  }
  if (result == Reading::kProblem)
    QDL_Error("%s", problem_text(block));
  return result == Reading::kDone;
}

/// The block that could not be measured is the one to blame, unless it has been read by now.
void BlockReader::report_unreachable(Block block) const {
  const Block unmeasured = block_at(record_.contents.unknown_from - 1);
  const bool blame = !tried_[static_cast<std::size_t>(unmeasured)];
  const char *text = blame ? problem_text(unmeasured) : nullptr;
  QDL_Error("%s", text != nullptr ? text : problem_text(block));
}

template <std::size_t N>
bool BlockReader::text(std::array<char, N> &field) {
  if (!source_.characters(field.data(), N))
    return false;
  terminate_string(field.data(), static_cast<int32_t>(N));
  return true;
}

template bool BlockReader::text(std::array<char, 256> &);

bool BlockReader::text(std::string &field, std::size_t width) {
  field.resize(width);
  if (!source_.characters(field.data(), width))
    return false;
  terminate_string(field.data(), static_cast<int32_t>(width));
  field.resize(std::strlen(field.c_str()));
  return true;
}

bool BlockReader::summary() {
  const std::int64_t start =
      kVersionCodeBytes + kHeaderCharacters * source_.encoding().character_bytes();
  std::array<char, kSummaryBytes> bytes{};
  if (!source_.seek(start) || !source_.characters(bytes.data(), bytes.size())) {
    QDL_Error("%s", problem_text(Block::kContentSummary));
    return false;
  }
  std::memcpy(record_.file_summary.data(), bytes.data(), bytes.size());
  if (has_short_summary(record_.file_version_code)) {
    std::fill(record_.file_summary.begin() + 17, record_.file_summary.begin() + 98,
              std::uint8_t{0});
    record_.file_summary[99] = 0;
  }
  record_.summary = record_.file_summary;
  return true;
}

void BlockReader::units() {
  Units &units = record_.units;
  if (!in_file(record_, Block::kUnits)) {
    units.mass = unit_name("KILOGRAM");
    units.length = unit_name("METER");
    units.time = unit_name("SECOND");
    units.force = unit_name("NEWTON");
    return;
  }
  const auto index = static_cast<std::size_t>(block_index(Block::kUnits));
  units_readable_ = has_known_offset(record_, Block::kUnits) &&
                    source_.seek(record_.contents.offsets[index]) && read_units() == Reading::kDone;
}

/// A name that is not known stays as read: it must not be lost when the file is rewritten.
Reading BlockReader::read_units() {
  Units &units = record_.units;
  for (UnitName *name : {&units.mass, &units.length, &units.time, &units.force}) {
    if (!text(*name))
      return Reading::kProblem;
  }
  const auto spell_as_known = [](UnitName &name, const QDL_UnitEntry *table) {
    UnitName accepted = name;
    if (accept_unit(accepted, table))
      name = accepted;
  };
  spell_as_known(units.mass, QDL_MassUnits);
  spell_as_known(units.length, QDL_LengthUnits);
  spell_as_known(units.time, QDL_TimeUnits);
  spell_as_known(units.force, QDL_ForceUnits);
  return Reading::kDone;
}

bool BlockReader::header() {
  return read(Block::kHeader, nullptr, &BlockReader::read_header);
}

Reading BlockReader::read_header() {
  Header &header = record_.header;
  const bool read = text(header.title) && text(header.date) && text(header.input_name) &&
                    text(header.input_type) && text(header.comments[0]) &&
                    text(header.comments[1]) && text(header.comments[2]);
  return read ? Reading::kDone : Reading::kProblem;
}

}  // namespace qdlflex
