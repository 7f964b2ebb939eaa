#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qdlflex {

/// The options of a write, from the text of ZEB_QDLWRITE_OPTIONS. A keyword counts wherever it
/// stands in the text, also inside another word or an argument; unknown words are ignored.
struct WriteOptions {
  bool shift_frame = false;  // lbrf2cm
  std::optional<std::string> sketch;
  bool strip_faces = false;
  std::optional<std::string> coarsen;
  bool no_ortho = false;
  bool full_stress = false;
  bool sparse_stress = false;
  bool single = false;
  bool no_xdr = false;
  bool compatible_82 = false;
  bool compatible_81 = false;
  std::optional<double> lowpass;
  std::optional<double> highpass;
  bool invariants = false;  // any of them asked for, legally or not
  bool full_invariants = false;
  bool fast_invariants = false;
  bool empty = false;
  bool mks = false;
};

WriteOptions parse_write_options(const std::string &text);

/// The version code that the options ask for; none after reporting options that contradict each
/// other.
std::optional<std::uint32_t> choose_version_code(const WriteOptions &options);

}  // namespace qdlflex
