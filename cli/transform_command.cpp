#include <array>
#include <cmath>
#include <map>
#include <span>
#include <vector>

#include "commands.h"
#include "edit_command.h"
#include "text_input.h"
#include "units.h"

namespace qdlflex::cli {

namespace {

using Words = std::span<const std::string>;
using Edit = std::function<int32_t(QDL_Record *)>;
using Vector = std::array<double, 3>;

double real(const std::string &word) {
  const auto value = parse_real(word);
  if (!value) {
    throw Failure("\"" + word + "\" is no number");
  }
  return *value;
}

Vector vector(const std::string &word) {
  const auto parts = split(word, ',');
  if (parts.size() != 3) {
    throw Failure("\"" + word + "\" is no vector x,y,z");
  }
  return {real(std::string(parts[0])), real(std::string(parts[1])), real(std::string(parts[2]))};
}

Edit rotation(Words words) {
  return [axis = vector(words[0]), point = vector(words[1]), angle = real(words[2])](
             QDL_Record *record) { return QDL_Rotate(record, axis.data(), point.data(), angle); };
}

Edit reflection(Words words) {
  return [normal = vector(words[0]), point = vector(words[1])](QDL_Record *record) {
    return QDL_Mirror(record, normal.data(), point.data());
  };
}

Edit translation(Words words) {
  const Vector offset = {real(words[0]), real(words[1]), real(words[2])};
  const double distance = std::hypot(offset[0], offset[1], offset[2]);
  return [offset, distance](QDL_Record *record) {
    return distance == 0.0 ? 1 : QDL_Translate(record, offset.data(), distance);
  };
}

Edit renumbering(Words words) {
  const auto offset = parse_integer(words[0]);
  if (!offset) {
    throw Failure("\"" + words[0] + "\" is no integer");
  }
  return [offset = *offset](QDL_Record *record) { return QDL_RenumberNodes(record, offset); };
}

Edit conversion(Words words) {
  const Units units = parse_units(words[0] + "-" + words[1] + "-" + words[2] + "-" + words[3]);
  return [units](QDL_Record *record) {
    return QDL_SetUnits(record, units.mass.c_str(), units.length.c_str(), units.time.c_str(),
                        units.force.c_str());
  };
}

struct Operation {
  const char *name;
  const char *arguments;
  const char *description;
  int word_count;
  Edit (*make)(Words);
};

constexpr std::array<Operation, 5> kOperations = {
    {{"--rotate", "AXIS POINT ANGLE", "Turn about an axis by degrees", 3, rotation},
     {"--mirror", "NORMAL POINT", "Mirror through a plane", 2, reflection},
     {"--translate", "X Y Z", "Move", 3, translation},
     {"--renumber", "OFFSET", "Add to every node identifier", 1, renumbering},
     {"--units", "M L T F", "Convert to units of mass, length, time, force", 4, conversion}}};

std::string joined(const std::string &name, Words words) {
  std::string text = name;
  for (const std::string &word : words) {
    text += " " + word;
  }
  return text;
}

struct Step {
  std::string text;
  Edit edit;
};

Step step(const Operation &operation, Words words) {
  try {
    return {joined(operation.name, words), operation.make(words)};
  } catch (const Failure &failure) {
    throw CLI::ValidationError(operation.name, failure.what());
  }
}

/// The operations in the order of the command line, where each may stand several times. That order
/// lists an option once for each of its words.
std::vector<Step> steps(const CLI::App &command) {
  std::vector<Step> result;
  std::map<const Operation *, size_t> words_seen;
  for (const CLI::Option *const option : command.parse_order()) {
    for (const Operation &operation : kOperations) {
      if (!option->check_lname(operation.name + 2)) {
        continue;
      }
      const auto count = static_cast<size_t>(operation.word_count);
      const size_t seen = ++words_seen[&operation];
      if (seen % count == 0) {
        result.push_back(step(operation, Words(option->results()).subspan(seen - count, count)));
      }
    }
  }
  return result;
}

void run(const std::vector<Step> &steps, QDL_Record *record) {
  for (const Step &step : steps) {
    if (step.edit(record) == 0) {
      throw Failure(step.text + " cannot be done");
    }
  }
}

}  // namespace

void add_transform_command(CLI::App &app, Job &job) {
  const auto options = std::make_shared<EditOptions>();
  CLI::App *const command =
      app.add_subcommand("transform", "Move, turn, mirror, renumber a model or convert its units.");
  add_edit_options(*command, *options);
  for (const Operation &operation : kOperations) {
    command->add_option(operation.name)
        ->description(operation.description)
        ->type_name(operation.arguments)
        ->type_size(operation.word_count)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  command->callback([options, command, &job] {
    const std::vector<Step> wanted = steps(*command);
    if (wanted.empty()) {
      throw CLI::RequiredError("At least one operation");
    }
    job = [options, wanted] {
      edit_file(*options, [&](QDL_Record *record) { run(wanted, record); });
    };
  });
}

}  // namespace qdlflex::cli
