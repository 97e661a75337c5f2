#include "host/exports.h"

namespace host {

const std::vector<ExportedOperation>& exportedOperations() {
  static const std::vector<ExportedOperation> operations = {
#define ZQ_EXPORTED(name) {#name, reinterpret_cast<void*>(&::name)},
#include "host/exported_operations.def"
#undef ZQ_EXPORTED
  };
  return operations;
}

}  // namespace host
