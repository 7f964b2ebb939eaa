#include "vtk_xml.h"

#include <bit>
#include <memory>
#include <span>
#include <string_view>

namespace qdlflex::cli {

namespace {

int64_t value_size(const VtkArray &array) {
  const std::string_view type = array.type;
  return type.ends_with("64") ? 8 : type.ends_with("32") ? 4 : 1;
}

int64_t byte_count(const VtkArray &array) {
  return array.tuples * static_cast<int64_t>(array.components.size()) * value_size(array);
}

bool is_printable(char character) {
  return character >= ' ' && character <= '~';
}

/// Text of a file may have any encoding and control characters, which XML may not.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += is_printable(character) ? character : '?';
    }
  }
  return result + "\"";
}

std::string declaration(const VtkArray &array, int64_t offset) {
  std::string text = "        <DataArray type=" + quoted(array.type) +
                     " Name=" + quoted(array.name) +
                     " NumberOfComponents=" + quoted(std::to_string(array.components.size()));
  for (size_t k = 0; k < array.components.size(); ++k) {
    if (!array.components[k].empty()) {
      text += " ComponentName" + std::to_string(k) + "=" + quoted(array.components[k]);
    }
  }
  return text + " format=\"appended\" offset=" + quoted(std::to_string(offset)) + "/>\n";
}

std::string opening(const VtkDocument &document) {
  constexpr bool little = std::endian::native == std::endian::little;
  std::string text = "<?xml version=\"1.0\"?>\n<VTKFile type=" + quoted(document.type) +
                     " version=\"1.0\" byte_order=\"" + (little ? "Little" : "Big") +
                     "Endian\" header_type=\"UInt64\">\n  <" + document.type + ">\n    <Piece";
  for (const auto &[name, size] : document.sizes) {
    text += " " + name + "=" + quoted(std::to_string(size));
  }
  return text + ">\n";
}

template <class Value>
VtkArray array_in_memory(const char *type, std::string name, int32_t component_count,
                         std::vector<Value> values) {
  const auto count = static_cast<size_t>(component_count);
  const auto tuples = static_cast<int64_t>(values.size() / count);
  const auto shared = std::make_shared<const std::vector<Value>>(std::move(values));
  return {type, std::move(name), std::vector<std::string>(count), tuples,
          [shared](OutputFile &file) { file.write_values(std::span(*shared)); }};
}

}  // namespace

VtkArray vtk_array(std::string name, int32_t component_count, std::vector<double> values) {
  return array_in_memory("Float64", std::move(name), component_count, std::move(values));
}

VtkArray vtk_array(std::string name, int32_t component_count, std::vector<int32_t> values) {
  return array_in_memory("Int32", std::move(name), component_count, std::move(values));
}

VtkArray vtk_array(std::string name, int32_t component_count, std::vector<uint8_t> values) {
  return array_in_memory("UInt8", std::move(name), component_count, std::move(values));
}

void write_vtk(const VtkDocument &document, OutputFile &file) {
  file.write(opening(document));
  int64_t offset = 0;
  for (const VtkSection &section : document.sections) {
    file.write("      <" + section.name + ">\n");
    for (const VtkArray &array : section.arrays) {
      file.write(declaration(array, offset));
      offset += static_cast<int64_t>(sizeof(uint64_t)) + byte_count(array);
    }
    file.write("      </" + section.name + ">\n");
  }
  file.write("    </Piece>\n  </" + document.type + ">\n  <AppendedData encoding=\"raw\">\n_");
  for (const VtkSection &section : document.sections) {
    for (const VtkArray &array : section.arrays) {
      const auto size = static_cast<uint64_t>(byte_count(array));
      file.write_values(std::span(&size, 1));
      array.write(file);
    }
  }
  file.write("\n  </AppendedData>\n</VTKFile>\n");
}

}  // namespace qdlflex::cli
