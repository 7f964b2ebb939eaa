// Opens a QDL file, prints what a simulation asks for first and fetches modes one by one.
//
//   modes FILE.qdl
//
// Nothing of a mode is in memory before it is asked for: opening a file of gigabytes takes as long
// as opening a small one.
#include <qdlflex/qdlflex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

int64_t print_message(const char *text) {
  std::cerr << text << '\n';
  return 0;
}

using Model = std::unique_ptr<QDL_Record, decltype(&QDL_UnLink)>;

Model open_model(const char *path) {
  Model model(QDL_CreateFromQDL(path), QDL_UnLink);
  if (!model) {
    throw std::runtime_error(std::string("cannot open ") + path);
  }
  return model;
}

void print_mass(QDL_Record *model) {
  double mass = 0.0;
  std::array<double, 3> centre{};
  std::array<double, 9> inertia{};
  std::array<char, 17> unit{};
  QDL_Units(model, unit.data(), nullptr, nullptr, nullptr);
  if (QDL_TotalMassInertia(model, &mass, centre.data(), inertia.data())) {
    std::cout << "mass " << mass << ' ' << unit.data() << '\n';
  }
}

double largest_displacement(QDL_Record *model, int32_t number, std::vector<double> &xyz) {
  if (!QDL_Mode(model, number, QDL_MODE_SHAPE, xyz.data(), 0)) {
    throw std::runtime_error("cannot fetch a mode");
  }
  double largest = 0.0;
  for (std::size_t i = 0; i < xyz.size(); i += 3) {
    largest = std::max(largest, std::hypot(xyz[i], xyz[i + 1], xyz[i + 2]));
  }
  return largest;
}

void print_modes(QDL_Record *model) {
  const auto nodes = static_cast<std::size_t>(QDL_ModeNodeCount(model, QDL_MODE_SHAPE));
  std::vector<double> xyz(3 * nodes);
  for (int32_t index = 0; index < QDL_ModeCount(model); ++index) {
    const int32_t number = QDL_ModeNumber(model, index);
    double frequency = 0.0;
    QDL_Eigenvalue(model, number, nullptr, &frequency, nullptr, nullptr, nullptr);
    std::cout << "mode " << number << ": " << frequency << " cycles per unit of time, at most "
              << largest_displacement(model, number, xyz) << '\n';
  }
}

// One node over all modes, as a contact search wants it: six doubles are read for each mode.
void print_node(QDL_Record *model, int32_t id) {
  const int32_t position = QDL_ModeNodeIndex(model, QDL_MODE_SHAPE, id);
  for (int32_t index = 0; index < QDL_ModeCount(model); ++index) {
    std::array<double, 3> xyz{};
    const int32_t number = QDL_ModeNumber(model, index);
    if (QDL_ModeByNode(model, number, QDL_MODE_SHAPE, position, xyz.data(), 0)) {
      std::cout << "node " << id << " in mode " << number << ": " << xyz[0] << ' ' << xyz[1] << ' '
                << xyz[2] << '\n';
    }
  }
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: modes FILE.qdl\n";
    return 2;
  }
  const QDL_MessageHandler handlers[3] = {print_message, print_message, nullptr};
  SetMessageHandlers(handlers);
  try {
    const Model model = open_model(argv[1]);
    print_mass(model.get());
    print_modes(model.get());
    print_node(model.get(), QDL_NodeID(model.get(), 0));
  } catch (const std::exception &error) {
    std::cerr << "modes: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
