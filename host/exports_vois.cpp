// VOIs: the current list of regions.
#include "host/exports.h"
#include "host/fields.h"
#include "host/operation.h"
#include "host/workspace.h"

namespace {

using host::Operation;
using host::perform;
using host::VoiList;

}  // namespace

int zqLoadVOIs(const char* path) {
  return perform("zqLoadVOIs", 0, [&](Operation& op) {
    for (const std::string& remark : op.workspace().loadVois(op.text(path, "path"), "")) op.log(remark);
    return 1;
  });
}

int zqSaveVOIs(const char* path) {
  return perform("zqSaveVOIs", 0, [&](Operation& op) {
    op.require(op.workspace().vois() != nullptr, "no VOIs are loaded");
    op.workspace().saveVois(op.text(path, "path"));
    return 1;
  });
}

int zqGetVOIs(VOIs_Header* header) {
  return perform("zqGetVOIs", 0, [&](Operation& op) {
    op.record(header, "header") = VOIs_Header{};
    const VoiList* list = op.workspace().vois();
    if (list == nullptr) return 0;
    header->nrOfVOIs = static_cast<std::int32_t>(list->vois.size());
    header->talCoords = list->talairach ? 1 : 0;
    host::fillField(list->path, header->fileName);
    host::fillField(list->talairach ? "TAL" : "native", header->referenceSpace);
    return 1;
  });
}

int* zqGetVOI(int index, VOI_Header* header) {
  return perform("zqGetVOI", static_cast<int*>(nullptr), [&](Operation& op) {
    VoiList* list = op.workspace().vois();
    op.require(list != nullptr, "no VOIs are loaded");
    host::Voi& voi = list->vois[op.index(index, list->vois.size(), "VOI")];
    op.require(voi.coordinates.intact(), "coordinates were written outside VOI " + std::to_string(index));
    op.record(header, "header") = VOI_Header{voi.nrOfVoxels(), {}};
    host::fillField(voi.name, header->name);
    return voi.coordinates.data();
  });
}
