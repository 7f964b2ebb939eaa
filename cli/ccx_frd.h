#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "solid_elements.h"
#include "text_input.h"

namespace qdlflex::cli {

struct FrdNode {
  int32_t id;
  Point position;
};

struct FrdElement {
  int32_t id;
  SolidType type;
  int32_t material;
  std::array<int32_t, kMostElementNodes> nodes;
};

/// The nodal results of a mode that a model can hold, in the order of the library's mode kinds.
enum FrdField { frd_displacement, frd_stress, frd_strain, frd_field_count };

/// Where the values of one field stand in the file.
struct FrdBlock {
  LineReader::Place place;
  int64_t count;
};

struct FrdMode {
  int32_t number = 0;
  double frequency = 0.0;  // cycles per time
  double generalized_mass = 0.0;
  double generalized_stiffness = 0.0;  // the solver writes 0 for a negative one
  std::array<std::optional<FrdBlock>, frd_field_count> fields;
};

struct FrdValue {
  int32_t node;
  std::array<double, 6> components;  // displacement: three, then zeros
};

/// A result file of CalculiX in its text form (long format): fixed columns, six digits.
///
/// The constructor goes through the whole file once. It takes in the mesh and notes where each
/// field of each mode stands; `read` fetches one of them, so the memory needed is that of the mesh
/// and one field. Anything unexpected, a missing end included, is a Failure with file and line.
class FrdFile {
 public:
  explicit FrdFile(const std::string &path);

  /// The values of a field as they stand in the file: stress and strain are xx, yy, zz, xy, yz, zx,
  /// and shear strain is the tensor's (half of the engineering strain).
  std::vector<FrdValue> read(FrdField field, const FrdBlock &block);

  const std::string &path() const { return lines_.path(); }
  const std::string &title() const { return title_; }
  const std::map<int32_t, std::string> &materials() const { return materials_; }
  const std::vector<FrdNode> &nodes() const { return nodes_; }
  /// The node must exist; those of the elements do.
  const Point &position(int32_t node) const { return nodes_[node_index_.at(node)].position; }

  /// Takes the coordinates of the deck, with all their digits, for those of the file's six digits
  /// that they round to.
  void refine_positions(const std::unordered_map<int32_t, Point> &deck);

  const std::vector<FrdElement> &elements() const { return elements_; }
  int64_t other_element_count() const { return other_element_count_; }

  /// The modes of the last step that has modes, by rising number.
  const std::map<int32_t, FrdMode> &modes() const { return modes_; }
  int32_t modal_step_count() const { return modal_step_count_; }

 private:
  void scan();
  void read_user_line(std::string_view line);
  void read_parameter(std::string_view line);
  void read_nodes(std::string_view header);
  void read_elements(std::string_view header);
  void read_element(std::string_view header);
  void read_result_block(std::string_view header);
  std::optional<FrdField> read_result_name();
  FrdMode &current_mode(std::string_view header);
  std::string_view next_line();
  void check_count(int64_t found, int64_t announced, const char *what) const;

  LineReader lines_;
  std::string title_;
  std::map<int32_t, std::string> materials_;
  std::vector<FrdNode> nodes_;
  std::unordered_map<int32_t, size_t> node_index_;
  std::vector<FrdElement> elements_;
  int64_t other_element_count_ = 0;
  std::map<int32_t, FrdMode> modes_;
  int32_t modal_step_count_ = 0;
  int32_t modal_step_ = 0;
  std::map<std::string, std::string, std::less<>> parameters_;  // of the result block to come
};

}  // namespace qdlflex::cli
