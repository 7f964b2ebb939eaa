#pragma once

#include <string>
#include <string_view>

namespace qdlflex::cli {

/// Unit names of the library, one for each quantity.
struct Units {
  std::string mass;
  std::string length;
  std::string time;
  std::string force;
};

/// Turns four units joined by "-", in any order, into the names of the library: "mm-N-t-s" or
/// "inch-pound_force-slinch-second". Abbreviations are taken letter by letter (mg is not Mg), the
/// library's own names in any case. Throws a Failure that says what is wrong.
Units parse_units(std::string_view text);

}  // namespace qdlflex::cli
