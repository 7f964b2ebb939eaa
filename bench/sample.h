// Models and files that the benchmarks measure on.
#pragma once

#include <qdlflex/qdlflex.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/compare.h"

namespace qdlflex::bench {

// A folder for the files of one row, removed at its end.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "qdl-bench-XXXXXX").string();
    require(::mkdtemp(name.data()) != nullptr, "a folder for the benchmark's files");
    path_ = name;
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder &) = delete;
  Folder &operator=(const Folder &) = delete;

  std::string file(const char *name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// A model that ends with its scope.
class Model {
 public:
  explicit Model(QDL_Record *record) : record_(record) { require(record != nullptr, "a model"); }
  ~Model() { QDL_UnLink(record_); }
  Model(const Model &) = delete;
  Model &operator=(const Model &) = delete;

  operator QDL_Record *() const { return record_; }

 private:
  QDL_Record *record_;
};

// A component that differs from its neighbours in every respect.
inline double component(std::int32_t mode, std::int32_t node, int i) {
  return 1.0 + 0.37 * mode + 1e-3 * node + 0.11 * i;
}

inline void set_nodes(QDL_Record *model, std::int32_t nodes) {
  for (std::int32_t node = 1; node <= nodes; ++node) {
    QDL_SetNodeCoordinates(model, node, 0.5 * node, 0.25 * node, 1.0);
  }
}

inline void set_modes(QDL_Record *model, std::int32_t nodes, std::int32_t modes) {
  for (std::int32_t mode = 1; mode <= modes; ++mode) {
    QDL_SetGeneralizedMass(model, mode, mode, 1.0);
    QDL_SetGeneralizedStiffness(model, mode, mode, 1e4 * mode);
    for (std::int32_t node = 1; node <= nodes; ++node) {
      double six[6];
      for (int i = 0; i < 6; ++i)
        six[i] = component(mode, node, i);
      QDL_SetModeVec(model, mode, node, QDL_MODE_SHAPE, six);
    }
  }
}

inline void write_model(QDL_Record *model, const std::string &path, const char *options) {
  ::setenv("ZEB_QDLWRITE_OPTIONS", options, 1);
  require(QDL_write_QDL(model, path.c_str()) == 1, "the model's file can be written");
  ::unsetenv("ZEB_QDLWRITE_OPTIONS");
}

inline void write_sample(const std::string &path, std::int32_t nodes, std::int32_t modes,
                         const char *options) {
  const Model model(QDL_Create(nodes, modes));
  set_nodes(model, nodes);
  set_modes(model, nodes, modes);
  write_model(model, path, options);
}

}  // namespace qdlflex::bench
