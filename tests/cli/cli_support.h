#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// A folder of its own for a test, gone at its end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  std::string path(const std::string &name) const { return (folder_ / name).string(); }

  /// Writes a file and returns its path.
  std::string write(const std::string &name, const std::string &content) const;

 private:
  std::filesystem::path folder_;
};

std::string read_text(const std::string &path);

struct CommandResult {
  int exit_code;
  std::string output;
  std::string errors;
};

/// Runs the command qdlflex with arguments in the form of the shell.
CommandResult run_qdlflex(const std::string &arguments);

/// The message of the Failure that `action` throws, or "" if it throws none.
std::string failure_of(const std::function<void()> &action);

std::string replaced(std::string text, const std::string &from, const std::string &to);

/// A result file with one tetrahedron of four nodes: 1 at (1, 0, 0) and 2, 3, 4 from there one unit
/// along x, y and z. `results` goes between the mesh and the closing line.
std::string frd_text(const std::string &results);

/// A result block of a mode for `frd_text`. The value of component k at node n of mode m is
/// scale * (100 m + 10 n + k), all starting from 1.
std::string frd_block(int mode, const std::string &name, double scale = 1.0, int step = 1);
