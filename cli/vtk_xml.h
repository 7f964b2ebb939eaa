#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "output_file.h"

namespace qdlflex::cli {

/// A data array of a VTK file: how it is declared, and what writes its values when their turn
/// comes.
struct VtkArray {
  std::string type;  // such as "Float64"
  std::string name;
  std::vector<std::string> components;  // their names; empty strings where they need none
  int64_t tuples;
  std::function<void(OutputFile &)> write;
};

/// An element of a piece and its arrays, such as "PointData".
struct VtkSection {
  std::string name;
  std::vector<VtkArray> arrays;
};

/// A VTK file in XML form with one piece.
struct VtkDocument {
  std::string type;                                    // such as "PolyData"
  std::vector<std::pair<std::string, int64_t>> sizes;  // of the piece, such as "NumberOfPoints"
  std::vector<VtkSection> sections;
};

/// An array whose values are in memory already.
VtkArray vtk_array(std::string name, int32_t component_count, std::vector<double> values);
VtkArray vtk_array(std::string name, int32_t component_count, std::vector<int32_t> values);
VtkArray vtk_array(std::string name, int32_t component_count, std::vector<uint8_t> values);

/// The values follow the XML as raw bytes, each array behind its size. One array after the other
/// is made and written.
void write_vtk(const VtkDocument &document, OutputFile &file);

}  // namespace qdlflex::cli
