#include "support/fixture.h"

#include <qdlflex/qdlflex.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp, setenv and unsetenv are POSIX

#include <array>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "support/fault.h"

namespace qdltest {

namespace {

namespace fs = std::filesystem;

constexpr std::array kVariables = {"QDL_MAX_MODE_MEMORY",
                                   "QDL_MAX_SMODE_MEMORY",
                                   "ZEB_TMP_MOD",
                                   "ZEB_TMP_STR",
                                   "ZEB_TMP_STN",
                                   "TMPDIR",
                                   "ZEB_QDLWRITE_OPTIONS",
                                   "QDL_RIGID_BODY_THRESHOLD",
                                   "ZEB_MFORCE_NO_FEA_MASS",
                                   "ZEB_NO_TIME_MONITOR_STAMP",
                                   "OXR_A2A_BDF2SHL_PID"};

MessageFixture *current = nullptr;

template <std::vector<std::string> MessageFixture::*kind>
std::int64_t record(const char *text) {
  const PauseFaults pause;
  if (current != nullptr)
    (current->*kind).emplace_back(text);
  return 0;
}

fs::path make_directory() {
  std::string name = (fs::temp_directory_path() / "qdlflex-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr)
    throw std::runtime_error("no temporary directory");
  return name;
}

}  // namespace

std::vector<double> taken(double *array, std::size_t count) {
  std::vector<double> values;
  if (array != nullptr)
    values.assign(array, array + count);
  QDL_FreeMemory(array);
  return values;
}

ScopedEnvironment::ScopedEnvironment(const std::string &name, const char *value) : name_(name) {
  if (const char *before = std::getenv(name.c_str()))
    before_ = before;
  if (value != nullptr)
    setenv(name.c_str(), value, 1);
  else
    unsetenv(name.c_str());
}

ScopedEnvironment::~ScopedEnvironment() {
  if (before_)
    setenv(name_.c_str(), before_->c_str(), 1);
  else
    unsetenv(name_.c_str());
}

ResourceLimit::ResourceLimit(int resource, std::size_t limit) : resource_(resource) {
  getrlimit(resource_, &before_);
  rlimit lowered = before_;
  lowered.rlim_cur = limit;
  setrlimit(resource_, &lowered);
}

ResourceLimit::~ResourceLimit() {
  setrlimit(resource_, &before_);
}

std::size_t open_descriptors() {
  const fs::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

void write_file(const fs::path &path, const std::vector<std::uint8_t> &bytes) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(reinterpret_cast<const char *>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  if (!stream.flush())
    throw std::runtime_error("cannot write " + path.string());
}

std::vector<std::uint8_t> read_file(const fs::path &path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream)
    throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

MessageFixture::MessageFixture() : directory_(make_directory()) {}

MessageFixture::~MessageFixture() {
  std::error_code ignored;
  fs::remove_all(directory_, ignored);
}

void MessageFixture::SetUp() {
  for (const char *name : kVariables)
    environment_.push_back(std::make_unique<ScopedEnvironment>(name, nullptr));
  environment_.push_back(std::make_unique<ScopedEnvironment>("TMP", directory_.c_str()));
  const std::array<QDL_MessageHandler, 3> handlers = {record<&MessageFixture::errors>,
                                                      record<&MessageFixture::warnings>,
                                                      record<&MessageFixture::infos>};
  SetMessageHandlers(handlers.data());
  current = this;
  descriptors_before_ = open_descriptors();
}

void MessageFixture::TearDown() {
  QDL_Terminate();
  EXPECT_EQ(open_descriptors(), descriptors_before_) << "a descriptor is left open";
  EXPECT_EQ(temporary_files(), std::vector<std::string>{}) << "left behind";
  current = nullptr;
  environment_.clear();
}

std::string MessageFixture::file(const std::string &name,
                                 const std::vector<std::uint8_t> &bytes) const {
  write_file(directory_ / name, bytes);
  return path(name);
}

std::vector<std::string> MessageFixture::temporary_files() const {
  std::vector<std::string> names;
  for (const fs::directory_entry &entry : fs::directory_iterator(directory_)) {
    if (entry.path().filename().string().starts_with("qdl_"))
      names.push_back(entry.path().string());
  }
  return names;
}

void MessageFixture::clear_messages() {
  errors.clear();
  warnings.clear();
  infos.clear();
}

void MessageFixture::expect_no_messages() const {
  EXPECT_EQ(errors, std::vector<std::string>{});
  EXPECT_EQ(warnings, std::vector<std::string>{});
  EXPECT_EQ(infos, std::vector<std::string>{});
}

void MessageFixture::expect_only_error(const std::string &text) const {
  EXPECT_EQ(errors, std::vector<std::string>{text});
  EXPECT_EQ(warnings, std::vector<std::string>{});
}

void MessageFixture::expect_only_warnings(const std::vector<std::string> &texts) const {
  EXPECT_EQ(warnings, texts);
  EXPECT_EQ(errors, std::vector<std::string>{});
}

void MessageFixture::expect_no_model(std::int32_t result, std::int32_t failure) {
  EXPECT_EQ(result, failure);
  expect_only_error("The database has not been initialized.");
  clear_messages();
}

void MessageFixture::expect_no_memory(const std::string &area) {
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_TRUE(errors[0].starts_with("Failed to allocate memory at line ")) << errors[0];
  EXPECT_TRUE(errors[0].ends_with(" in file " + area + ".\n")) << errors[0];
  clear_messages();
}

}  // namespace qdltest
