#include "hostapi/CNZQPluginInterfaceExtern.h"

#include <dlfcn.h>

namespace static_intf {
namespace {

// Null until bound. A later symbol that the host lacks stays null.
#define ZQ_OPERATION(result, name, parameters, arguments) result(*name) parameters = nullptr;
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION

struct Binding {
  const char* name;
  void (*bind)(void* symbol);
};

// In the order of the table, the version first.
constexpr Binding kBindings[] = {
#define ZQ_OPERATION(result, name, parameters, arguments) \
  {#name, [](void* symbol) { name = reinterpret_cast<decltype(name)>(symbol); }},
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
};

}  // namespace

bool InitZQAccess() {
  void* executable = dlopen(nullptr, RTLD_LAZY);
  if (executable == nullptr) return false;
  for (const Binding& binding : kBindings) {
    binding.bind(dlsym(executable, binding.name));
    if (zqGetVersionOfCorvaneZQ == nullptr) return false;  // bound first: no host of ours
  }
  return true;  // the handle stays open for the life of the library
}

bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3) {
  if (a1 != b1) return a1 > b1;
  if (a2 != b2) return a2 > b2;
  return a3 >= b3;
}

}  // namespace static_intf

bool InitZQAccess() {
  return static_intf::InitZQAccess();
}

bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3) {
  return static_intf::checkVersionGreaterEqualVersion(a1, a2, a3, b1, b2, b3);
}

#define ZQ_OPERATION(result, name, parameters, arguments) \
  result name parameters {                                \
    return static_intf::name arguments;                   \
  }
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
