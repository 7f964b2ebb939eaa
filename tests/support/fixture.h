// What every test of the C interface shares: recorded messages, a directory of its own, and a check
// that nothing is left behind.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qdltest {

// Sets a variable, or removes it for a null value, until the end of the scope.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const std::string &name, const char *value);
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment &) = delete;
  ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

// Lowers a limit of the process, such as RLIMIT_FSIZE, until the end of the scope.
class ResourceLimit {
 public:
  ResourceLimit(int resource, std::size_t limit);
  ~ResourceLimit();
  ResourceLimit(const ResourceLimit &) = delete;
  ResourceLimit &operator=(const ResourceLimit &) = delete;

 private:
  int resource_;
  rlimit before_{};
};

std::size_t open_descriptors();

// The values of an array that the library has handed out, which is released; none for null.
std::vector<double> taken(double *array, std::size_t count);

void write_file(const std::filesystem::path &path, const std::vector<std::uint8_t> &bytes);
std::vector<std::uint8_t> read_file(const std::filesystem::path &path);

// Installs the three message handlers, gives the test an empty directory for its files and the
// library's temporary files, and starts from an environment without any of the library's variables.
// At the end every model is destroyed; then no temporary file and no descriptor may be left.
class MessageFixture : public testing::Test {
 public:
  std::vector<std::string> errors, warnings, infos;

 protected:
  MessageFixture();
  ~MessageFixture() override;
  void SetUp() override;
  void TearDown() override;

  const std::filesystem::path &directory() const { return directory_; }
  // The full name of a file in the directory; the second form also writes it.
  std::string path(const std::string &name) const { return (directory_ / name).string(); }
  std::string file(const std::string &name, const std::vector<std::uint8_t> &bytes) const;

  // The library's temporary files that are there now.
  std::vector<std::string> temporary_files() const;

  void clear_messages();
  void expect_no_messages() const;
  // This error once, and neither another error nor a warning.
  void expect_only_error(const std::string &text) const;
  void expect_only_warnings(const std::vector<std::string> &texts) const;
  // The result of a call without a model: its failure value, after the error about that. Forgets
  // the messages.
  void expect_no_model(std::int32_t result, std::int32_t failure = 0);
  // The one error that an area of the library found no memory. Forgets the messages.
  void expect_no_memory(const std::string &area);

 private:
  std::filesystem::path directory_;
  std::vector<std::unique_ptr<ScopedEnvironment>> environment_;
  std::size_t descriptors_before_ = 0;
};

}  // namespace qdltest
