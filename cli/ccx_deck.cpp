#include "ccx_deck.h"

#include <filesystem>
#include <optional>

#include "text_input.h"

namespace qdlflex::cli {

namespace {

constexpr int kDeepestInclude = 10;
constexpr int kMostIncludes = 1000;

// The nodes that short lines can ask for, in sets made of numbers or of other sets: some, and for
// each node of the deck so many.
constexpr size_t kSetNodes = 1'000'000;
constexpr size_t kSetNodesPerNode = 32;

/// A keyword line: "*NODE, NSET=All" is the card "*NODE" with the parameter NSET of value "ALL".
struct Card {
  std::string name;
  std::map<std::string, std::string, std::less<>> parameters;

  std::string parameter(std::string_view key) const {
    const auto found = parameters.find(key);
    return found == parameters.end() ? std::string() : found->second;
  }
};

std::string without_quotes(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  return std::string(text);
}

Card parse_card(std::string_view line) {
  Card card;
  for (const std::string_view field : split(line, ',')) {
    if (card.name.empty()) {
      card.name = upper(field);
      continue;
    }
    const size_t equals = field.find('=');
    const std::string key = upper(trim(field.substr(0, equals)));
    const std::string_view value =
        equals == std::string_view::npos ? std::string_view() : trim(field.substr(equals + 1));
    // A file name keeps its case.
    card.parameters[key] = key == "INPUT" ? without_quotes(value) : upper(without_quotes(value));
  }
  return card;
}

class DeckReader {
 public:
  explicit DeckReader(CcxDeck &deck) : deck_(deck) {}

  void read(const std::string &path, int depth) {
    LineReader lines(path);
    while (const auto line = lines.next()) {
      if (line->starts_with("**") || trim(*line).empty()) {
        continue;
      }
      if (line->starts_with('*')) {
        begin_card(lines, parse_card(*line), depth);
      } else {
        read_data(lines, *line);
      }
    }
  }

 private:
  void begin_card(const LineReader &lines, Card card, int depth) {
    if (card.name == "*INCLUDE") {
      include(lines, card.parameter("INPUT"), depth);
      return;
    }
    card_ = std::move(card);
    if (card_.name == "*MATERIAL") {
      material_ = card_.parameter("NAME");
    } else if (card_.name == "*NSET") {
      if (card_.parameter("NSET").empty()) {
        lines.fail("*NSET without a name");
      }
      deck_.node_sets[card_.parameter("NSET")];
    }
  }

  /// The solver looks for a relative name in the folder where it runs, which is the deck's.
  void include(const LineReader &lines, const std::string &name, int depth) {
    if (name.empty()) {
      lines.fail("*INCLUDE without INPUT=");
    }
    if (depth == kDeepestInclude) {
      lines.fail("files include one another too deeply");
    }
    if (++include_count_ > kMostIncludes) {
      lines.fail("too many files are included");
    }
    const auto folder = std::filesystem::path(lines.path()).parent_path();
    const std::string path = (folder / name).string();
    if (!std::filesystem::is_regular_file(path)) {
      lines.fail("the included file " + path + " does not exist");
    }
    read(path, depth + 1);
  }

  void read_data(const LineReader &lines, std::string_view line) {
    if (card_.name == "*NODE") {
      read_node(lines, line);
    } else if (card_.name == "*NSET") {
      read_set_line(lines, line);
    } else if (card_.name == "*DENSITY") {
      // Further lines hold the density at other temperatures.
      deck_.densities.try_emplace(material_, lines.real(split(line, ',').front()));
    }
  }

  void read_node(const LineReader &lines, std::string_view line) {
    const auto fields = split(line, ',');
    const int32_t id = lines.integer(fields[0]);
    Point position{};
    for (size_t k = 0; k < 3 && k + 1 < fields.size(); ++k) {
      position[k] = fields[k + 1].empty() ? 0.0 : lines.real(fields[k + 1]);
    }
    deck_.nodes[id] = position;
    if (const std::string set = card_.parameter("NSET"); !set.empty()) {
      deck_.node_sets[set].push_back(id);
    }
  }

  void read_set_line(const LineReader &lines, std::string_view line) {
    const auto fields = split(line, ',');
    std::vector<int32_t> &set = deck_.node_sets[card_.parameter("NSET")];
    if (card_.parameters.contains("GENERATE")) {
      generate(lines, fields, set);
      return;
    }
    for (const std::string_view field : fields) {
      if (field.empty()) {
        continue;
      }
      if (const auto id = parse_integer(field)) {
        set.push_back(*id);
      } else {
        append_set(lines, upper(field), set);
      }
    }
  }

  void count_set_nodes(const LineReader &lines, size_t count) {
    set_node_count_ += count;
    if (set_node_count_ > kSetNodes + kSetNodesPerNode * deck_.nodes.size()) {
      lines.fail("the node sets are too large");
    }
  }

  void generate(const LineReader &lines, const std::vector<std::string_view> &fields,
                std::vector<int32_t> &set) {
    const int64_t first = lines.integer(fields[0]);
    const int64_t last = fields.size() > 1 ? lines.integer(fields[1]) : first;
    const int64_t step =
        fields.size() > 2 && !fields[2].empty() ? lines.integer(fields[2]) : int64_t{1};
    if (step < 1 || last < first) {
      lines.fail("these nodes cannot be generated");
    }
    count_set_nodes(lines, static_cast<size_t>((last - first) / step) + 1);
    for (int64_t id = first; id <= last; id += step) {
      set.push_back(static_cast<int32_t>(id));
    }
  }

  void append_set(const LineReader &lines, const std::string &name, std::vector<int32_t> &set) {
    const auto other = deck_.node_sets.find(name);
    if (other == deck_.node_sets.end()) {
      lines.fail("there is no node set " + name + " above this line");
    }
    count_set_nodes(lines, other->second.size());
    const std::vector<int32_t> ids = other->second;
    set.insert(set.end(), ids.begin(), ids.end());
  }

  CcxDeck &deck_;
  int include_count_ = 0;
  size_t set_node_count_ = 0;
  Card card_;
  std::string material_;
};

}  // namespace

CcxDeck read_ccx_deck(const std::string &path) {
  CcxDeck deck;
  DeckReader(deck).read(path, 0);
  return deck;
}

}  // namespace qdlflex::cli
