#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "record/blocks.h"
#include "record/node_search.h"
#include "support/file.h"

namespace qdlflex {

// One struct per block group; the record at the end. Plain data: what is done with it stands in
// the folder of its area. Indices, never pointers, refer into arrays that grow.

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<double, 9>;  // row by row
using Vector6 = std::array<double, 6>;

/// The matrix of a symmetric tensor given as xx, yy, zz, xy, xz, yz.
constexpr Matrix3 symmetric_matrix(const Vector6 &six) {
  return {six[0], six[3], six[4], six[3], six[1], six[5], six[4], six[5], six[2]};
}

/// Where an entry stands among those six; rows and columns count from 0.
constexpr std::size_t symmetric_place(std::size_t row, std::size_t column) {
  return row == column ? row : row + column + 2;
}

constexpr std::int32_t kUnknownNode = -1;
constexpr std::int32_t kNoIndex = -1;

/// A file and how numbers stand in it. The four channels of a record that was read share one file.
struct Channel {
  std::shared_ptr<File> file;
  bool xdr = false;
  bool double_precision = true;
};

struct Node {
  std::int32_t id = 0;
  Vector3 xyz{};
  double mass = 0.0;
  std::unique_ptr<Vector6> inertia;  // xx, yy, zz, xy, xz, yz; none until the first entry
};

/// Identifier to first node index. Built by the first look-up and then extended by added nodes.
/// Swapping two nodes leaves the answers as they were (`stale`) until the next added node.
struct NodeLookup {
  std::unordered_map<std::int32_t, std::int32_t> first_index;
  bool built = false;
  bool stale = false;
  std::int32_t last_found = 0;
};

struct Header {
  std::array<char, 128> title{};
  std::array<char, 32> date{};
  std::array<char, 128> input_name{};
  std::array<char, 16> input_type{};
  std::array<std::array<char, 80>, 3> comments{};
};

struct GlobalMass {
  double mass = 0.0;
  Vector3 centre{};
  Matrix3 inertia{};  // products of inertia positive off the diagonal
};

struct EigenEntry {
  std::int32_t mode_number = 0;
  double eigenvalue = 0.0;
  double frequency = 0.0;
  double circular_frequency = 0.0;
  double generalized_mass = 0.0;
  double generalized_stiffness = 0.0;
};

/// Marks an infinite eigenvalue or a mode of zero generalized mass.
constexpr double kInfiniteEigenvalue = 1.2345e20;
/// Two pi as the files have always had it.
constexpr double kTwoPi = 6.28318530718;

/// Ratios of a unit change, old unit over new unit.
struct UnitRatios {
  double force = 1.0;
  double length = 1.0;
  double mass = 1.0;
  double time = 1.0;
};

using UnitName = std::array<char, 16>;

struct Units {
  UnitName mass{};
  UnitName length{};
  UnitName time{};
  UnitName force{};
  UnitRatios current;     // of the last change
  UnitRatios cumulative;  // since the units were first set
};

/// Entry of a generalized matrix: zero-based mode indices; an off-diagonal entry stands for both
/// positions. An index may lie outside the modes: users skip such an entry.
struct GeneralizedEntry {
  std::int32_t row = 0;
  std::int32_t column = 0;
  double value = 0.0;
  std::int32_t trailing = 0;  // carried through from a file
};

struct GeneralizedMatrix {
  std::vector<GeneralizedEntry> entries;
  std::int32_t header = 0;  // carried through from a file
};

/// Faces back to back: node count, then node indices. A stored count below 1 has no nodes.
struct FaceList {
  std::vector<std::int32_t> list;
  std::int32_t count = 0;
  bool present = false;  // an empty list differs from none
};

/// The chains of free edges as node identifiers, as they were when they were found; none until
/// then.
using FreeEdges = std::optional<std::vector<std::vector<std::int32_t>>>;

/// The mode-shape transformation keeps the dimension it was made with.
struct Transformation {
  std::int32_t dimension = 0;
  std::vector<double> matrix;              // dimension x dimension, row by row
  std::vector<std::int32_t> row_integers;  // carried through from a file
  bool present = false;
};

enum class Origin { kEmpty, kSupplied, kDerived };

/// A cached inertia invariant: supplied by a file or a setter, or derived from other data. Modal
/// invariants remember the number of modes they are laid out for.
struct InvariantSlot {
  Origin origin = Origin::kEmpty;
  std::int32_t modes = 0;
  std::vector<double> values;
};

struct ModalLoadCase {
  std::array<char, 256> label{};
  std::int32_t processed = 0;
  std::vector<double> values;  // per mode; shorter than the modes counts as zeros
};

struct ModalPreload {
  std::vector<double> values;
  std::int32_t processed = 0;
  bool present = false;
};

struct NodalLoadEntry {
  std::int32_t node = kUnknownNode;
  std::int32_t coordinate = 0;  // 1 to 6
  double value = 0.0;
};

struct NodalLoadCase {
  std::vector<NodalLoadEntry> entries;
};

constexpr std::size_t kStatisticSlots = 13;
/// Slots whose node the library looks for; what stands in the others is the file's.
constexpr std::size_t kSearchedStatistics = 4;

/// Per mode: displacement, rotation, von Mises stress, von Mises strain in slots 0 to 3. Node
/// identifier 0: not known yet.
struct ModalStatistics {
  std::array<std::int32_t, kStatisticSlots> node_ids{};
  std::array<double, kStatisticSlots> values{};
};

struct StatisticsTable {
  std::vector<ModalStatistics> modes;
  bool present = false;
  /// A file whose block disagrees with the modes; the getters then report it.
  bool inconsistent = false;
};

struct MonitorPoint {
  std::int32_t type = 0;
  std::int32_t result_type = 0;
  std::int32_t component = 0;
  Vector3 location{};
  std::string name;
  std::string label;
  std::int32_t rows = 0;
  std::int32_t load_operators = 0;
  std::int32_t mask = 0;     // 1 displacement, 2 velocity, 4 acceleration, 8 load
  std::int32_t columns = 0;  // modes that the operators are laid out for
  /// By operator number less one: displacement, velocity, acceleration, load. Rows of one value per
  /// mode; the load operator one such matrix after the other.
  std::array<std::vector<double>, 4> operators;
};

struct SubOperator {
  std::string tag;
  std::int32_t columns = 0;
  std::vector<double> data;  // rows x columns
};

struct MatrixOperator {
  std::string name;
  std::vector<std::string> row_labels;
  std::vector<SubOperator> sub_operators;
};

constexpr std::size_t kRotorMatrices = 3;

struct RotorMatrix {
  std::int32_t dimension = 0;
  std::int32_t integer = 0;  // carried through from a file
  std::vector<double> values;
  bool present = false;
};

struct RotorDynamics {
  Vector3 centre{};
  Vector3 direction{};
  std::array<RotorMatrix, kRotorMatrices> matrices;  // stiffness, circulation, gyroscopic
};

constexpr std::int32_t kModeShapes = 0;
constexpr std::int32_t kModalStress = 1;
constexpr std::int32_t kModalStrain = 2;
constexpr std::int32_t kModeKinds = 3;
constexpr std::int32_t kModeParts = 2;
constexpr std::int32_t kComponents = 6;

constexpr bool is_mode_kind(std::int32_t kind) {
  return kind >= 0 && kind < kModeKinds;
}
/// The block that a kind of mode data stands in.
constexpr Block mode_block(std::int32_t kind) {
  return kind == kModeShapes    ? Block::kModeShapes
         : kind == kModalStress ? Block::kModalStress
                                : Block::kModalStrain;
}
constexpr bool is_mode_part(std::int32_t part) {
  return part == 0 || part == 1;
}

/// The nodes of the stress or strain modes, by slot (the order of the values).
struct NodeSet {
  std::vector<std::int32_t> node_of_slot;  // kUnknownNode: an identifier that no node has
  std::vector<std::int32_t> foreign_ids;   // per slot; only read where the node is unknown
  std::vector<std::int32_t> slot_of_node;  // kNoIndex: none; may be shorter than the nodes
};

/// Where the values of one kind of mode data lie: six reals per node, node by node, mode by mode.
struct Backing {
  Channel channel;
  std::vector<std::int64_t> starts;  // by mode index
  std::int32_t stride = 0;           // nodes per mode in the file
  UnitRatios base;                   // cumulative ratios at which the values were written
  std::byte *mapping = nullptr;      // of a temporary file, when it could be mapped
};

/// Half-mode vectors in memory, by mode index: three numbers per node.
template <class Real>
struct HalfModes {
  std::vector<std::unique_ptr<Real[]>> by_mode;
  /// The vector last handed out by reference that had no place in the cache.
  std::unique_ptr<Real[]> overflow;
  std::int64_t count = 0;
  std::int64_t capacity = 0;  // only used where each half has its own limit
};

template <class Real>
using HalfModeCache = std::array<HalfModes<Real>, kModeParts>;

/// The six components last read for one node of one mode.
struct NodeRow {
  std::int32_t mode_index = kNoIndex;
  std::int32_t node = kNoIndex;
  Vector6 six{};
};

struct ModeData {
  Backing backing;
  NodeSet nodes;  // kinds 1 and 2
  HalfModeCache<double> doubles;
  HalfModeCache<float> singles;
  std::vector<std::int32_t> misses;  // node-wise reads per mode since its half was last cached
  NodeRow last_row;                  // of node-wise reads
  bool may_be_cached = false;        // false: nothing of the above is held in memory
};

/// Byte offsets of the 37 blocks in the record's file; those from `unknown_from` on could not be
/// measured.
struct TableOfContents {
  std::array<std::int64_t, kBlockCount> offsets{};
  std::int32_t unknown_from = 0;
};

constexpr std::uint32_t kDefaultVersionCode = 31;

}  // namespace qdlflex

/// The whole model of one flexible body.
struct QDL_Record {
  // The file it was read from.
  qdlflex::Channel source;
  std::string file_name;
  qdlflex::Summary file_summary{};  // as read; what the file really holds
  qdlflex::TableOfContents contents;
  std::int32_t file_mode_count = 0;     // that the file's blocks are laid out for
  std::uint32_t file_version_code = 0;  // as kept on reading

  std::int32_t planned_nodes = 0;
  std::int32_t planned_modes = 0;
  std::uint32_t version_code = qdlflex::kDefaultVersionCode;
  qdlflex::Header header;
  qdlflex::Summary summary{};  // what the record holds

  std::vector<qdlflex::Node> nodes;
  qdlflex::NodeLookup node_lookup;
  qdlflex::GlobalMass global_mass;
  std::vector<qdlflex::EigenEntry> eigenvalues;
  std::vector<std::int32_t> mode_numbers;
  /// Mode nodes where a file lists fewer of them than there are nodes.
  std::optional<std::int32_t> mode_node_limit;
  std::array<qdlflex::ModeData, qdlflex::kModeKinds> mode_data;
  std::int64_t cached_halves = 0;  // of all kinds and parts in double precision
  std::int64_t cache_capacity = 0;
  bool keep_modes_in_memory = true;

  qdlflex::Units units;
  qdlflex::GeneralizedMatrix stiffness;
  qdlflex::GeneralizedMatrix mass;
  qdlflex::GeneralizedMatrix damping;
  bool damping_on_principal_axes = false;
  qdlflex::FaceList faces;
  bool interior_faces_stripped = false;
  qdlflex::FreeEdges free_edges;
  /// Ascending indices of the nodes that the geometry uses; none until they were asked for.
  std::optional<std::vector<std::int32_t>> geometry_nodes;
  qdlflex::Transformation transformation;
  std::vector<std::int32_t> interface_nodes;  // node indices
  std::vector<bool> is_interface_node;        // by node index; may be shorter than the nodes
  qdlflex::NodeSearch node_search;            // among all nodes
  qdlflex::NodeSearch interface_node_search;  // among the interface nodes
  std::array<qdlflex::InvariantSlot, 10> invariants;  // by number, 1 to 9
  qdlflex::ModalPreload preload;
  std::vector<qdlflex::ModalLoadCase> modal_loads;
  std::vector<qdlflex::NodalLoadCase> nodal_loads;
  qdlflex::StatisticsTable statistics;
  std::vector<qdlflex::Vector6> pre_stress;  // by slot of the stress nodes
  std::vector<qdlflex::Vector6> pre_strain;  // by slot of the strain nodes
  std::vector<qdlflex::MatrixOperator> matrix_operators;
  std::vector<qdlflex::MonitorPoint> monitor_points;
  qdlflex::RotorDynamics rotor;

  double body_size = 0.0;    // kept once it is not zero
  bool mass_pruned = false;  // nodes with mass were discarded: the others don't sum up to the body
  bool surface_mesh = false;
  bool coarsened = false;
  bool mass_normalize_modes = false;
  std::int32_t reference_count = 1;
};

namespace qdlflex {

inline bool present(const QDL_Record &record, Block block) {
  return always_present(block) || record.summary[summary_position(block)] != 0;
}

inline void raise(QDL_Record &record, Block block) {
  record.summary[summary_position(block)] = 1;
}

inline void lower(QDL_Record &record, Block block) {
  record.summary[summary_position(block)] = 0;
}

/// Whether the record's file holds the block, whatever has been set since.
inline bool in_file(const QDL_Record &record, Block block) {
  return always_present(block) || record.file_summary[summary_position(block)] != 0;
}

inline std::int32_t node_count(const QDL_Record &record) {
  return static_cast<std::int32_t>(record.nodes.size());
}

inline std::int32_t mode_count(const QDL_Record &record) {
  return static_cast<std::int32_t>(record.mode_numbers.size());
}

inline bool is_node_index(const QDL_Record &record, std::int32_t index) {
  return index >= 0 && index < node_count(record);
}

/// The identifier of a node; 0 for an index outside the nodes.
inline std::int32_t node_id(const QDL_Record &record, std::int32_t index) {
  return is_node_index(record, index) ? record.nodes[static_cast<std::size_t>(index)].id : 0;
}

}  // namespace qdlflex
