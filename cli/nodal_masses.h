#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

#include "ccx_frd.h"

namespace qdlflex::cli {

using NodalMasses = std::unordered_map<int32_t, double>;

/// The density of each material of a result file, by the number that its elements carry.
/// A material without a density in the deck is missing. A deck with one density only needs no
/// agreement of names.
std::map<int32_t, double> densities_by_material(const FrdFile &results,
                                                const std::map<std::string, double> &deck);

/// Volume times density of every element, given to its nodes by diagonal scaling.
/// Throws a Failure for an element without density or without positive volume.
NodalMasses masses_of_elements(const FrdFile &results, const std::map<int32_t, double> &densities);

}  // namespace qdlflex::cli
