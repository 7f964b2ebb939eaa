#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "solid_elements.h"

namespace qdlflex::cli {

/// What a translator needs of an input deck of CalculiX. Names are in upper case, as the solver
/// takes them.
struct CcxDeck {
  std::unordered_map<int32_t, Point> nodes;  // as typed, with all digits
  std::map<std::string, std::vector<int32_t>> node_sets;
  std::map<std::string, double> densities;  // by material
};

/// Reads the deck at `path` with the files that it includes. Cards that tell nothing about the
/// members of CcxDeck are passed over. Throws a Failure.
CcxDeck read_ccx_deck(const std::string &path);

}  // namespace qdlflex::cli
