// A plug-in for tests of the host: it does what the environment variable HOST_TEST_ACT says, and
// notes its destruction in the file that HOST_TEST_DESTROYED names.
#include <cstdlib>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>

#include "hostapi/CNZQPluginInterface.h"
#include "hostapi/CNZQPluginInterfaceExtern.h"

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::string act() {
  const char* value = std::getenv("HOST_TEST_ACT");
  return value == nullptr ? "" : value;
}

bool accepts(int major, int minor, int patch) {
  if (checkVersionGreaterEqualVersion(major, minor, patch, 2, 1, 0)) return true;
  zqMessageBox("Sorry, version 2.1.0 or higher required.");
  return false;
}

void askUntilZero() {
  while (zqGetIntegerInput("<b>Choose</b><br>0. stop", 1, 0, 3) != 0) {
  }
}

// Hides the end of the run and reports success.
bool swallowTheEnd() {
  try {
    askUntilZero();
  } catch (...) {
  }
  return true;
}

struct LogsWhenDestroyed {
  ~LogsWhenDestroyed() { zqLogText("destroyed"); }
};

// NOLINTNEXTLINE: the exception that meets this noexcept is what the test is about.
void askWithoutExceptions() noexcept {
  askUntilZero();
}

void writeAMap() {
  NR_VMPs_Header box = {};
  box.xEnd = box.yEnd = box.zEnd = 2;
  box.resolution = 1;
  zqCreateNRVMPsForCurrentVMR(1, 0, 1, &box);
  NR_VMP_Header map = {};
  zqGetNRVMPOfCurrentVMR(0, &map)[7] = -4.0F;
  map.fdrThresholds[0] = 3.0F;
  zqSetNRVMPParametersOfCurrentVMR(0, &map);
  char path[4096];
  if (zqGetSaveFileName("Save as", "", "", path) != 0) zqSaveNRVMPsOfCurrentVMR(path);
}

bool perform(const std::string& what) {
  if (what == "throw") throw std::runtime_error("out of luck");
  if (what == "throw-number") throw 42;
  if (what == "fail") return false;
  if (what == "log-error") zqLogText("// ACT> ERROR: something went wrong");
  if (what == "log-warning") zqLogText("// ACT> WARNING: nothing to worry about");
  if (what == "misuse") zqLogText(nullptr);
  if (what == "ask") askUntilZero();
  if (what == "swallow") return swallowTheEnd();
  if (what == "noexcept") askWithoutExceptions();
  if (what == "log-while-unwinding") {
    const LogsWhenDestroyed guard;
    askUntilZero();
  }
  if (what == "write-map") writeAMap();
  if (what == "log-environment") {
    const char* base = std::getenv("TAV_TIME_BASE");
    zqLogText(base == nullptr ? "no time base" : base);
    char path[4096];
    zqGetPluginsPath(path);
    zqLogText(path);
  }
  return true;
}

class ActingPlugin : public CNZQPluginInterface {
 public:
  ~ActingPlugin() override {
    if (act() == "log-when-destroyed") zqLogText(nullptr);
    if (const char* path = std::getenv("HOST_TEST_DESTROYED")) std::ofstream(path) << "destroyed";
  }
  bool execute() override { return perform(act()); }
  bool initPlugin() override {
    if (act() == "throw-in-init") throw std::runtime_error("no start");
    if (!InitZQAccess() || act() == "refuse") return false;
    int major = 0, minor = 0, patch = 0;
    zqGetVersionOfCorvaneZQ(&major, &minor, &patch);
    return accepts(major, minor, patch);
  }
};

}  // namespace

PLUGIN_EXPORT const char* getPluginName() {
  return "Acting <b>plug-in</b>";
}
PLUGIN_EXPORT const char* getPluginDescription() {
  if (act() == "throw-in-description") throw std::runtime_error("no words");
  return "Does what it is told.<br>";
}
PLUGIN_EXPORT const char* getAuthor() {
  return "<i>The authors</i>";
}
PLUGIN_EXPORT const char* getHelpFile() {
  return act() == "null-text" ? nullptr : "help.html";
}
PLUGIN_EXPORT const char* getRegistrationOfGenericComponentLoader() {
  return "";
}
PLUGIN_EXPORT const char* getGUIScript() {
  return "";
}
PLUGIN_EXPORT CNZQPluginInterface* createPlugin() {
  if (act() == "null-object") return nullptr;
  if (act() == "throw-in-create") throw std::bad_alloc();
  return new ActingPlugin;
}
