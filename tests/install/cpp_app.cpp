// A C++ program that knows only the installed library; it calls through the function table.
#include <qdlflex/qdlflex.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <numeric>

int main() {
  std::array<QDL_Function, QDL_INTERFACE_SLOTS> slots{};
  if (PopulateInterface(slots.data()) != 1) {
    std::cerr << "failed: the function table is not filled\n";
    return EXIT_FAILURE;
  }
  const auto create = reinterpret_cast<decltype(&QDL_Create)>(slots[0]);

  const std::unique_ptr<QDL_Record, decltype(&QDL_UnLink)> model(create(3, 0), QDL_UnLink);
  for (int32_t id = 1; id <= 3; ++id) {
    QDL_SetNodeCoordinates(model.get(), id, id, 0.0, 0.0);
  }
  std::array<double, 9> xyz{};
  int32_t count = 0;
  QDL_NodeCoordinateList(model.get(), xyz.data(), &count);
  const double sum = std::accumulate(xyz.begin(), xyz.end(), 0.0);
  const bool good = count == 3 && sum == 6.0;

  std::cout << "qdlflex " << QDLFLEX_VERSION_STRING << " from C++: " << (good ? "good" : "failed")
            << '\n';
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
