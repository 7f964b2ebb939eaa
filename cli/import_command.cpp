#include <memory>

#include "ccx_import.h"
#include "commands.h"
#include "console.h"
#include "text_input.h"
#include "write_record.h"

namespace qdlflex::cli {

namespace {

struct ImportOptions {
  CcxImport import;
  std::string units;
  bool verbose = false;
};

void add_ccx_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<ImportOptions>();
  CcxImport &import = options->import;
  import.write_options = user_write_options().value_or("");

  CLI::App *const command = app.add_subcommand("ccx", "Import results of the CalculiX solver.");
  command->add_option("results", import.results, "Result file in text form")
      ->type_name("JOB.frd")
      ->required();
  CLI::Option *const deck =
      command->add_option("--inp", import.deck, "Deck: node sets, densities, coordinates")
          ->type_name("DECK");
  command->add_option("--dat", import.tables, "Printed tables: eigenvalues, total mass")
      ->type_name("JOB.dat");
  CLI::Option *const mass =
      command->add_option("--mass", import.mass_matrix, "Mass matrix")->type_name("JOB.mas");
  CLI::Option *const rows =
      command->add_option("--dof", import.mass_matrix_rows, "Rows of the mass matrix")
          ->type_name("JOB.dof");
  mass->needs(rows);
  rows->needs(mass);
  command->add_option("--density", import.density, "Density of all elements")
      ->type_name("RHO")
      ->check(CLI::PositiveNumber);
  command
      ->add_option("--interface", import.interface_set,
                   "Node set of the interface nodes (INTERFACE, if the deck has it)")
      ->type_name("NSET")
      ->needs(deck);
  command->add_option("--units", options->units, "Units of the results, such as mm-N-t-s")
      ->type_name("UNITS")
      ->required();
  command->add_option("-o,--output", import.output, "QDL file to write")
      ->type_name("OUT.qdl")
      ->required();
  command->add_option("--options", import.write_options, "Options for the writer")
      ->type_name("TEXT")
      ->capture_default_str();
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");

  command->callback([options, &job] {
    try {
      options->import.units = parse_units(options->units);
    } catch (const Failure &failure) {
      throw CLI::ValidationError("--units", failure.what());
    }
    job = [options] {
      install_message_handlers(options->verbose);
      import_ccx(options->import);
    };
  });
}

}  // namespace

void add_import_command(CLI::App &app, Job &job) {
  CLI::App *const command =
      app.add_subcommand("import", "Make a QDL file of a solver's modes.")->require_subcommand(1);
  add_ccx_command(*command, job);
}

}  // namespace qdlflex::cli
