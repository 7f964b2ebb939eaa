#pragma once

#include <qdlflex/qdlflex.h>

#include <string>
#include <string_view>

namespace qdlflex::cli {

/// Unit names of the library, one for each quantity.
struct Units {
  std::string mass;
  std::string length;
  std::string time;
  std::string force;

  bool operator==(const Units &) const = default;
};

/// Turns four units joined by "-", in any order, into the names of the library: "mm-N-t-s" or
/// "inch-pound_force-slinch-second". Abbreviations are taken letter by letter (mg is not Mg), the
/// library's own names in any case. Throws a Failure that says what is wrong.
Units parse_units(std::string_view text);

/// The units of a model by the names of the library.
Units read_units(QDL_Record *record);

/// The abbreviation of a unit, such as "mm" for "MILLIMETER"; the name itself if it has none.
std::string abbreviation_of(const std::string &name);

}  // namespace qdlflex::cli
