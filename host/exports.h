// The operations that this host offers to plug-ins, under the names and signatures of the desktop
// host. Declared here for all of hostapi/zq_functions.def, so that a definition with other
// arguments does not compile; which of them exist is said by host/exported_operations.def.
#ifndef TAVMAP_HOST_EXPORTS_H
#define TAVMAP_HOST_EXPORTS_H

#include <string_view>
#include <vector>

#include "hostapi/zq_records.h"

#define ZQ_OPERATION(result, name, parameters, arguments) \
  extern "C" __attribute__((visibility("default"))) result name parameters;
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION

namespace host {

struct ExportedOperation {
  std::string_view name;
  void* address;
};

// Every operation that exists, in the order of exported_operations.def. A program that runs
// plug-ins must call this function (a session does): it is what keeps the operations, which
// nothing else refers to, in a statically linked program.
const std::vector<ExportedOperation>& exportedOperations();

}  // namespace host

#endif
