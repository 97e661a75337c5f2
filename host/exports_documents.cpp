// Documents and the anatomy. The workspace holds one document at most, the current anatomy.
#include <fmt/core.h>

#include <algorithm>

#include "host/exports.h"
#include "host/operation.h"
#include "host/workspace.h"

namespace {

using host::Operation;
using host::perform;

constexpr int kAnatomyId = 0;
constexpr int kAnatomyType = 1;
constexpr int kNoDocument = -1;

std::size_t nrOfDocuments(Operation& op) {
  return op.workspace().anatomy() ? 1 : 0;
}

}  // namespace

int zqGetNumberOfDocsInWorkspace() {
  return perform("zqGetNumberOfDocsInWorkspace", 0,
                 [&](Operation& op) { return static_cast<int>(nrOfDocuments(op)); });
}

int zqGetDocumentType(int index) {
  return perform("zqGetDocumentType", 0, [&](Operation& op) {
    op.index(index, nrOfDocuments(op), "document");
    return kAnatomyType;
  });
}

const char* zqGetDocumentTypeName(int type) {
  return perform("zqGetDocumentTypeName", static_cast<const char*>(nullptr), [&](Operation& op) {
    op.require(type == kAnatomyType, fmt::format("document type {} does not exist", type));
    return "VMR";
  });
}

int zqGetIDOfCurrentDocument() {
  return perform("zqGetIDOfCurrentDocument", kNoDocument,
                 [&](Operation& op) { return nrOfDocuments(op) > 0 ? kAnatomyId : kNoDocument; });
}

int zqSetAsCurrentDocument(int id) {
  return perform("zqSetAsCurrentDocument", 0, [&](Operation& op) {
    op.index(id, nrOfDocuments(op), "document");
    return 1;
  });
}

int zqGetCurrentVMR(int* dimX, int* dimY, int* dimZ) {
  return perform("zqGetCurrentVMR", 0, [&](Operation& op) {
    int* const dims[] = {&op.record(dimX, "x dimension"), &op.record(dimY, "y dimension"),
                         &op.record(dimZ, "z dimension")};
    if (!op.workspace().anatomy()) return 0;
    const formats::GridSize& size = op.workspace().anatomy()->header.size;
    *dims[0] = size.x, *dims[1] = size.y, *dims[2] = size.z;
    return 1;
  });
}
