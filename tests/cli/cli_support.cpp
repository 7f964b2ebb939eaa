#include "cli_support.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "text_input.h"

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "qdlflex-cli-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    ADD_FAILURE() << "no temporary folder";
  }
  folder_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TemporaryFolder::write(const std::string &name, const std::string &content) const {
  std::ofstream(path(name), std::ios::binary) << content;
  return path(name);
}

std::string read_text(const std::string &path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

CommandResult run_qdlflex(const std::string &arguments) {
  const TemporaryFolder folder;
  const std::string command = std::string("'" QDLFLEX_COMMAND "' ") + arguments + " > '" +
                              folder.path("output") + "' 2> '" + folder.path("errors") + "'";
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_text(folder.path("output")),
          read_text(folder.path("errors"))};
}

std::string failure_of(const std::function<void()> &action) {
  try {
    action();
  } catch (const qdlflex::cli::Failure &failure) {
    return failure.what();
  }
  return {};
}

std::string replaced(std::string text, const std::string &from, const std::string &to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << "\"" << from << "\" is not in the text";
  return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

std::string frd_text(const std::string &results) {
  return "    1C\n"
         "    1UA tetrahedron\n"
         "    1UUSER\n"
         "    1UMAT    1STEEL\n"
         "    2C                             4                                     1\n"
         " -1         1 1.00000E+00 0.00000E+00 0.00000E+00\n"
         " -1         2 2.00000E+00 0.00000E+00 0.00000E+00\n"
         " -1         3 1.00000E+00 1.00000E+00 0.00000E+00\n"
         " -1         4 1.00000E+00 0.00000E+00 1.00000E+00\n"
         " -3\n"
         "    3C                             1                                     1\n"
         " -1         7    3    0    1\n"
         " -2         1         2         3         4\n"
         " -3\n" +
         results + " 9999\n";
}

namespace {

std::string formatted(const char *format, auto... values) {
  char text[160];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

}  // namespace

std::string frd_block(int mode, const std::string &name, double scale, int step) {
  std::vector<std::string> components = {"D1", "D2", "D3", "ALL"};
  if (name != "DISP") {
    const std::string letter = name == "STRESS" ? "S" : "E";
    components.clear();
    for (const char *const pair : {"XX", "YY", "ZZ", "XY", "YZ", "ZX"}) {
      components.push_back(letter + pair);
    }
  }
  std::string text =
      formatted("    1PSTEP%26d%12d%12d\n", mode, 1, step) +
      "    1PGM                1.000000E+00\n" +
      formatted("    1PGK                %.6E\n", 1000.0 * mode) +
      formatted("    1PMODE%26d\n", mode) +
      formatted("  100CL  101 %11.5E%12d                     2%5dMODAL      1\n", 0.5 * mode, 4,
                mode) +
      formatted(" -4  %-8s%5d    1\n", name.c_str(), static_cast<int>(components.size()));
  for (const std::string &component : components) {
    text += formatted(" -5  %-8s    1    2    1    0\n", component.c_str());
  }
  const int value_count = name == "DISP" ? 3 : 6;
  for (int node = 1; node <= 4; ++node) {
    text += formatted(" -1%10d", node);
    for (int k = 1; k <= value_count; ++k) {
      text += formatted("%12.5E", scale * (100.0 * mode + 10.0 * node + k));
    }
    text += "\n";
  }
  return text + " -3\n";
}
