// Host and log: who the host is, where its folders are, and the log pane.
#include <cstring>

#include "host/exports.h"
#include "host/operation.h"

namespace {

using host::Operation;
using host::perform;

// The receiving buffer's size is not known here; plug-ins provide room for a path of the
// operating system's length (PATH_MAX).
int copyOut(const std::string& text, char* out) {
  std::memcpy(out, text.c_str(), text.size() + 1);
  return 1;
}

}  // namespace

int zqGetVersionOfCorvaneZQ(int* major, int* minor, int* patch) {
  return perform("zqGetVersionOfCorvaneZQ", 0, [&](Operation& op) {
    const host::HostVersion& version = op.run().identity().version;
    op.record(major, "major version") = version.major;
    op.record(minor, "minor version") = version.minor;
    op.record(patch, "patch level") = version.patch;
    return 1;
  });
}

int zqGetCorvaneZQPath(char* path) {
  return perform("zqGetCorvaneZQPath", 0, [&](Operation& op) {
    return copyOut(op.run().identity().programFolder, &op.record(path, "path buffer"));
  });
}

int zqGetPluginsPath(char* path) {
  return perform("zqGetPluginsPath", 0, [&](Operation& op) {
    return copyOut(op.run().identity().pluginsFolder, &op.record(path, "path buffer"));
  });
}

// Every front end shows its log all the time.
void zqShowLogPane() {
  perform("zqShowLogPane", [](Operation&) {});
}
void zqShowLogTab() {
  perform("zqShowLogTab", [](Operation&) {});
}

void zqLogText(const char* text) {
  perform("zqLogText", [&](Operation& op) { op.log(op.text(text, "text")); });
}
