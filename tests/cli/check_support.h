#pragma once

#include <gtest/gtest.h>
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "cli_support.h"

constexpr int32_t kJackModes = 9;

/// Six masses of 0.5 kg with rotary inertias of 0.5 kg m^2, two on each axis: at x = -1 and 1,
/// y = -2 and 2, z = -3 and 3. An octahedron of faces is around them. Modes 1 to 3 are the
/// translations, 4 to 6 the rotations; in modes 7 to 9 the two masses on x, y and z part along
/// their axis. All are of unit generalized mass.
struct Jack {
  std::array<double, kJackModes> scale = {1, 1, 1, 1, 1, 1, 1, 1, 1};  // of shapes
  std::array<double, kJackModes> frequency = {0, 0, 0, 0, 0, 0, 10, 20, 30};
  std::array<double, kJackModes> generalized_mass = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  std::array<const char *, 4> units = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
  double rotary_inertia = 0.5;
  bool has_masses = true;
  std::string options = "no_ortho,no_xdr";
  std::function<void(QDL_Record *)> change = [](QDL_Record *) {};
};

/// Translations and rotations of a node (1 to 6) in a mode (1 to 9).
std::array<double, 6> shape_of(const Jack &jack, int32_t mode, int32_t node);

void write_jack(const Jack &jack, const std::string &path);

/// The body after a change, or made otherwise.
Jack changed(const std::function<void(QDL_Record *)> &change);
Jack with(const std::function<void(Jack &)> &set);

/// A check of the report by its name.
const nlohmann::json &check_named(const nlohmann::json &report, const std::string &name);

class CheckTest : public testing::Test {
 protected:
  CommandResult run(const Jack &jack, const std::string &options = "--json") const;

  /// The verdict of a check, with the verdict and exit code that follow for the whole file.
  void expect_verdict(const char *what, const Jack &jack, const std::string &name,
                      const std::string &verdict) const;

  TemporaryFolder folder_;
  std::string path_ = folder_.path("jack.qdl");
};
