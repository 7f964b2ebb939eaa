// Fetching modes mode by mode and node by node.

#include <rpc/xdr.h>

#include <array>
#include <vector>

#include "bench/sample.h"
#include "format/toc.h"
#include "modes/mode_store.h"

#ifdef QDL_BENCH_HAVE_NETCDF
#include <netcdf.h>
#endif
#ifdef QDL_BENCH_HAVE_HDF5
#include <hdf5.h>
#endif

namespace qdlflex::bench {
namespace {

constexpr std::int32_t kNodes = 100'000;
constexpr std::int32_t kFewModes = 4;
constexpr std::int32_t kModes = 100;
constexpr std::int32_t kNode = 54'321;
constexpr std::size_t kModeReals = std::size_t{6} * kNodes;

struct Opened {
  Folder folder;
  std::string path = folder.file("sample.qdl");
  Model model;
  std::vector<double> six = std::vector<double>(kModeReals);
  std::vector<double> other = std::vector<double>(kModeReals);
  std::FILE *stream = nullptr;

  Opened(std::int32_t modes, const char *options) : model(open(path, modes, options)) {
    stream = std::fopen(path.c_str(), "rb");
    require(stream != nullptr, "the sample opens as a plain file");
  }
  ~Opened() { std::fclose(stream); }

  static QDL_Record *open(const std::string &path, std::int32_t modes, const char *options) {
    write_sample(path, kNodes, modes, options);
    return QDL_CreateFromQDL(path.c_str());
  }

  long start_of_mode(std::size_t index) const {
    const QDL_Record *record = model;
    return static_cast<long>(record->mode_data[0].backing.starts[index]);
  }

  void read_plain_bytes() {
    std::fseek(stream, start_of_mode(1), SEEK_SET);
    require(std::fread(other.data(), 8, kModeReals, stream) == kModeReals, "fread of a mode");
  }

  void read_by_xdr_vector() {
    std::fseek(stream, start_of_mode(1), SEEK_SET);
    XDR xdr;
    xdrstdio_create(&xdr, stream, XDR_DECODE);
    const bool read =
        xdr_vector(&xdr, reinterpret_cast<char *>(other.data()), static_cast<u_int>(kModeReals), 8,
                   reinterpret_cast<xdrproc_t>(xdr_double)) != 0;
    xdr_destroy(&xdr);
    require(read, "xdr_vector of a mode");
  }

  void fetch_half() { QDL_Read_Mode_Double(model, 2, QDL_MODE_SHAPE, six.data(), 0); }
  void fetch_whole() { fetch_mode(*model, kModeShapes, 1, six.data()); }

  void require_right_values() {
    fetch_whole();
    require(six[6 * kNode + 4] == component(2, kNode + 1, 4), "a whole mode reads back as set");
    fetch_half();
    require(six[3 * kNode + 2] == component(2, kNode + 1, 2), "a half mode reads back as set");
  }
};

constexpr const char *kNative = "no_ortho no_xdr";
constexpr const char *kXdr = "no_ortho";

void half_native(benchmark::State &state) {
  Opened sample(kFewModes, kNative);
  sample.require_right_values();
  compare(
      state, {"fetch a half mode, native file", "`fread` of the mode's bytes", 0.8},
      [&] { sample.fetch_half(); }, [&] { sample.read_plain_bytes(); });
}

void whole_native(benchmark::State &state) {
  Opened sample(kFewModes, kNative);
  sample.require_right_values();
  compare(
      state, {"fetch a whole mode, native file", "`fread` of the mode's bytes", 0.8},
      [&] { sample.fetch_whole(); }, [&] { sample.read_plain_bytes(); });
}

void half_xdr(benchmark::State &state) {
  Opened sample(kFewModes, kXdr);
  sample.require_right_values();
  compare(
      state, {"fetch a half mode, XDR file", "`fread` of the mode's bytes", 0.6},
      [&] { sample.fetch_half(); }, [&] { sample.read_plain_bytes(); });
}

void whole_xdr(benchmark::State &state) {
  Opened sample(kFewModes, kXdr);
  sample.require_right_values();
  compare(
      state, {"fetch a whole mode, XDR file", "`fread` of the mode's bytes", 0.6},
      [&] { sample.fetch_whole(); }, [&] { sample.read_plain_bytes(); });
}

void whole_xdr_beside_library(benchmark::State &state) {
  Opened sample(kFewModes, kXdr);
  sample.require_right_values();
  sample.read_by_xdr_vector();
  sample.fetch_whole();
  require(sample.six == sample.other, "both decode the same values");
  compare(
      state, {"fetch a whole mode, XDR file", "libtirpc `xdr_vector` of the mode", 20},
      [&] { sample.fetch_whole(); }, [&] { sample.read_by_xdr_vector(); });
}

using ByMode = std::vector<std::array<double, 6>>;

/// Cleaned first, so that every mode is read from the file.
void node_over_modes(const Opened &sample, ByMode &values) {
  QDL_CleanModesInMemory(sample.model);
  for (std::int32_t mode = 0; mode < kModes; ++mode) {
    double *six = values[static_cast<std::size_t>(mode)].data();
    for (std::int32_t part = 0; part < 2; ++part) {
      QDL_ModeByNode(sample.model, mode + 1, QDL_MODE_SHAPE, kNode, six + 3 * part, part);
    }
  }
}

/// The array of all modes as peers store it: mode, node, component, big-endian like XDR.
std::vector<double> peer_mode(std::int32_t mode) {
  std::vector<double> values(kModeReals);
  for (std::int32_t node = 0; node < kNodes; ++node) {
    for (int i = 0; i < 6; ++i) {
      values[static_cast<std::size_t>(6 * node + i)] = component(mode + 1, node + 1, i);
    }
  }
  return values;
}

#ifdef QDL_BENCH_HAVE_NETCDF
void node_beside_netcdf(benchmark::State &state) {
  Opened sample(kModes, kXdr);
  const std::string path = sample.folder.file("peer.nc");
  int file = 0;
  int variable = 0;
  int dimensions[3];
  require(nc_create(path.c_str(), NC_64BIT_DATA, &file) == NC_NOERR, "netCDF creates its file");
  nc_def_dim(file, "mode", kModes, &dimensions[0]);
  nc_def_dim(file, "node", kNodes, &dimensions[1]);
  nc_def_dim(file, "component", 6, &dimensions[2]);
  nc_def_var(file, "phi", NC_DOUBLE, 3, dimensions, &variable);
  nc_enddef(file);
  for (std::int32_t mode = 0; mode < kModes; ++mode) {
    const std::size_t start[3] = {static_cast<std::size_t>(mode), 0, 0};
    const std::size_t count[3] = {1, kNodes, 6};
    require(nc_put_vara_double(file, variable, start, count, peer_mode(mode).data()) == NC_NOERR,
            "netCDF writes a mode");
  }
  nc_close(file);
  require(nc_open(path.c_str(), NC_NOWRITE, &file) == NC_NOERR, "netCDF opens its file");

  ByMode ours(kModes);
  ByMode theirs(kModes);
  const auto peer = [&] {
    const std::size_t start[3] = {0, kNode, 0};
    const std::size_t count[3] = {kModes, 1, 6};
    nc_get_vara_double(file, variable, start, count, theirs[0].data());
  };
  node_over_modes(sample, ours);
  peer();
  require(ours == theirs, "both give the same node");
  compare(
      state, {"one node over 100 modes of 100,000 nodes, XDR file", "netCDF classic", 2},
      [&] { node_over_modes(sample, ours); }, peer);
  nc_close(file);
}
#endif

#ifdef QDL_BENCH_HAVE_HDF5
void node_beside_hdf5(benchmark::State &state) {
  Opened sample(kModes, kNative);
  const std::string path = sample.folder.file("peer.h5");
  const hsize_t extents[3] = {kModes, kNodes, 6};
  const hid_t file = H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT);
  const hid_t space = H5Screate_simple(3, extents, nullptr);
  const hid_t data =
      H5Dcreate2(file, "phi", H5T_IEEE_F64LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
  require(data >= 0, "HDF5 creates its file");
  const auto select = [&](hsize_t mode, hsize_t node, hsize_t modes, hsize_t nodes) {
    const hsize_t start[3] = {mode, node, 0};
    const hsize_t count[3] = {modes, nodes, 6};
    H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, count, nullptr);
    return H5Screate_simple(3, count, nullptr);
  };
  for (std::int32_t mode = 0; mode < kModes; ++mode) {
    const hid_t memory = select(static_cast<hsize_t>(mode), 0, 1, kNodes);
    require(
        H5Dwrite(data, H5T_NATIVE_DOUBLE, memory, space, H5P_DEFAULT, peer_mode(mode).data()) >= 0,
        "HDF5 writes a mode");
    H5Sclose(memory);
  }
  H5Fflush(file, H5F_SCOPE_GLOBAL);

  ByMode ours(kModes);
  ByMode theirs(kModes);
  const hid_t memory = select(0, kNode, kModes, 1);
  const auto peer = [&] {
    H5Dread(data, H5T_NATIVE_DOUBLE, memory, space, H5P_DEFAULT, theirs[0].data());
  };
  node_over_modes(sample, ours);
  peer();
  require(ours == theirs, "both give the same node");
  compare(
      state, {"one node over 100 modes of 100,000 nodes, native file", "HDF5 contiguous", 2},
      [&] { node_over_modes(sample, ours); }, peer);
  H5Sclose(memory);
  H5Dclose(data);
  H5Sclose(space);
  H5Fclose(file);
}
#endif

[[maybe_unused]] void missing(benchmark::State &state, const char *job, const char *beside) {
  not_measured(state, {job, beside, 2}, std::string(beside) + " is not installed");
}

const bool registered = [] {
  register_row("fetch_half_native", half_native);
  register_row("fetch_whole_native", whole_native);
  register_row("fetch_half_xdr", half_xdr);
  register_row("fetch_whole_xdr", whole_xdr);
  register_row("fetch_whole_xdr_vector", whole_xdr_beside_library);
#ifdef QDL_BENCH_HAVE_NETCDF
  register_row("fetch_node_netcdf", node_beside_netcdf);
#else
  register_row("fetch_node_netcdf", [](benchmark::State &state) {
    missing(state, "one node over 100 modes of 100,000 nodes, XDR file", "netCDF classic");
  });
#endif
#ifdef QDL_BENCH_HAVE_HDF5
  register_row("fetch_node_hdf5", node_beside_hdf5);
#else
  register_row("fetch_node_hdf5", [](benchmark::State &state) {
    missing(state, "one node over 100 modes of 100,000 nodes, native file", "HDF5 contiguous");
  });
#endif
  return true;
}();

}  // namespace
}  // namespace qdlflex::bench
