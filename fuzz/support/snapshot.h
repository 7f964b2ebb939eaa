// The whole content of a model as its getters tell it, to compare two models or one model at two
// times.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qdlfuzz {

class Snapshot {
 public:
  // What follows belongs to this part of the model.
  void begin(const char *section) { sections_.push_back({section, {}}); }

  void put(std::int64_t value) {
    sections_.back().words.push_back(static_cast<std::uint64_t>(value));
  }
  // The sign of a zero and what is in a value that is not a number do not count.
  void put_real(double value);
  void put_reals(const double *values, std::size_t count);
  void put_text(std::string_view text);

  // The first section that differs and where; empty when none does.
  std::string difference(const Snapshot &other,
                         const std::set<std::string_view> &ignored = {}) const;

 private:
  struct Section {
    std::string name;
    std::vector<std::uint64_t> words;
    bool operator==(const Section &) const = default;
  };
  std::vector<Section> sections_;
};

// Asks everything. Sections: header, units, version, nodes, interface, faces, modes, eigenvalues,
// stiffness, mass, damping, transformation, shapes, stress, strain, prestress, prestrain,
// invariants, global, statistics, preload, loads, nodal loads, rotor, monitors, operators.
Snapshot snapshot(QDL_Record *model);

// What QDL_Contents() prints of a block.
std::string report(QDL_Record *model, std::int32_t block);

}  // namespace qdlfuzz
