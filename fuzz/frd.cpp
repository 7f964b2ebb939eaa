// Any text as the files of a CalculiX job, divided by form feeds: the result file, the deck, the
// tables, the mass matrix and its rows. A failure names what is wrong and leaves no file; success
// leaves one that can be opened and holds the mesh and the modes.

#include <array>
#include <cmath>
#include <cstdio>

#include "ccx_frd.h"
#include "ccx_import.h"
#include "support/harness.h"

using namespace qdlfuzz;
using namespace qdlflex::cli;

namespace {

void require_sound(FrdFile &file) {
  for (const FrdElement &element : file.elements()) {
    for (std::size_t k = 0; k < static_cast<std::size_t>(node_count(element.type)); ++k)
      file.position(element.nodes[k]);  // throws std::out_of_range for a stranger
  }
  for (const auto &[number, mode] : file.modes()) {
    require(number > 0 && mode.number == number, "a mode has another number");
    for (const FrdField field : {frd_displacement, frd_stress, frd_strain}) {
      if (!mode.fields[field])
        continue;
      const auto values = file.read(field, *mode.fields[field]);
      require(static_cast<std::int64_t>(values.size()) == mode.fields[field]->count,
              "values are missing");
      for (const FrdValue &value : values) {
        for (const double component : value.components)
          require(std::isfinite(component), "a value is not finite");
      }
    }
  }
}

// The mesh and modes of the file; none when it isn't a result file.
std::array<std::int32_t, 2> counts_of(const std::string &path) {
  try {
    FrdFile file(path);
    require_sound(file);
    return {static_cast<std::int32_t>(file.nodes().size()),
            static_cast<std::int32_t>(file.modes().size())};
  } catch (const Failure &failure) {
    require(std::string_view(failure.what()).starts_with(path), "a failure doesn't name the file");
    return {};
  }
}

CcxImport job_of(std::string_view text) {
  constexpr std::array<const char *, 5> kNames = {"job.frd", "job.inp", "job.dat", "job.mas",
                                                  "job.dof"};
  std::array<std::string, 5> paths;
  bool more = true;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!more) {
      std::remove(path_of(kNames[i]).c_str());
      continue;
    }
    const std::size_t end = text.find('\f');
    more = end != std::string_view::npos;
    paths[i] = write_file(kNames[i], text.data(), std::min(end, text.size()));
    text.remove_prefix(more ? end + 1 : text.size());
  }
  CcxImport job{paths[0], paths[1], paths[2], paths[3], paths[4], {}, {}, {}, {}, {}};
  if (paths[1].empty())
    job.density = 7.85e-9;
  if (paths[4].empty())
    job.mass_matrix.clear();
  job.units = parse_units("mm-N-t-s");
  job.output = path_of("job.qdl");
  job.write_options = "no_ortho,no_xdr";
  return job;
}

// While it lives nothing is printed. Only the C library's streams are changed: the fuzzer and the
// sanitizers still report.
class Silence {
 public:
  Silence() { stdout = stderr = nowhere(); }
  ~Silence() {
    stdout = output_;
    stderr = errors_;
  }
  Silence(const Silence &) = delete;
  Silence &operator=(const Silence &) = delete;

  static std::FILE *nowhere() {
    static std::FILE *const file = std::fopen("/dev/null", "w");
    return file;
  }

 private:
  std::FILE *output_ = stdout, *errors_ = stderr;
};

// Whether the job gives a file.
bool imports(const CcxImport &job) {
  try {
    const Silence silence;
    import_ccx(job);
    return true;
  } catch (const Failure &failure) {
    require(failure.what()[0] != '\0', "a failure without words");
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Silence::nowhere();  // opened before descriptors are counted
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  // A deck can include files, but not those of other folders, with devices among them.
  if (text.find('/') != std::string_view::npos)
    return -1;
  const Execution execution;
  const CcxImport job = job_of(text);
  const auto [nodes, modes] = counts_of(job.results);
  std::remove(job.output.c_str());
  const bool imported = imports(job);
  require(imported == exists(job.output), "a failure leaves a file, or success none");
  require(!imported || nodes > 0, "a file without mesh is imported");
  if (!imported)
    return 0;
  QDL_Record *const model = QDL_CreateFromQDL(job.output.c_str());
  require(model != nullptr, "the file that was made can't be opened");
  require(QDL_NodeCount(model) == nodes && QDL_ModeCount(model) == modes,
          "nodes or modes are missing");
  for (std::int32_t i = 0; i < nodes; ++i)
    require(std::isfinite(QDL_NodalMass(model, i)), "a mass is not finite");
  return 0;
}
