#include "tests/hostapi/fake_loader.h"

#include <dlfcn.h>

#include <cstdlib>

namespace fakes {
namespace {

void mustNotBeCalled() {
  std::abort();
}

}  // namespace

FakeLoader& loader() {
  static FakeLoader instance;
  return instance;
}

std::vector<std::string> operationNames() {
  return {
#define ZQ_OPERATION(result, name, parameters, arguments) #name,
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
  };
}

FakeLoader completeLoader() {
  FakeLoader complete;
  for (const std::string& name : operationNames()) {
    complete.symbols[name] = reinterpret_cast<void*>(&mustNotBeCalled);
  }
  return complete;
}

}  // namespace fakes

namespace {

bool hasStarted = false;
[[maybe_unused]] const bool kStarted = (hasStarted = true);

void* openFaked(const char* file, int mode) {
  fakes::FakeLoader& loader = fakes::loader();
  loader.openings.push_back(std::string(file == nullptr ? "<executable>" : file) +
                            (mode == RTLD_LAZY ? " lazy" : " other mode"));
  return loader.canOpenExecutable ? &loader : nullptr;
}

void* lookUpFaked(void* handle, const char* name) {
  fakes::FakeLoader& loader = fakes::loader();
  loader.lookups.emplace_back(handle == &loader ? name : "wrong handle");
  const auto found = loader.symbols.find(name);
  return found == loader.symbols.end() ? nullptr : found->second;
}

}  // namespace

// The linker sends every dlopen() and dlsym() of this program here: those of a sanitizer's runtime too, which
// asks before it is ready itself, and for what comes next. They get the true answer.
extern "C" void* __real_dlopen(const char* file, int mode);
extern "C" void* __real_dlsym(void* handle, const char* name);

extern "C" __attribute__((no_sanitize("address", "undefined"))) void* __wrap_dlopen(const char* file,
                                                                                    int mode) {
  return hasStarted ? openFaked(file, mode) : __real_dlopen(file, mode);
}

extern "C" __attribute__((no_sanitize("address", "undefined"))) void* __wrap_dlsym(void* handle,
                                                                                   const char* name) {
  return hasStarted && handle != RTLD_NEXT ? lookUpFaked(handle, name) : __real_dlsym(handle, name);
}
