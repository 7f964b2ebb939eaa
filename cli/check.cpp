#include "check.h"

#include <algorithm>
#include <functional>

#include "console.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

Check check_readable(int64_t errors) {
  Check check{"readable", Verdict::kOk, {{"errors", errors}}, "The library reported no error."};
  if (errors > 0) {
    check.verdict = Verdict::kFailed;
    check.advice =
        "The library reported errors, which stand on standard error. Make the file "
        "again.";
  }
  return check;
}

/// A check that cannot get at what it looks at has failed; the others go on.
class CheckList {
 public:
  CheckList(CheckReport &report, int64_t checks) : report_(report), bar_("check", checks) {}

  void add(const char *name, const std::function<Check()> &check) {
    try {
      report_.checks.push_back(check());
    } catch (const Failure &failure) {
      report_.checks.push_back(
          {name, Verdict::kFailed, {}, std::string(failure.what()) + ". Make the file again."});
    }
    bar_.advance();
  }

 private:
  CheckReport &report_;
  ProgressBar bar_;
};

}  // namespace

Verdict overall(const CheckReport &report) {
  Verdict worst = Verdict::kOk;
  for (const Check &check : report.checks) {
    worst = std::max(worst, check.verdict);
  }
  return worst == Verdict::kNotApplicable ? Verdict::kOk : worst;
}

CheckReport check_file(const std::string &path) {
  const int64_t errors_before = reported_error_count();
  const Record record = open_record(path);
  // A walk through the modes comes by each of them once.
  QDL_SetKeepModesInMemory(record.get(), 0);
  const Body body = read_body(path, record.get());
  const ModeScan scan = scan_modes(body);
  CheckReport report{path, {}, {}};
  CheckList list(report, 17);
  list.add("contents", [&] { return check_contents(body); });
  list.add("units", [&] { return check_units(body); });
  list.add("mass_properties", [&] { return check_mass_properties(body); });
  list.add("nodal_masses", [&] { return check_nodal_masses(body); });
  list.add("matrix_symmetry", [&] { return check_matrix_symmetry(body); });
  list.add("matrix_diagonals", [&] { return check_matrix_diagonals(body); });
  list.add("mode_products", [&] { return check_mode_products(body); });
  list.add("rigid_modes", [&] { return check_rigid_modes(body); });
  list.add("rigid_motion", [&] { return check_rigid_motion(body); });
  list.add("effective_mass", [&] { return check_effective_masses(body, report.modes); });
  list.add("invariants", [&] { return check_invariants(body); });
  list.add("zero_modes", [&] { return check_zero_modes(body, scan); });
  list.add("node_references", [&] { return check_node_references(body); });
  list.add("stress_nodes", [&] { return check_stress_nodes(body); });
  list.add("finite", [&] { return check_finite(body, scan); });
  // Removes inner faces, so that it comes after what looks at faces.
  list.add("interface_nodes", [&] { return check_interface_nodes(body, scan); });
  list.add("readable", [&] { return check_readable(reported_error_count() - errors_before); });
  return report;
}

}  // namespace qdlflex::cli
