#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model_data.h"
#include "units.h"

namespace qdlflex::cli {

struct BlockInfo {
  int32_t id;
  const char *name;
  int64_t offset;
  int64_t size;
};

struct ModeInfo {
  int32_t number;
  std::optional<double> frequency;  // none when the generalized matrices are not diagonal
  double eigenvalue;
  double generalized_mass;
  double generalized_stiffness;
};

/// What `qdlflex info` tells of a file.
struct FileInfo {
  std::string path;
  int64_t size = 0;
  int32_t version = 0;  // ten times the format's version number
  bool xdr = false;
  bool double_precision = true;
  bool coarsened = false;

  std::string title;
  std::string date;
  std::string input_file;
  std::string input_type;
  std::vector<std::string> comments;

  Units units;
  int32_t node_count = 0;
  int32_t mode_count = 0;
  int32_t stress_node_count = 0;
  int32_t strain_node_count = 0;
  int32_t face_count = 0;
  int32_t interface_node_count = 0;
  std::vector<BlockInfo> blocks;
  std::vector<ModeInfo> modes;
  ModelData data;
};

/// Throws a Failure if the file cannot be opened as a QDL file.
FileInfo read_file_info(const std::string &path);

void print_tables(const FileInfo &info);
void print_json(const FileInfo &info);

}  // namespace qdlflex::cli
