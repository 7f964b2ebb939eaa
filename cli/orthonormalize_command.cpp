#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "console.h"
#include "record.h"
#include "text_input.h"
#include "write_record.h"

namespace qdlflex::cli {

namespace {

struct OrthonormalizeOptions {
  std::string input;
  std::string output;
  std::optional<double> highpass;
  std::optional<double> lowpass;
  bool verbose = false;
};

/// A limit in the form that the writer reads, which knows no plus sign.
std::string limit(const char *name, std::optional<double> frequency, double without) {
  char text[40];
  std::snprintf(text, sizeof text, "%s(%.17g)", name, frequency.value_or(without));
  std::string option(text);
  std::erase(option, '+');
  return option;
}

std::string write_options(QDL_Record *record, const OrthonormalizeOptions &options) {
  // The writer's own limits would leave out modes above 1e8 and below -1.
  return limit("highpass", options.highpass, -9e99) + "," +
         limit("lowpass", options.lowpass, 9e99) + same_form_options(record);
}

void write_modes(const OrthonormalizeOptions &options) {
  const Record record = open_record(options.input);
  const bool has_modes = QDL_ModeCount(record.get()) > 0;
  const auto must_have_modes = [has_modes](const std::string &written) {
    if (has_modes && QDL_ModeCount(open_record(written).get()) == 0) {
      throw Failure("none of the modes would be left");
    }
  };
  write_record(record.get(), options.output, write_options(record.get(), options), must_have_modes);
}

void print_frequencies(const std::string &path, QDL_Record *record) {
  const int32_t modes = QDL_ModeCount(record);
  std::printf("%s: %d modes\n%6s %18s\n", path.c_str(), modes, "mode", "frequency");
  for (int32_t index = 0; index < modes; ++index) {
    const int32_t number = QDL_ModeNumber(record, index);
    double frequency = 0.0;
    QDL_Eigenvalue(record, number, nullptr, &frequency, nullptr, nullptr, nullptr);
    std::printf("%6d %18.10g\n", number, frequency);
  }
}

void orthonormalize(const OrthonormalizeOptions &options) {
  install_message_handlers(options.verbose);
  check_output_is_not(options.input, options.output);
  write_modes(options);
  const Record written = open_record(options.output);
  print_frequencies(options.output, written.get());
}

void check_finite(const char *name, std::optional<double> value) {
  if (value && !std::isfinite(*value)) {
    throw CLI::ValidationError(name, "not a frequency");
  }
}

}  // namespace

void add_orthonormalize_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<OrthonormalizeOptions>();
  CLI::App *const command =
      app.add_subcommand("orthonormalize", "Write a QDL file with orthonormal modes.");
  command->add_option("file", options->input, "QDL file")->type_name("FILE")->required();
  command->add_option("-o,--output", options->output, "QDL file to write")
      ->type_name("OUT.qdl")
      ->required();
  command->add_option("--highpass", options->highpass, "Leave out modes up to this frequency")
      ->type_name("F");
  command->add_option("--lowpass", options->lowpass, "Leave out modes above this frequency")
      ->type_name("F");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job] {
    check_finite("--highpass", options->highpass);
    check_finite("--lowpass", options->lowpass);
    job = [options] { orthonormalize(*options); };
  });
}

}  // namespace qdlflex::cli
