#include <algorithm>
#include <cstring>
#include <ctime>
#include <span>

#include <qdlflex/qdlflex.h>

#include "record/record.h"
#include "support/boundary.h"

namespace qdlflex {
namespace {

constexpr const char *kArea = "qdlset";

/// The current local time in the form of asctime, whose newline becomes a blank.
void set_date(std::array<char, 32> &date) {
  date = {};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  char text[26];
  if (::localtime_r(&now, &local) == nullptr || ::asctime_r(&local, text) == nullptr)
    return;
  std::replace(text, text + std::strlen(text), '\n', ' ');
  std::copy_n(text, std::strlen(text), date.begin());
}

/// How the messages speak of a text.
struct TextNames {
  const char *excess;
  const char *truncated;
  const char *stored;
};

void set_text(std::span<char> field, char *text, const TextNames &names) {
  std::ranges::fill(field, '\0');
  if (text != nullptr) {
    const std::size_t limit = field.size() - 1;
    const std::size_t length = std::strlen(text);
    if (length > limit) {
      QDL_Warning("%s too big: max size %ld, specified size %ld.\nTruncating %s.", names.excess,
                  static_cast<long>(limit), static_cast<long>(length), names.truncated);
    }
    // Only newlines are written to, so that a text in read-only memory works as long as it has
    // none.
    for (char *newline = text; (newline = std::strchr(newline, '\n')) != nullptr;)
      *newline = ' ';
    std::copy_n(text, std::min(length, limit), field.begin());
  }
  QDL_Info("%s: %s", names.stored, field.data());
}

}  // namespace
}  // namespace qdlflex

using namespace qdlflex;

int32_t QDL_SetHeader(QDL_Record *model, char *title, char *inputName, char *inputType,
                      char *comment1, char *comment2, char *comment3) {
  return with_model(model, kArea, 0, [&](QDL_Record &record) {
    Header &header = record.header;
    set_date(header.date);
    set_text(header.title, title, {"Title", "title", "Title"});
    set_text(header.input_name, inputName, {"Input file name", "input file name", "Name "});
    set_text(header.input_type, inputType, {"Input file type spec", "input file type", "Type "});
    set_text(header.comments[0], comment1, {"Comment 1", "Comment 1", "Comment 1"});
    set_text(header.comments[1], comment2, {"Comment 2", "Comment 2", "Comment 2"});
    set_text(header.comments[2], comment3, {"Comment 3", "Comment 3", "Comment 3"});
    return 1;
  });
}
