#include "console.h"

#include <qdlflex/qdlflex.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace qdlflex::cli {

namespace {

constexpr int64_t kBarWidth = 40;
constexpr const char *kEraseLine = "\r\033[K";

bool bar_on_screen = false;
int64_t error_count = 0;

void erase_bar() {
  if (bar_on_screen) {
    std::fputs(kEraseLine, stderr);
    bar_on_screen = false;
  }
}

void print_message(const char *kind, std::string_view text) {
  erase_bar();
  while (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  std::fprintf(stderr, "qdlflex: %s%.*s\n", kind, static_cast<int>(text.size()), text.data());
}

int64_t on_error(const char *text) {
  ++error_count;
  print_message("error: ", text);
  return 0;
}

int64_t on_warning(const char *text) {
  print_message("warning: ", text);
  return 0;
}

int64_t on_information(const char *text) {
  erase_bar();
  std::fprintf(stderr, "%s%s", text, std::string_view(text).ends_with('\n') ? "" : "\n");
  return 0;
}

}  // namespace

void install_message_handlers(bool verbose) {
  const QDL_MessageHandler handlers[3] = {on_error, on_warning, verbose ? on_information : nullptr};
  SetMessageHandlers(handlers);
}

int64_t reported_error_count() {
  return error_count;
}

void print_error(std::string_view text) {
  print_message("error: ", text);
}

void print_warning(std::string_view text) {
  print_message("warning: ", text);
}

ProgressBar::ProgressBar(std::string title, int64_t steps)
    : title_(std::move(title)), steps_(std::max<int64_t>(steps, 1)), shown_(isatty(2) != 0) {}

ProgressBar::~ProgressBar() {
  erase_bar();
}

void ProgressBar::advance() {
  ++done_;
  if (!shown_) {
    return;
  }
  const int64_t filled = std::min(kBarWidth, kBarWidth * done_ / steps_);
  const std::string bar(static_cast<size_t>(filled), '#');
  std::fprintf(stderr, "%s%s [%-*s] %3d%%", kEraseLine, title_.c_str(), static_cast<int>(kBarWidth),
               bar.c_str(), static_cast<int>(100 * std::min(done_, steps_) / steps_));
  bar_on_screen = true;
}

}  // namespace qdlflex::cli
