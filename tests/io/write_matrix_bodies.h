#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "io/write_rules.h"

namespace qdltest {

struct Kind {
  std::string name;
  std::set<int> blocks;
  std::vector<double> frequencies;
  std::array<std::string, 4> units;
  bool strain_inside = false;  // at a node alone that nothing shows
};

const std::vector<Kind> &every_kind();
const Kind &kind_named(const std::string &name);

Body body_of(const Kind &kind);

}  // namespace qdltest
