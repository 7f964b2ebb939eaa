#include "nodal_masses.h"

#include <cmath>

namespace qdlflex::cli {

std::map<int32_t, double> densities_by_material(const FrdFile &results,
                                                const std::map<std::string, double> &deck) {
  std::map<int32_t, double> densities;
  if (deck.size() == 1) {
    for (const FrdElement &element : results.elements()) {
      densities[element.material] = deck.begin()->second;
    }
    return densities;
  }
  for (const auto &[number, name] : results.materials()) {
    if (const auto found = deck.find(name); found != deck.end()) {
      densities[number] = found->second;
    }
  }
  return densities;
}

NodalMasses masses_of_elements(const FrdFile &results, const std::map<int32_t, double> &densities) {
  NodalMasses masses;
  for (const FrdElement &element : results.elements()) {
    const std::string name = results.path() + ": element " + std::to_string(element.id);
    const auto density = densities.find(element.material);
    if (density == densities.end()) {
      throw Failure(name + ": the density of its material is not known");
    }
    std::array<Point, kMostElementNodes> points;
    const auto count = static_cast<size_t>(node_count(element.type));
    for (size_t k = 0; k < count; ++k) {
      points[k] = results.position(element.nodes[k]);
    }
    const MassShares shares = mass_shares(element.type, std::span(points).first(count));
    if (!(shares.volume > 0.0)) {
      throw Failure(name + " has no positive volume");
    }
    for (size_t k = 0; k < count; ++k) {
      double &mass = masses[element.nodes[k]];
      mass += density->second * shares.volume * shares.share[k];
      if (!std::isfinite(mass)) {
        throw Failure(name + " has no finite mass");
      }
    }
  }
  return masses;
}

}  // namespace qdlflex::cli
