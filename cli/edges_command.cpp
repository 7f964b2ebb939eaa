#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "console.h"
#include "faces.h"
#include "free_edges.h"
#include "units.h"

namespace qdlflex::cli {

namespace {

struct EdgeOptions {
  std::string file;
  bool json = false;
  bool verbose = false;
};

struct Chain {
  std::vector<int32_t> nodes;
  double length;

  bool closed() const { return nodes.size() > 1 && nodes.front() == nodes.back(); }
};

double length_of(QDL_Record *record, const std::vector<int32_t> &nodes) {
  double length = 0.0;
  std::array<double, 3> from{};
  for (size_t k = 0; k < nodes.size(); ++k) {
    std::array<double, 3> to{};
    QDL_NodeCoordinates(record, QDL_NodeIndex(record, nodes[k]), to.data());
    if (k > 0) {
      length += std::hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
    }
    from = to;
  }
  return length;
}

void print_json(const EdgeOptions &options, const std::vector<Chain> &chains,
                const std::string &length_unit) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Chain &chain : chains) {
    list.push_back({{"closed", chain.closed()}, {"length", chain.length}, {"nodes", chain.nodes}});
  }
  const nlohmann::ordered_json all = {{"file", options.file},
                                      {"length_unit", length_unit},
                                      {"count", chains.size()},
                                      {"chains", list}};
  std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

void print_table(const std::vector<Chain> &chains, const std::string &length_unit) {
  std::printf("free edges: %zu chain%s\n", chains.size(), chains.size() == 1 ? "" : "s");
  for (size_t k = 0; k < chains.size(); ++k) {
    std::printf("chain %zu, %s, length %.7g %s:", k + 1, chains[k].closed() ? "closed" : "open",
                chains[k].length, abbreviation_of(length_unit).c_str());
    for (const int32_t node : chains[k].nodes) {
      std::printf(" %d", node);
    }
    std::printf("\n");
  }
}

void show_edges(const EdgeOptions &options) {
  install_message_handlers(options.verbose);
  const Record record = open_record(options.file);
  check_faces(record.get());
  std::vector<Chain> chains;
  for (std::vector<int32_t> &nodes : read_free_edges(record.get())) {
    const double length = length_of(record.get(), nodes);
    chains.push_back({std::move(nodes), length});
  }
  const std::string length_unit = read_units(record.get()).length;
  options.json ? print_json(options, chains, length_unit) : print_table(chains, length_unit);
}

}  // namespace

void add_edges_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<EdgeOptions>();
  CLI::App *const command = app.add_subcommand("edges", "Show the edges that only one face uses.");
  command->add_option("file", options->file, "QDL file")->type_name("FILE")->required();
  command->add_flag("--json", options->json, "Print JSON instead of lines");
  command->add_flag("-v,--verbose", options->verbose, "Show the library's information lines");
  command->callback([options, &job] { job = [options] { show_edges(*options); }; });
}

}  // namespace qdlflex::cli
