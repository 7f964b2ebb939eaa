#include "file_info.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>

#include "record.h"
#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr std::array<const char *, QDL_BLOCK_COUNT> kBlockNames = {
    "version code",
    "header",
    "content summary",
    "nodal coordinates",
    "element topology",
    "global body properties",
    "eigenvalues",
    "mode shapes",
    "nodal masses",
    "nodal inertias",
    "units",
    "generalized stiffness",
    "generalized mass",
    "element faces",
    "generalized damping",
    "mode shape transformation",
    "interface nodes",
    "modal stress",
    "invariant 1",
    "invariant 2",
    "invariant 3",
    "invariant 4",
    "invariant 5",
    "invariant 7",
    "invariant 8",
    "invariant 9",
    "modal preload",
    "modal loads",
    "modal strain",
    "modal statistics",
    "nodal pre-stress",
    "nodal pre-strain",
    "monitor points (old)",
    "matrix operators",
    "nodal modal loads",
    "monitor points",
    "rotor dynamics",
};

/// Blocks follow one another without gaps, so their sizes give their places. The library measures
/// the last possible block as 0: it takes what is left of the file.
std::vector<BlockInfo> list_blocks(QDL_Record *record, int64_t file_size) {
  std::vector<BlockInfo> blocks;
  int64_t offset = 0;
  for (int32_t index = 0; index < QDL_BLOCK_COUNT; ++index) {
    if (QDL_Exists(record, index) == 0) {
      continue;
    }
    const bool last = index == QDL_BLOCK_COUNT - 1;
    const int64_t size = last ? file_size - offset : QDL_size_of_block(record, index);
    blocks.push_back({index + 1, kBlockNames[static_cast<size_t>(index)], offset, size});
    offset += size;
  }
  return blocks;
}

std::vector<ModeInfo> list_modes(QDL_Record *record) {
  std::vector<ModeInfo> modes;
  for (int32_t index = 0; index < QDL_ModeCount(record); ++index) {
    ModeInfo mode{};
    mode.number = QDL_ModeNumber(record, index);
    double frequency = 0.0;
    if (QDL_Eigenvalue(record, mode.number, &mode.eigenvalue, &frequency, nullptr,
                       &mode.generalized_mass, &mode.generalized_stiffness) != 0) {
      mode.frequency = frequency;
    }
    modes.push_back(mode);
  }
  return modes;
}

void read_header(QDL_Record *record, FileInfo &info) {
  std::array<char, 129> title{};
  std::array<char, 33> date{};
  std::array<char, 129> input_file{};
  std::array<char, 17> input_type{};
  std::array<std::array<char, 81>, 3> comments{};
  QDL_Header(record, title.data(), date.data(), input_file.data(), input_type.data(),
             comments[0].data(), comments[1].data(), comments[2].data());
  info.title = title.data();
  info.date = trim(date.data());
  info.input_file = input_file.data();
  info.input_type = input_type.data();
  for (const auto &comment : comments) {
    if (comment[0] != '\0') {
      info.comments.emplace_back(comment.data());
    }
  }
}

void read_counts(QDL_Record *record, FileInfo &info) {
  info.node_count = QDL_NodeCount(record);
  info.mode_count = QDL_ModeCount(record);
  info.stress_node_count = QDL_ModeNodeCount(record, QDL_MODE_STRESS);
  info.strain_node_count = QDL_ModeNodeCount(record, QDL_MODE_STRAIN);
  int32_t list_length = 0;
  QDL_FaceListSize(record, &info.face_count, &list_length);
  QDL_FreeMemory(QDL_InterfaceNodeIDs(record, &info.interface_node_count));
}

std::string version_text(int32_t version) {
  return std::to_string(version / 10) + "." + std::to_string(version % 10);
}

void print_field(const char *name, const std::string &value) {
  if (!value.empty()) {
    std::printf("%-12s%s\n", name, value.c_str());
  }
}

void print_counts(const FileInfo &info) {
  const std::array<std::pair<const char *, int32_t>, 6> counts = {
      {{"nodes", info.node_count},
       {"modes", info.mode_count},
       {"stress at", info.stress_node_count},
       {"strain at", info.strain_node_count},
       {"faces", info.face_count},
       {"interface", info.interface_node_count}}};
  for (const auto &[name, count] : counts) {
    std::printf("%-12s%d\n", name, count);
  }
}

void print_modes(const std::vector<ModeInfo> &modes) {
  std::printf("\n%6s %18s %16s %16s %16s\n", "mode", "frequency", "eigenvalue", "gen. mass",
              "gen. stiffness");
  for (const ModeInfo &mode : modes) {
    if (mode.frequency) {
      std::printf("%6d %18.10g %16.8g %16.8g %16.8g\n", mode.number, *mode.frequency,
                  mode.eigenvalue, mode.generalized_mass, mode.generalized_stiffness);
    } else {
      std::printf("%6d %18s\n", mode.number, "not diagonal");
    }
  }
}

nlohmann::ordered_json mode_json(const ModeInfo &mode) {
  if (!mode.frequency) {
    return {{"number", mode.number}, {"frequency", nullptr}};
  }
  return {{"number", mode.number},
          {"frequency", *mode.frequency},
          {"eigenvalue", mode.eigenvalue},
          {"generalized_mass", mode.generalized_mass},
          {"generalized_stiffness", mode.generalized_stiffness}};
}

}  // namespace

FileInfo read_file_info(const std::string &path) {
  const Record record = open_record(path);
  FileInfo info;
  info.path = path;
  info.size = static_cast<int64_t>(std::filesystem::file_size(path));
  info.version = QDL_Version(record.get());
  info.xdr = is_xdr(record.get());
  info.double_precision = QDL_Double_Prec(record.get()) != 0;
  info.coarsened = QDL_IsCoarsened(record.get()) != 0;
  read_header(record.get(), info);
  info.units = read_units(record.get());
  read_counts(record.get(), info);
  info.blocks = list_blocks(record.get(), info.size);
  info.modes = list_modes(record.get());
  info.data = read_model_data(record.get());
  return info;
}

void print_tables(const FileInfo &info) {
  print_field("file", info.path + ", " + std::to_string(info.size) + " bytes");
  print_field("version", version_text(info.version) + (info.coarsened ? ", coarsened mesh" : ""));
  print_field("encoding", info.xdr ? "XDR" : "native");
  print_field("precision", info.double_precision ? "double" : "single");
  print_field("title", info.title);
  print_field("date", info.date);
  print_field("made from", info.input_file);
  print_field("input type", info.input_type);
  for (const std::string &comment : info.comments) {
    print_field("comment", comment);
  }
  print_field("units", info.units.mass + ", " + info.units.length + ", " + info.units.time + ", " +
                           info.units.force);
  print_counts(info);
  print_model_data(info.data);

  std::printf("\n%6s  %-26s %12s %12s\n", "block", "", "offset", "bytes");
  for (const BlockInfo &block : info.blocks) {
    std::printf("%6d  %-26s %12lld %12lld\n", block.id, block.name,
                static_cast<long long>(block.offset), static_cast<long long>(block.size));
  }
  if (!info.modes.empty()) {
    print_modes(info.modes);
  }
}

void print_json(const FileInfo &info) {
  nlohmann::ordered_json blocks = nlohmann::ordered_json::array();
  for (const BlockInfo &block : info.blocks) {
    blocks.push_back(
        {{"id", block.id}, {"name", block.name}, {"offset", block.offset}, {"size", block.size}});
  }
  nlohmann::ordered_json modes = nlohmann::ordered_json::array();
  for (const ModeInfo &mode : info.modes) {
    modes.push_back(mode_json(mode));
  }
  const nlohmann::ordered_json all = {{"file", info.path},
                                      {"size", info.size},
                                      {"version", version_text(info.version)},
                                      {"encoding", info.xdr ? "XDR" : "native"},
                                      {"precision", info.double_precision ? "double" : "single"},
                                      {"coarsened", info.coarsened},
                                      {"header",
                                       {{"title", info.title},
                                        {"date", info.date},
                                        {"input_file", info.input_file},
                                        {"input_type", info.input_type},
                                        {"comments", info.comments}}},
                                      {"units",
                                       {{"mass", info.units.mass},
                                        {"length", info.units.length},
                                        {"time", info.units.time},
                                        {"force", info.units.force}}},
                                      {"counts",
                                       {{"nodes", info.node_count},
                                        {"modes", info.mode_count},
                                        {"stress_nodes", info.stress_node_count},
                                        {"strain_nodes", info.strain_node_count},
                                        {"faces", info.face_count},
                                        {"interface_nodes", info.interface_node_count}}},
                                      {"blocks", blocks},
                                      {"modes", modes},
                                      {"model_data", model_data_json(info.data)}};
  // Text in a file need not be UTF-8.
  std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace qdlflex::cli
