// VTC: the time courses linked to the current anatomy.
#include <fmt/core.h>

#include <algorithm>

#include "host/exports.h"
#include "host/fields.h"
#include "host/operation.h"
#include "host/workspace.h"

namespace {

using host::Box;
using host::LinkedVtc;
using host::Operation;
using host::perform;

constexpr std::int32_t kNoVtc = -1;

void requireAnatomy(Operation& op) {
  op.require(op.workspace().anatomy().has_value(), "no anatomy is open");
}

LinkedVtc& currentVtc(Operation& op) {
  op.require(op.workspace().vtc().has_value(), "no VTC is linked");
  return *op.workspace().vtc();
}

int fillHeader(Operation& op, VTC_Header* header) {
  op.record(header, "header") = VTC_Header{};
  header->dataOffset = kNoVtc;
  if (!op.workspace().vtc()) return 0;
  *header = op.workspace().vtc()->header;
  return 1;
}

// A protocol that cannot be read leaves none current, so that the plug-in cannot go on with the
// conditions of another one.
void useProtocol(Operation& op, const std::string& path) {
  op.workspace().clearProtocol();
  if (!path.empty()) op.workspace().loadProtocol(path);
}

// Takes back what a plug-in may change: the protocol and the repetition time.
int takeHeader(Operation& op, VTC_Header* header) {
  VTC_Header& linked = currentVtc(op).header;
  const std::string protocol = op.field(op.record(header, "header").protocolName, "protocol path");
  op.require(host::boxOf(*header) == host::boxOf(linked) && header->nrOfVolumes == linked.nrOfVolumes,
             "the box, the resolution and the number of volumes cannot be changed");
  op.require(header->tr >= 0, "the repetition time is negative");
  linked.tr = header->tr;
  if (protocol == linked.protocolName && op.workspace().protocol() != nullptr) return 1;
  host::fillField(protocol, linked.protocolName);
  linked.nrOfLinkedProtocols = protocol.empty() ? 0 : 1;
  useProtocol(op, protocol);
  return 1;
}

std::size_t cellOf(Operation& op, const LinkedVtc& vtc, int x, int y, int z) {
  const Box box = host::boxOf(vtc.header);
  const int coordinates[] = {x, y, z};
  std::size_t cell = 0;
  for (const std::size_t axis : {2U, 1U, 0U}) {
    const int fromStart = coordinates[axis] - box.start[axis];
    op.require(fromStart >= 0, fmt::format("the coordinate {} is outside the VTC", "xyz"[axis]));
    cell = cell * static_cast<std::size_t>(box.cells(axis)) +
           op.index(fromStart / box.resolution, static_cast<std::size_t>(box.cells(axis)), "cell");
  }
  return cell;
}

std::size_t checkedCell(Operation& op, const LinkedVtc& vtc, int cell) {
  return op.index(cell, host::boxOf(vtc.header).nrOfCells(), "voxel");
}

// VTC 0 is the linked one, the further ones follow.
const LinkedVtc& vtcAt(Operation& op, int index) {
  LinkedVtc& linked = currentVtc(op);
  const std::vector<LinkedVtc>& further = op.workspace().furtherVtcs();
  const std::size_t checked = op.index(index, further.size() + 1, "VTC");
  return checked == 0 ? linked : further[checked - 1];
}

// Writes the time courses of one place, as `cellIn` finds it in every VTC, one after the other.
template <typename CellIn>
int copyTimeCourses(Operation& op, int firstVtc, int lastVtc, float* out, CellIn cellIn) {
  std::vector<float> values;
  for (int i = firstVtc; i <= lastVtc; ++i) {
    const LinkedVtc& vtc = vtcAt(op, i);
    host::appendTimeCourse(vtc, cellIn(vtc), values);
  }
  std::copy(values.begin(), values.end(), &op.record(out, "buffer"));
  return static_cast<int>(values.size());
}

int lastVtc(Operation& op) {
  return static_cast<int>(op.workspace().furtherVtcs().size());
}

}  // namespace

int zqLinkVTCToCurrentVMR(const char* path, int /*reserved*/) {
  return perform("zqLinkVTCToCurrentVMR", 0, [&](Operation& op) {
    requireAnatomy(op);
    op.workspace().linkVtc(op.text(path, "path"));
    return 1;
  });
}

int zqGetVTCOfCurrentVMR(VTC_Header* header) {
  return perform("zqGetVTCOfCurrentVMR", 0, [&](Operation& op) { return fillHeader(op, header); });
}

int zqGetHeaderOfVTCOfCurrentVMR(VTC_Header* header) {
  return perform("zqGetHeaderOfVTCOfCurrentVMR", 0, [&](Operation& op) { return fillHeader(op, header); });
}

int zqSetVTCParametersOfCurrentVMR(VTC_Header* header) {
  return perform("zqSetVTCParametersOfCurrentVMR", 0, [&](Operation& op) { return takeHeader(op, header); });
}

int zqSetHeaderOfVTCOfCurrentVMR(VTC_Header* header) {
  return perform("zqSetHeaderOfVTCOfCurrentVMR", 0, [&](Operation& op) { return takeHeader(op, header); });
}

int zqClearMultiVTCAnalysis() {
  return perform("zqClearMultiVTCAnalysis", 0, [&](Operation& op) {
    op.workspace().furtherVtcs().clear();
    return 1;
  });
}

int zqAddVTCRefForMultiVTCAnalysis(const char* path) {
  return perform("zqAddVTCRefForMultiVTCAnalysis", 0, [&](Operation& op) {
    currentVtc(op);
    op.workspace().addFurtherVtc(op.text(path, "path"));
    return 1;
  });
}

int zqGetVoxelTimeCourseOfVTC(int vtc, int cell, float* out) {
  return perform("zqGetVoxelTimeCourseOfVTC", 0, [&](Operation& op) {
    return copyTimeCourses(op, vtc, vtc, out, [&](const LinkedVtc& v) { return checkedCell(op, v, cell); });
  });
}

int zqGetVoxelTimeCourseOfVTCs(int cell, float* out) {
  return perform("zqGetVoxelTimeCourseOfVTCs", 0, [&](Operation& op) {
    return copyTimeCourses(op, 0, lastVtc(op), out,
                           [&](const LinkedVtc& v) { return checkedCell(op, v, cell); });
  });
}

int zqGetVoxelCoordsTimeCourseOfVTC(int vtc, int x, int y, int z, float* out) {
  return perform("zqGetVoxelCoordsTimeCourseOfVTC", 0, [&](Operation& op) {
    return copyTimeCourses(op, vtc, vtc, out, [&](const LinkedVtc& v) { return cellOf(op, v, x, y, z); });
  });
}

int zqGetVoxelCoordsTimeCourseOfVTCs(int x, int y, int z, float* out) {
  return perform("zqGetVoxelCoordsTimeCourseOfVTCs", 0, [&](Operation& op) {
    return copyTimeCourses(op, 0, lastVtc(op), out,
                           [&](const LinkedVtc& v) { return cellOf(op, v, x, y, z); });
  });
}
