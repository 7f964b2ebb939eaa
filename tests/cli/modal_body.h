#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "record.h"

constexpr int32_t kModes = 3;

/// A body of six nodes and three modes in the order, with the signs and scales asked for; every
/// modal quantity follows its modes as it does in nature.
struct Body {
  std::array<int32_t, kModes> order = {0, 1, 2};
  std::array<double, kModes> factors = {1.0, 1.0, 1.0};
  bool nodes_reversed = false;
  bool loads = true;
  double softest = 1.0;  // stiffness of the first mode
  std::function<void(QDL_Record *)> change = [](QDL_Record *) {};
  std::string options = "no_ortho";
};

/// A component of a mode before it is signed and scaled: 0 to 5 motion, 6 to 11 stress / 1000.
double shape(int32_t mode, int32_t node, int32_t component);

qdlflex::cli::Record make_body(const Body &body);
