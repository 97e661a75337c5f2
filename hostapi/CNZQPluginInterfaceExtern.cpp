#include "hostapi/CNZQPluginInterfaceExtern.h"

#include <dlfcn.h>

namespace static_intf {
namespace {

// Null until bound. A later symbol that the host lacks stays null.
#define ZQ_OPERATION(result, name, parameters, arguments) result(*name) parameters = nullptr;
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION

template <typename Function>
void bind(void* executable, const char* name, Function*& pointer) {
  pointer = reinterpret_cast<Function*>(dlsym(executable, name));
}

}  // namespace

bool InitZQAccess() {
  void* executable = dlopen(nullptr, RTLD_LAZY);
  if (executable == nullptr) return false;
  bind(executable, "zqGetVersionOfCorvaneZQ", zqGetVersionOfCorvaneZQ);
  if (zqGetVersionOfCorvaneZQ == nullptr) return false;
#define ZQ_OPERATION(result, name, parameters, arguments) bind(executable, #name, name);
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
  return true;  // the handle stays open for the life of the library
}

bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3) {
  if (a1 != b1) return a1 > b1;
  if (a2 != b2) return a2 > b2;
  return a3 >= b3;
}

}  // namespace static_intf

bool InitZQAccess() { return static_intf::InitZQAccess(); }

bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3) {
  return static_intf::checkVersionGreaterEqualVersion(a1, a2, a3, b1, b2, b3);
}

#define ZQ_OPERATION(result, name, parameters, arguments) \
  result name parameters { return static_intf::name arguments; }
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
