// Any sequence of calls that build or change a model: it stays usable after each, and what a file
// promises to hold comes back. The first byte chooses how the model begins; then follow a byte for
// a call and the bytes of its arguments.

#include <algorithm>
#include <array>
#include <vector>

#include "support/exercise.h"
#include "support/harness.h"
#include "support/qdl_bytes.h"
#include "support/round_trip.h"

using namespace qdlfuzz;

namespace {

template <std::size_t N>
std::array<double, N> reals(Bytes &in) {
  std::array<double, N> values{};
  std::ranges::generate(values, [&] { return in.real(); });
  return values;
}

std::vector<double> reals(Bytes &in, std::int32_t count) {
  std::vector<double> values(static_cast<std::size_t>(std::max(count, 0)));
  std::ranges::generate(values, [&] { return in.real(); });
  return values;
}

// Letters alone, as files hold texts without control characters and trailing blanks.
std::string word(Bytes &in, std::size_t most) {
  std::string text(in.text(most));
  for (char &character : text)
    character = static_cast<char>('A' + static_cast<unsigned char>(character) % 26);
  return text;
}

// Few, so that calls meet.
std::int32_t node(Bytes &in) {
  return in.small(-1, 8);
}
std::int32_t mode(Bytes &in) {
  return in.small(-1, 5);
}
std::int32_t kind(Bytes &in) {
  return in.small(-1, 3);
}

std::int32_t square(std::int32_t order) {
  return order * order;
}

using Call = void (*)(QDL_Record *, Bytes &);

constexpr Call kNodeCalls[] = {
    [](QDL_Record *m, Bytes &in) { QDL_AddNode(m, in.i32()); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      const auto xyz = reals<3>(in);
      QDL_SetNodeCoordinates(m, id, xyz[0], xyz[1], xyz[2]);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      QDL_SetNodalMass(m, id, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      QDL_AddNodalMass(m, id, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      const auto v = reals<6>(in);
      QDL_SetNodalInertia(m, id, v[0], v[1], v[2], v[3], v[4], v[5]);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      const std::int32_t row = in.small(0, 4);
      QDL_SetNodalInertiaEntry(m, id, row, in.small(0, 4), 1.5);
    },
    [](QDL_Record *m, Bytes &in) {
      std::array<std::int32_t, 6> ids{};
      const std::int32_t count = in.small(-1, 6);
      std::ranges::generate(ids, [&] { return node(in); });
      QDL_SetFaceList(m, count, ids.data());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t first = node(in);
      QDL_SetFace(m, 3, first, node(in), node(in));
    },
    [](QDL_Record *m, Bytes &in) { QDL_SetInterfaceNode(m, node(in)); },
    [](QDL_Record *m, Bytes &in) {
      const auto v = reals<13>(in);
      QDL_SetGlobalMass(m, v[0], &v[1], &v[4]);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t first = node(in);
      QDL_SwapNodesByID(m, first, node(in));
    },
};

constexpr Call kModeCalls[] = {
    [](QDL_Record *m, Bytes &in) { QDL_AddMode(m, mode(in)); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t number = mode(in), id = node(in), of = kind(in);
      QDL_SetModeVec(m, number, id, of, reals<6>(in).data());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t number = mode(in), id = node(in), of = kind(in);
      QDL_SetModeEntry(m, number, id, of, in.small(-1, 6), 2.5);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t i = mode(in), j = mode(in);
      QDL_SetGeneralizedStiffness(m, i, j, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t i = mode(in), j = mode(in);
      QDL_SetGeneralizedMass(m, i, j, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t i = mode(in), j = mode(in);
      QDL_SetGeneralizedDamping(m, i, j, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      QDL_SetTransformation(m, reals(in, square(QDL_ModeCount(m))).data());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      QDL_SetPreStressVec(m, id, reals<6>(in).data());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t id = node(in);
      QDL_SetPreStrainVec(m, id, reals<6>(in).data());
    },
    [](QDL_Record *m, Bytes &in) { QDL_SetKeepModesInMemory(m, in.small(0, 1)); },
    [](QDL_Record *m, Bytes &) { QDL_CleanModesInMemory(m); },
    [](QDL_Record *m, Bytes &in) { QDL_SetShouldMassNormalizeModes(m, in.small(0, 1)); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t number = mode(in), of = kind(in);
      const std::int32_t part = in.small(-1, 2);
      double *values = nullptr;
      float *floats = nullptr;
      QDL_ModeByRef(m, number, of, &values, part);
      QDL_SModeByRef(m, number, of, &floats, part);
    },
};

constexpr Call kLoadCalls[] = {
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t load_case = in.small(-1, 3), number = mode(in);
      QDL_SetModalLoad(m, load_case, number, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t load_case = in.small(-1, 3);
      QDL_SetModalLoadLabel(m, load_case, word(in, 20).c_str());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t load_case = in.small(-1, 3), id = node(in), coordinate = in.small(0, 7);
      QDL_SetModalLoadNodal(m, load_case, id, coordinate, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t number = mode(in);
      QDL_SetModalPreload(m, number, in.real());
    },
    [](QDL_Record *m, Bytes &in) { QDL_SetModalPreloadProcessed(m, in.small(0, 1)); },
    [](QDL_Record *m, Bytes &in) { QDL_SetModalLoadProcessed(m, in.small(-1, 3), 1); },
    [](QDL_Record *m, Bytes &in) {
      const auto axis = reals<6>(in);
      QDL_SetRotorDynamicsAxis(m, &axis[0], &axis[3]);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t matrix = in.small(-1, 3), row = mode(in), column = mode(in);
      QDL_SetRotorDynamicsMatrix(m, matrix, row, column, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      constexpr std::array<std::int32_t, 6> kComponents = {0, 1, 123, 456, 123456, -12};
      const std::int32_t type = in.small(0, 5), result = in.small(0, 6);
      const std::int32_t component = kComponents[in.byte() % kComponents.size()];
      const std::int32_t loads = in.small(-1, 2);
      const std::string name = word(in, 7);
      QDL_SetMonitorPointInfo(m, type, result, component, loads, nullptr, name.c_str(),
                              word(in, 55).c_str());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t point = in.small(-1, 2), op = in.small(0, 5);
      std::int32_t rows = 0, columns = 0;
      QDL_GetMonitorPointOperatorSize(m, point, &rows, &columns);
      const std::int32_t loads = QDL_GetMonitorPointNumLoadOperator(m, point);
      const auto data = reals(in, rows * columns * std::max(loads, 1));
      QDL_SetMonitorPointOperator(m, point, op, data.data());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::string name = word(in, 7), label = word(in, 79);
      const std::array<const char *, 3> labels = {label.c_str(), nullptr, label.c_str()};
      QDL_SetMatrixOperatorInfo(m, name.c_str(), labels.data(), in.small(-1, 3));
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t op = in.small(-1, 2), columns = in.small(-1, 3);
      const std::string tag = word(in, 7);
      const auto data = reals(in, std::max(columns * QDL_GetMatrixOperatorNumRows(m, op), 0));
      QDL_SetMatrixOperatorData(m, op, tag.c_str(), columns, data.data());
    },
};

constexpr Call kInvariantCalls[] = {
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar1(m, in.real()); },
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar2(m, reals<3>(in).data()); },
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar3(m, mode(in), reals<3>(in).data()); },
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar4(m, mode(in), reals<3>(in).data()); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t i = mode(in), j = mode(in);
      QDL_SetInvar5(m, i, j, reals<3>(in).data());
    },
    [](QDL_Record *m, Bytes &) {
      const std::vector<double> ones(static_cast<std::size_t>(QDL_ModeCount(m)), 1.0);
      QDL_SetInvar6(m, ones.data());
    },
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar7(m, reals<6>(in).data()); },
    [](QDL_Record *m, Bytes &in) { QDL_SetInvar8(m, mode(in), reals<9>(in).data()); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t i = mode(in), j = mode(in);
      QDL_SetInvar9(m, i, j, reals<9>(in).data());
    },
    [](QDL_Record *m, Bytes &) { QDL_FullComputeInvars(m); },
    [](QDL_Record *m, Bytes &) { QDL_FastComputeInvars(m); },
    [](QDL_Record *m, Bytes &) { QDL_RigidComputeInvars(m); },
    [](QDL_Record *m, Bytes &) { QDL_CalculateGlobalMassFromNodeMass(m); },
};

constexpr Call kChanges[] = {
    [](QDL_Record *m, Bytes &in) {
      const auto name = [&](const QDL_UnitEntry *table, std::int32_t entries) {
        return table[in.small(0, entries - 2)].name;
      };
      const char *const mass = name(QDL_MassUnits, 13), *const length = name(QDL_LengthUnits, 14);
      const char *const time = name(QDL_TimeUnits, 8);
      QDL_SetUnits(m, mass, length, time, name(QDL_ForceUnits, 11));
    },
    [](QDL_Record *m, Bytes &in) { QDL_Mirror_Origin(m, reals<3>(in).data()); },
    [](QDL_Record *m, Bytes &in) {
      const auto v = reals<6>(in);
      QDL_Mirror(m, &v[0], &v[3]);
    },
    [](QDL_Record *m, Bytes &in) {
      const auto v = reals<7>(in);
      QDL_Rotate(m, &v[0], &v[3], v[6]);
    },
    [](QDL_Record *m, Bytes &in) {
      const auto v = reals<4>(in);
      QDL_Translate(m, v.data(), v[3]);
    },
    [](QDL_Record *m, Bytes &in) { QDL_RenumberNodes(m, in.i32()); },
    [](QDL_Record *m, Bytes &in) {
      const std::array<std::int32_t, 3> ids = {node(in), node(in), in.i32()};
      QDL_RenumberInterfaceNodes(m, in.small(-1, 3), ids.data());
    },
    [](QDL_Record *m, Bytes &) { QDL_RemoveInternalGeometry(m); },
    [](QDL_Record *m, Bytes &) { QDL_DiscardUnreferencedNodes(m); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t modes = in.small(0, 4);
      const auto coefficients = reals(in, modes * QDL_ModeCount(m));
      const auto rotation = reals<9>(in);
      const auto origin = reals<3>(in);
      QDL_PermuteQDL(m, origin.data(), modes, in.real(),
                     in.small(0, 1) == 1 ? coefficients.data() : nullptr,
                     in.small(0, 1) == 1 ? rotation.data() : nullptr);
    },
    [](QDL_Record *m, Bytes &) { QDL_PreprocessKVTQDL(m); },
    [](QDL_Record *m, Bytes &) { QDL_OrthoNormalize(m); },
    [](QDL_Record *m, Bytes &) { QDL_RebuildEigenvalues(m); },
    [](QDL_Record *m, Bytes &) { build_eigenvalue_table(m); },
    [](QDL_Record *m, Bytes &) {
      double *scales = nullptr;
      mass_normalize_modes(m, &scales);
      QDL_FreeMemory(scales);
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t of = kind(in);
      QDL_ScaleModes(m, of, in.real());
    },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t of = kind(in);
      const std::int32_t modes = QDL_ModeCount(m);
      QDL_TransformModes(m, of, modes, reals(in, square(modes)).data());
    },
    [](QDL_Record *m, Bytes &in) {
      QDL_TransformMonitorPoints(m, reals(in, square(QDL_ModeCount(m))).data());
    },
    [](QDL_Record *m, Bytes &) { QDL_ShiftLBRFtoCM(m); },
    [](QDL_Record *m, Bytes &) { QDL_StripCommonFaces(m); },
    [](QDL_Record *m, Bytes &in) { QDL_TrimGeometry(m, word(in, 30).c_str()); },
    [](QDL_Record *m, Bytes &) { QDL_GenerateFreeEdges(m); },
    [](QDL_Record *m, Bytes &) { QDL_ScaleDatabase(m); },
    [](QDL_Record *m, Bytes &) { QDL_DampingOnPrincipalAxes(m); },
    [](QDL_Record *m, Bytes &) { QDL_RigidBodyForcesOnPrincipalAxes(m); },
    [](QDL_Record *m, Bytes &in) {
      const std::int32_t normal = in.small(-1, 4);
      QDL_AnsysAddGenMass(m, normal, QDL_ModeCount(m) - normal);
    },
    [](QDL_Record *m, Bytes &in) { QDL_SetVersion(m, in.i32()); },
    [](QDL_Record *m, Bytes &in) {
      constexpr std::array<const char *, 5> kOptions = {"", "no_ortho full_invar", "single MKS",
                                                        "empty", "full_str no_xdr"};
      write_bytes(m, kOptions[in.byte() % kOptions.size()], "between.qdl");
    },
    [](QDL_Record *m, Bytes &in) {
      std::array<std::string, 6> texts;
      std::ranges::generate(texts, [&] { return word(in, 15); });
      QDL_SetHeader(m, texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(),
                    texts[4].data(), texts[5].data());
    },
    [](QDL_Record *m, Bytes &) { qdltest::exercise(m); },
};

template <std::size_t N>
void call_one_of(const Call (&calls)[N], QDL_Record *model, Bytes &in) {
  calls[in.byte() % N](model, in);
}

void call(QDL_Record *model, Bytes &in) {
  switch (in.small(0, 4)) {
    case 0:
      return call_one_of(kNodeCalls, model, in);
    case 1:
      return call_one_of(kModeCalls, model, in);
    case 2:
      return call_one_of(kLoadCalls, model, in);
    case 3:
      return call_one_of(kInvariantCalls, model, in);
    default:
      return call_one_of(kChanges, model, in);
  }
}

std::string sample_file() {
  const auto bytes = qdltest::build_file(60).bytes;
  return write_file("sample.qdl", bytes.data(), bytes.size());
}

QDL_Record *begin(Bytes &in) {
  static const std::string sample = sample_file();
  const std::int32_t start = in.small(0, 3);
  return start == 0 ? QDL_CreateFromQDL(sample.c_str()) : QDL_Create(in.small(-1, 9), 2 * start);
}

// What nodes have is written once it was set, and not since QDL_PreprocessKVTQDL().
void make_nodes_count(QDL_Record *model) {
  std::array<double, 3> xyz{};
  if (QDL_NodeCoordinates(model, 0, xyz.data()) == 0)
    return;
  const std::int32_t first = QDL_NodeID(model, 0);
  QDL_SetNodeCoordinates(model, first, xyz[0], xyz[1], xyz[2]);
  QDL_AddNodalMass(model, first, 0.0);
  std::array<double, 9> inertia{};
  QDL_NodalInertia(model, 0, inertia.data());
  QDL_SetNodalInertiaEntry(model, first, 1, 1, inertia[0]);
}

// Load cases that have labels alone are not written.
void make_loads_count(QDL_Record *model) {
  std::int32_t count = 0;
  double *const values = QDL_GetModalLoad(model, 0, &count);
  if (values != nullptr && count > 0)
    QDL_SetModalLoad(model, 0, QDL_ModeNumber(model, 0), values[0]);
  QDL_FreeMemory(values);
}

// A file can't be read back where two nodes share an identifier, or two modes a number.
bool all_distinct(QDL_Record *model) {
  std::set<std::int32_t> ids, numbers;
  for (std::int32_t i = 0; i < QDL_NodeCount(model); ++i)
    ids.insert(QDL_NodeID(model, i));
  for (std::int32_t i = 0; i < QDL_ModeCount(model); ++i)
    numbers.insert(QDL_ModeNumber(model, i));
  return static_cast<std::int32_t>(ids.size()) == QDL_NodeCount(model) &&
         static_cast<std::int32_t>(numbers.size()) == QDL_ModeCount(model);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const Execution execution;
  Bytes in(data, size);
  QDL_Record *const model = begin(in);
  require(model != nullptr, "no model");
  while (!in.empty())
    call(model, in);
  qdltest::exercise(model);
  make_nodes_count(model);
  make_loads_count(model);
  if (all_distinct(model))
    require_round_trip(model, "no_ortho no_xdr");
  return 0;
}
