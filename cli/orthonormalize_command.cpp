#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "console.h"
#include "record.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr const char *kWriteOptionsVariable = "ZEB_QDLWRITE_OPTIONS";
constexpr int32_t kHeaderIndex = 1;
constexpr int64_t kNativeHeaderSize = 544;  // one byte per character; XDR takes four

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
  std::string text =
      limit("highpass", options.highpass, -9e99) + "," + limit("lowpass", options.lowpass, 9e99);
  if (QDL_size_of_block(record, kHeaderIndex) == kNativeHeaderSize) {
    text += ",no_xdr";
  }
  if (QDL_Double_Prec(record) == 0) {
    text += ",single";
  }
  return text;
}

void print_frequencies(const std::string &path) {
  const Record record = open_record(path);
  const int32_t modes = QDL_ModeCount(record.get());
  std::printf("%s: %d modes\n%6s %18s\n", path.c_str(), modes, "mode", "frequency");
  for (int32_t index = 0; index < modes; ++index) {
    const int32_t number = QDL_ModeNumber(record.get(), index);
    double frequency = 0.0;
    QDL_Eigenvalue(record.get(), number, nullptr, &frequency, nullptr, nullptr, nullptr);
    std::printf("%6d %18.10g\n", number, frequency);
  }
}

void orthonormalize(const OrthonormalizeOptions &options) {
  install_message_handlers(options.verbose);
  check_output_is_not(options.input, options.output);
  {
    const Record record = open_record(options.input);
    // The file's encoding is no longer known once the modes have moved elsewhere.
    const std::string text = write_options(record.get(), options);
    if (QDL_OrthoNormalize(record.get()) == 0) {
      throw Failure(options.input + ": the modes cannot be orthonormalized");
    }
    setenv(kWriteOptionsVariable, text.c_str(), 1);
    if (QDL_write_QDL(record.get(), options.output.c_str()) == 0) {
      throw Failure(options.output + " was not written");
    }
  }
  print_frequencies(options.output);
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
