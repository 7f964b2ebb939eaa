#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qdlflex::cli {

/// Sends the library's messages to standard error; its information lines only when `verbose`.
void install_message_handlers(bool verbose);

/// How many errors the library has reported so far.
int64_t reported_error_count();

/// Lines on standard error, in the form of the library's messages.
void print_error(std::string_view text);
void print_warning(std::string_view text);

/// A bar on standard error while a long job runs; nothing at all when that is no terminal.
class ProgressBar {
 public:
  ProgressBar(std::string title, int64_t steps);
  ~ProgressBar();
  ProgressBar(const ProgressBar &) = delete;
  ProgressBar &operator=(const ProgressBar &) = delete;

  void advance();

 private:
  std::string title_;
  int64_t steps_;
  int64_t done_ = 0;
  bool shown_;
};

}  // namespace qdlflex::cli
