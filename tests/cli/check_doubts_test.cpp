// What `qdlflex check` says about copies of a body that are damaged in one place each.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "check_support.h"

namespace {

using nlohmann::json;

TEST_F(CheckTest, DoubtsUnitsAndMasses) {
  const auto invariant7 = [](double xx, double yy, double zz) {
    return changed([=](QDL_Record *record) {
      QDL_SetInvar7(record, std::array{xx, yy, zz, 0.0, 0.0, 0.0}.data());
    });
  };
  expect_verdict("kg mm s N", with([](Jack &jack) { jack.units[1] = "MILLIMETER"; }), "units",
                 "doubtful");
  expect_verdict("negative inertia", invariant7(-1, 10, 13), "mass_properties", "failed");
  expect_verdict("no triangle", invariant7(1, 2, 4), "mass_properties", "failed");
  expect_verdict("just a triangle", invariant7(1, 2, 3), "mass_properties", "ok");
  const Jack far = changed([](QDL_Record *record) {
    QDL_SetInvar2(record, std::array{30.0, 0.0, 0.0}.data());
    QDL_SetInvar7(record, std::array{100.0, 1000.0, 1000.0, 0.0, 0.0, 0.0}.data());
  });
  expect_verdict("centre outside", far, "mass_properties", "doubtful");
  expect_verdict("total of 4", changed([](QDL_Record *record) { QDL_SetInvar1(record, 2.0); }),
                 "nodal_masses", "failed");
  expect_verdict("total a little off",
                 changed([](QDL_Record *record) { QDL_SetInvar1(record, 2.999); }), "nodal_masses",
                 "doubtful");
  expect_verdict("negative mass",
                 changed([](QDL_Record *record) { QDL_SetNodalMass(record, 1, -0.1); }),
                 "nodal_masses", "doubtful");
  const Jack massless = with([](Jack &jack) { jack.has_masses = false; });
  for (const char *const check : {"mass_properties", "nodal_masses", "mode_products"}) {
    expect_verdict("without masses", massless, check, "not applicable");
  }
  expect_verdict("without masses", massless, "rigid_motion", "ok");
}

TEST_F(CheckTest, DoubtsMatrices) {
  const auto stiffness = [](double first, double second) {
    return changed([=](QDL_Record *record) {
      QDL_SetGeneralizedStiffness(record, 7, 8, first);
      QDL_SetGeneralizedStiffness(record, 8, 7, second);
    });
  };
  const auto mass = [](double entry) {
    return changed([=](QDL_Record *record) { QDL_SetGeneralizedMass(record, 7, 8, entry); });
  };
  expect_verdict("same twice", stiffness(1e-3, 1e-3), "matrix_symmetry", "ok");
  expect_verdict("unsymmetric", stiffness(1.0, 2.0), "matrix_symmetry", "failed");
  expect_verdict("stray entry", changed([](QDL_Record *record) {
                   QDL_SetGeneralizedStiffness(record, 99, 1, 1.0);
                 }),
                 "matrix_symmetry", "doubtful");
  expect_verdict("coupled stiffness", stiffness(100.0, 100.0), "matrix_diagonals", "doubtful");
  expect_verdict("coupled mass", mass(0.1), "matrix_diagonals", "doubtful");
  expect_verdict("coupled mass", mass(0.1), "effective_mass", "not applicable");
  expect_verdict("indefinite mass", mass(1.5), "matrix_diagonals", "failed");
  expect_verdict("no mass", with([](Jack &jack) { jack.generalized_mass[8] = -1.0; }),
                 "matrix_diagonals", "failed");
  expect_verdict("mass that is no number", with([](Jack &jack) { jack.generalized_mass[7] = NAN; }),
                 "matrix_diagonals", "failed");
  expect_verdict("unstable", with([](Jack &jack) { jack.frequency[7] = -20.0; }),
                 "matrix_diagonals", "doubtful");
  // The square of the scale is by how much the products are off.
  expect_verdict("roughly", with([](Jack &jack) { jack.scale[7] = 1.2; }), "mode_products",
                 "doubtful");
  expect_verdict("wrong", with([](Jack &jack) { jack.scale[7] = 1.3; }), "mode_products", "failed");
  expect_verdict("of other mass", with([](Jack &jack) {
                   jack.scale[7] = 10.0;
                   jack.generalized_mass[7] = 100.0;
                 }),
                 "mode_products", "ok");
}

TEST_F(CheckTest, DoubtsRigidModes) {
  expect_verdict("elastic support", with([](Jack &jack) { jack.frequency[5] = 5.0; }),
                 "rigid_modes", "doubtful");
  expect_verdict("no gap", with([](Jack &jack) { jack.frequency[0] = -5.0; }), "rigid_modes",
                 "doubtful");
  // Five of the first six are rigid, the sixth of them is not.
  const Jack unsorted = with([](Jack &jack) { std::swap(jack.frequency[0], jack.frequency[6]); });
  expect_verdict("first elastic, then rigid", unsorted, "rigid_modes", "doubtful");
  EXPECT_NE(run(unsorted).output.find("which sorts the modes"), std::string::npos);
  const auto bent = [](double by) {
    return changed([=](QDL_Record *record) {
      QDL_SetModeEntry(record, 1, 1, QDL_MODE_SHAPE, 0, 1.0 / std::sqrt(3.0) + by);
    });
  };
  // Of the square (1/3 + ...) that bends, five sixths stand against the common translation.
  expect_verdict("rigid to six digits", bent(1e-6), "rigid_motion", "ok");
  expect_verdict("slightly bent", bent(0.02), "rigid_motion", "doubtful");
  expect_verdict("bent", bent(0.3), "rigid_motion", "failed");
  const Jack twice = changed([](QDL_Record *record) {
    for (int32_t node = 1; node <= 6; ++node) {
      QDL_SetModeVec(record, 2, node, QDL_MODE_SHAPE, shape_of({}, 1, node).data());
    }
  });
  expect_verdict("two times the same", twice, "rigid_motion", "failed");
  expect_verdict("two times the same", twice, "effective_mass", "failed");
  expect_verdict("held along x", with([](Jack &jack) { jack.scale[0] = 0.0; }), "effective_mass",
                 "doubtful");
}

TEST_F(CheckTest, ComparesInvariantsWithTheNodes) {
  // Of these modes the translations alone have a momentum: the mass 3 times 1 over its root.
  const auto momentum = [](double factor) {
    return changed([=](QDL_Record *record) {
      for (int32_t mode = 1; mode <= 3; ++mode) {
        std::array<double, 3> value{};
        value[static_cast<size_t>(mode - 1)] = factor * std::sqrt(3.0);
        QDL_SetInvar3(record, mode, value.data());
      }
    });
  };
  expect_verdict("none", Jack{}, "invariants", "not applicable");
  expect_verdict("exact", momentum(1.0), "invariants", "ok");
  expect_verdict("another lumping", momentum(1.05), "invariants", "doubtful");
  expect_verdict("wrong", momentum(1.5), "invariants", "failed");
  const Jack wrong_mass = with([](Jack &jack) {
    jack.options = "no_ortho,full_invar";
    jack.change = [](QDL_Record *record) { QDL_SetInvar1(record, 30.0); };
  });
  // With every node on the surface it looks as if inner nodes had gone, but not with their motion.
  expect_verdict("too much mass", wrong_mass, "invariants", "not applicable");
  expect_verdict("too much mass", wrong_mass, "effective_mass", "doubtful");
}

TEST_F(CheckTest, FindsWhatRefersToNothing) {
  expect_verdict("zero mode", with([](Jack &jack) { jack.scale[8] = 0.0; }), "zero_modes",
                 "doubtful");
  expect_verdict("only zero modes", with([](Jack &jack) { jack.scale.fill(0.0); }), "zero_modes",
                 "failed");
  const auto idle_nodes = [](int32_t count) {
    return changed([=](QDL_Record *record) {
      for (int32_t node = 100; node < 100 + count; ++node) {
        QDL_SetNodeCoordinates(record, node, 0, 0, 0);
      }
    });
  };
  expect_verdict("an idle node", idle_nodes(1), "node_references", "ok");
  expect_verdict("most nodes idle", idle_nodes(7), "node_references", "doubtful");
  expect_verdict("loose interface node", changed([](QDL_Record *record) {
                   QDL_SetNodeCoordinates(record, 7, 0, 0, 5);
                   QDL_SetInterfaceNode(record, 7);
                 }),
                 "interface_nodes", "doubtful");
  expect_verdict("reference node", changed([](QDL_Record *record) {
                   QDL_SetNodeCoordinates(record, 7, 0, 0, 0);
                   QDL_SetModeEntry(record, 1, 7, QDL_MODE_SHAPE, 0, 1.0);
                   QDL_SetInterfaceNode(record, 7);
                 }),
                 "interface_nodes", "ok");
}

TEST_F(CheckTest, FindsStressesWithoutGeometry) {
  constexpr int32_t kNode = 0x01234567;
  const Jack jack = changed([](QDL_Record *record) {
    QDL_SetModeEntry(record, 7, 1, QDL_MODE_STRESS, 0, 1.0);
    QDL_SetModeEntry(record, 7, kNode, QDL_MODE_STRESS, 0, 1.0);
  });
  expect_verdict("stresses at nodes", jack, "stress_nodes", "ok");
  std::string file = read_text(path_);
  const std::string id(reinterpret_cast<const char *>(&kNode), sizeof kNode);
  const size_t of_stress = file.rfind(id);
  ASSERT_NE(of_stress, file.find(id)) << "the node stands with its coordinates and its stress";
  file[of_stress] = static_cast<char>(file[of_stress] ^ 1);
  folder_.write("jack.qdl", file);
  const CommandResult result = run_qdlflex("check --json '" + path_ + "'");
  EXPECT_EQ(result.exit_code, 3) << result.errors;
  const json report = json::parse(result.output);
  const json &check = check_named(report, "stress_nodes");
  EXPECT_EQ(check.at("verdict"), "doubtful");
  EXPECT_EQ(check.at("numbers").at("stress_without_node"), 1);
}

}  // namespace
