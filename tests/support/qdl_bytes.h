// Builds QDL files byte by byte for tests. Everything here is written from the layout of the file
// and uses no code of the library, so that the library can be measured against it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qdltest {

enum class Encoding { kNative, kXdr };
enum class Precision { kSingle, kDouble };

constexpr std::int32_t kXdrBit = 0x100;
constexpr std::int32_t kSingleBit = 0x200;
constexpr std::int32_t kCoarsenedBit = 0x400;

// The encoding and precision that a version code stands for.
Encoding encoding_of(std::int32_t version_code);
Precision precision_of(std::int32_t version_code);

// A place in a file that tells how much follows it.
struct CountField {
  std::string name;  // block id and letter of the layout, such as "4.N"
  std::size_t offset;
};

class QdlBytes {
 public:
  QdlBytes(Encoding encoding, Precision precision) : encoding_(encoding), precision_(precision) {}

  void put_i32(std::int32_t value);
  void put_count(const std::string &name, std::size_t value);
  void put_real(double value);
  void put_reals(const std::vector<double> &values);
  void put_chars(std::string_view text, std::size_t width);  // filled up with NUL
  void put_byte(std::int32_t value);

  std::size_t size() const { return bytes_.size(); }
  Encoding encoding() const { return encoding_; }
  Precision precision() const { return precision_; }
  const std::vector<std::uint8_t> &bytes() const { return bytes_; }
  const std::vector<CountField> &counts() const { return counts_; }
  const std::vector<std::size_t> &reals() const { return reals_; }  // where each begins

 private:
  void put_word(std::uint64_t word, std::size_t width);

  Encoding encoding_;
  Precision precision_;
  std::vector<std::uint8_t> bytes_;
  std::vector<CountField> counts_;
  std::vector<std::size_t> reals_;
};

struct Header {
  std::string title, date, input_name, input_type;
  std::array<std::string, 3> comments;
};

struct Node {
  std::int32_t id;
  std::array<double, 3> xyz;
};

struct ElementGroup {
  std::int32_t kind;
  std::size_t nodes_per_element;
  std::vector<std::vector<std::int32_t>> elements;  // two leading integers, then identifiers
};

struct Eigenvalue {
  std::int32_t mode;
  double eigenvalue, frequency, circular_frequency, mass, stiffness;
};

struct ModeTable {
  std::vector<std::int32_t> node_ids;
  std::vector<std::int32_t> numbers;
  std::vector<std::vector<double>> values;  // six per node, for each mode
};

struct NodalMass {
  std::int32_t node_id;
  std::vector<double> values;
};

struct NodalInertia {
  std::int32_t node_id, row, column;
  double value;
};

struct MatrixEntry {
  std::int32_t row, column;  // from 1
  double value;
  std::int32_t tail;
};

struct EntryList {
  std::int32_t second;
  std::vector<MatrixEntry> entries;
};

struct TransformationRow {
  std::int32_t lead;
  std::vector<double> values;
};

struct LoadCase {
  std::string label;
  std::int32_t processed;
  std::vector<double> values;
};

struct ModeStatistics {
  std::array<std::int32_t, 13> node_ids;
  std::array<double, 13> values;
};

struct SubOperator {
  std::size_t columns;
  std::string tag;
  std::vector<double> data;
};

struct MatrixOperator {
  std::string name;
  std::vector<std::string> row_labels;
  std::vector<SubOperator> subs;
};

struct NodalLoad {
  std::int32_t node_id, component;
  double value;
};

struct MonitorPoint {
  std::int32_t type, result_type, component;
  std::string name, label;
  std::size_t rows, row_blocks;
  std::int32_t mask;
  std::vector<double> values;
};

struct RotorMatrix {
  std::int32_t lead;
  std::vector<double> values;
};

// The content of a file, block by block. `mode_count` is the M of the blocks that carry one and
// have no list of modes of their own.
struct SampleModel {
  std::size_t mode_count;
  Header header;
  std::vector<Node> nodes;                               // 4
  std::int32_t coordinates_per_node = 3;                 // 4
  std::int32_t topology_lead;                            // 5
  std::vector<ElementGroup> element_groups;              // 5
  std::vector<double> global_mass;                       // 6
  std::vector<Eigenvalue> eigenvalues;                   // 7
  ModeTable mode_shapes;                                 // 8
  std::vector<NodalMass> nodal_masses;                   // 9
  std::vector<NodalInertia> nodal_inertias;              // 10
  std::array<std::string, 4> units;                      // 11: mass, length, time, force
  EntryList stiffness, mass, damping;                    // 12, 13, 15
  std::vector<std::int32_t> faces;                       // 14
  std::vector<TransformationRow> transformation;         // 16
  std::vector<std::int32_t> interface_nodes;             // 17
  ModeTable stress, strain;                              // 18, 29
  std::array<std::vector<double>, 10> invariants;        // by number; 19 to 26
  std::int32_t preload_processed;                        // 27
  std::vector<double> preload;                           // 27
  std::vector<LoadCase> load_cases;                      // 28
  std::vector<ModeStatistics> statistics;                // 30
  std::vector<double> pre_stress, pre_strain;            // 31, 32
  std::vector<MonitorPoint> monitor_points;              // 33 and 36
  std::vector<MatrixOperator> matrix_operators;          // 34
  std::vector<std::vector<NodalLoad>> nodal_load_cases;  // 35
  std::array<double, 6> rotor_axis;                      // 37
  std::vector<RotorMatrix> rotor_matrices;               // 37
};

// Four nodes and two modes, every block filled with numbers that no other place holds and that a
// float carries exactly.
SampleModel sample_model();

// A finished file and where its parts lie.
struct SampleFile {
  std::int32_t version_code;
  Encoding encoding;
  Precision precision;
  std::set<int> blocks;
  std::vector<std::uint8_t> bytes;
  std::array<std::size_t, 39> offset;  // start of block `id`; [38] is the end of the file
  std::vector<CountField> counts;
  std::vector<std::size_t> reals;  // where each begins

  std::size_t count_offset(std::string_view name) const;
  void patch_i32(std::size_t at, std::int32_t value);
  void patch_count(std::string_view name, std::int32_t value);
  std::int32_t i32_at(std::size_t at) const;
  double real_at(std::size_t at) const;
  void cut(std::size_t length) { bytes.resize(length); }
};

// The places in a file worth a test of their own: all but most of the padding of its texts.
std::vector<std::size_t> telling_places(const SampleFile &file);

// The byte of the content summary that tells whether the block is there; -1 for blocks 1 to 3.
int summary_byte(int block_id);

// Every block that a file of this version can hold at the same time: with faces instead of the
// older element topology (versions 10 and 20: the other way round) and without block 33.
std::set<int> usual_blocks(std::int32_t version_code);

// Appends one block. Invalid ids are a mistake of the test and throw.
void append_block(QdlBytes &out, int block_id, const SampleModel &model, std::int32_t version_code,
                  const std::set<int> &blocks);

SampleFile build_file(std::int32_t version_code, const std::set<int> &blocks,
                      const SampleModel &model = sample_model());
SampleFile build_file(std::int32_t version_code);

// The version codes that between them use every version, encoding and precision.
const std::vector<std::int32_t> &every_version_code();

// "60_xdr_single" and the like: a part of a file or test name.
std::string version_name(std::int32_t version_code);

}  // namespace qdltest
