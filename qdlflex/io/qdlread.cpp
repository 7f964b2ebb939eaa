#include "io/qdlread.h"

#include <qdlflex/qdlflex.h>

#include <memory>
#include <utility>

#include "build/scale_database.h"
#include "format/version.h"
#include "io/block_reader.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlread";

/// Keeps what belongs to the handle and not to what was read into it.
void reset_contents(QDL_Record &record) {
  QDL_Record fresh;
  fresh.keep_modes_in_memory = record.keep_modes_in_memory;
  fresh.mass_normalize_modes = record.mass_normalize_modes;
  fresh.surface_mesh = record.surface_mesh;
  fresh.reference_count = record.reference_count;
  record = std::move(fresh);
}

bool is_native_code(std::uint32_t code) {
  const std::uint32_t number = version_number(code);
  return is_old_native(number) || (number >= kCurrentVersion && (code & kXdrBit) == 0);
}

bool is_xdr_code(std::uint32_t code) {
  const std::uint32_t number = version_number(code);
  return is_old_xdr(number) || (number >= kCurrentVersion && (code & kXdrBit) != 0);
}

/// The first word tells version, encoding and precision: taken natively where it makes sense so,
/// else as an XDR integer.
bool detect_encoding(QDL_Record &record) {
  File &file = *record.source.file;
  unsigned char word[4];
  if (!file.seek(0) || !file.read(word, sizeof word))
    return false;
  const auto read_as = [&](bool xdr) {
    return static_cast<std::uint32_t>(decode_i32(word, Encoding{xdr, true}));
  };
  std::uint32_t code = read_as(false);
  record.source.xdr = !is_native_code(code);
  if (record.source.xdr) {
    code = read_as(true);
    if (!is_xdr_code(code))
      return false;
  }
  record.version_code = kept_version_code(code);
  record.source.double_precision = !is_single_precision(record.version_code);
  record.coarsened = is_coarsened_code(record.version_code);
  record.file_version_code = record.version_code;
  for (ModeData &data : record.mode_data) {
    data.backing.channel.xdr = record.source.xdr;
    data.backing.channel.double_precision = record.source.double_precision;
  }
  return true;
}

/// Blocks in the order in which they depend on each other, which is not quite that of the file.
bool read_blocks(QDL_Record &record) {
  BlockReader reader(record);
  if (!reader.summary())
    return false;
  build_table_of_contents(record);
  reader.units();
  if (!reader.header() || !reader.nodal_coordinates() || !reader.global_body_properties() ||
      !reader.eigenvalues() || !reader.mode_shapes() || !reader.mode_list() ||
      !reader.nodal_masses() || !reader.nodal_inertias()) {
    return false;
  }
  // Units that can't be read are reported only here, so that a file cut before them names the
  // block in which it ends.
  if (!reader.units_were_readable()) {
    QDL_Error("Problem reading Header information");
    return false;
  }
  return reader.generalized_stiffness() && reader.generalized_mass() && reader.faces() &&
         reader.generalized_damping() && reader.transformation() && reader.interface_nodes() &&
         reader.modal_stress() && reader.modal_preload() && reader.modal_loads() &&
         reader.modal_strain() && reader.modal_statistics() && reader.pre_stress() &&
         reader.pre_strain() && reader.matrix_operators() && reader.nodal_loads() &&
         reader.monitor_points() && reader.rotor_dynamics();
}

/// Damping is projected whenever invariants are written beside it.
bool holds_projected_damping(const QDL_Record &record) {
  return in_file(record, Block::kGeneralizedDamping) && in_file(record, Block::kInvariant3);
}

/// Reads one of the generalized matrices again, converts it to the units that the record has by now
/// and leaves the file where it was.
template <class Read, class Convert>
int32_t reread(QDL_Record *model, Block block, Read read, Convert convert) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) -> int {
    if (record.source.file == nullptr)
      return 0;
    File &file = *record.source.file;
    const std::int64_t before = file.tell();
    if (!seek_block(record, block))
      return 0;
    BlockReader reader(record);
    const bool done = read(reader);
    if (done)
      convert(record);
    file.seek(before);
    return done ? 1 : 0;
  });
}

}  // namespace

bool read_file(QDL_Record &record, std::shared_ptr<File> file) {
  reset_contents(record);
  if (!with_memory([&] { record.file_name = file->name(); })) {
    QDL_Warning("Failed to allocate memory at line %d in file %s.\n", __LINE__, kArea);
  }
  record.source.file = std::move(file);
  if (!detect_encoding(record)) {
    QDL_Error("Not a valid QDL format.");
    return false;
  }
  if (!read_blocks(record))
    return false;
  record.damping_on_principal_axes = holds_projected_damping(record);
  return true;
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_ReadQDL(QDL_Record *model, FILE *stream, const char *fileName) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    if (stream == nullptr) {
      QDL_Error("Not a valid QDL format.");
      return false;
    }
    return read_file(record, File::adopt(stream, fileName == nullptr ? "" : fileName));
  });
}

int32_t QDL_ReadGeneralizedStiffness(QDL_Record *model) {
  return reread(
      model, Block::kGeneralizedStiffness,
      [](BlockReader &reader) { return reader.generalized_stiffness(); },
      [](QDL_Record &record) { scale_stiffness(record.stiffness, record.units.cumulative); });
}

int32_t QDL_ReadGeneralizedMass(QDL_Record *model) {
  return reread(
      model, Block::kGeneralizedMass, [](BlockReader &reader) { return reader.generalized_mass(); },
      [](QDL_Record &record) { scale_mass(record.mass, record.units.cumulative); });
}

int32_t QDL_ReadGeneralizedDamping(QDL_Record *model) {
  return reread(
      model, Block::kGeneralizedDamping,
      [](BlockReader &reader) { return reader.generalized_damping(); },
      [](QDL_Record &record) {
        record.damping_on_principal_axes = holds_projected_damping(record);
        scale_damping(record, record.units.cumulative);
      });
}
