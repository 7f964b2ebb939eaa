#include "support/messages.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>

#include <qdlflex/qdlflex.h>

namespace qdlflex {
namespace {

constexpr std::size_t kMessageBytes = 1008;

enum Severity : std::size_t { kError, kWarning, kInformation, kSeverities };

std::array<QDL_MessageHandler, kSeverities> handlers{};

std::int64_t deliver(Severity severity, const char *format, std::va_list arguments) {
  // The buffer is local, so that a handler may call back into the library.
  char text[kMessageBytes];
  if (format == nullptr || std::vsnprintf(text, sizeof text, format, arguments) < 0)
    text[0] = '\0';
  const QDL_MessageHandler handler = handlers[severity];
  return handler == nullptr ? 0 : handler(text);
}

}  // namespace

void report_null_handle() {
  QDL_Error("The database has not been initialized.");
}

void report_allocation_failure(int line, const char *area) {
  QDL_Error("Failed to allocate memory at line %d in file %s.\n", line, area);
}

}  // namespace qdlflex

using namespace qdlflex;

int32_t SetMessageHandlers(const QDL_MessageHandler *table) {
  if (table == nullptr)
    return 0;
  for (std::size_t i = 0; i < kSeverities; ++i)
    handlers[i] = table[i];
  return 1;
}

int64_t QDL_Error(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int64_t result = deliver(kError, format, arguments);
  va_end(arguments);
  return result;
}

int64_t QDL_Warning(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int64_t result = deliver(kWarning, format, arguments);
  va_end(arguments);
  return result;
}

int64_t QDL_Info(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int64_t result = deliver(kInformation, format, arguments);
  va_end(arguments);
  return result;
}
