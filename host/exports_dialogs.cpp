// Dialogs: each operation hands a question to the front end and its answer to the plug-in.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/exports.h"
#include "host/operation.h"
#include "host/run_length.h"

namespace {

using host::Operation;
using host::perform;

// What plug-ins have room for: paths as in the file fields of the host's records, texts as in
// its name fields.
constexpr std::size_t kMaxPathBytes = kVtcNameBytes - 1;
constexpr std::size_t kMaxTextBytes = 255;

int copyOut(const std::optional<std::string>& answer, char* out) {
  if (!answer) return 0;
  std::memcpy(out, answer->c_str(), answer->size() + 1);
  return 1;
}

host::FileQuestion fileQuestion(Operation& op, const char* title, const char* folder, const char* filter) {
  return {op.text(title, "title"), op.text(folder, "start folder"), op.text(filter, "filter"), kMaxPathBytes};
}

template <typename Number>
void requireLimits(Operation& op, Number initial, Number min, Number max) {
  op.require(min <= max, "the smallest allowed value is above the largest");
  op.require(initial >= min && initial <= max, "the initial value is out of range");
}

// A cancelled number dialog returns a value below the smallest allowed one.
int below(int min) {
  return min > std::numeric_limits<int>::min() ? min - 1 : min;
}
float below(float min) {
  return std::min(min - 1.0F, std::nextafter(min, -std::numeric_limits<float>::infinity()));
}

}  // namespace

void zqMessageBox(const char* html) {
  perform("zqMessageBox", [&](Operation& op) { op.frontEnd().showMessage(op.text(html, "text")); });
}

int zqYesNoMessageBox(const char* html) {
  return perform("zqYesNoMessageBox", 0,
                 [&](Operation& op) { return op.frontEnd().askYesNo(op.text(html, "text")) ? 1 : 0; });
}

int zqGetIntegerInput(const char* prompt, int initial, int min, int max) {
  return perform("zqGetIntegerInput", below(min), [&](Operation& op) {
    requireLimits(op, initial, min, max);
    const std::string html = op.text(prompt, "prompt");
    const int volumes = host::volumesOfRunIn(html, op.workspace());
    return op.frontEnd().askInteger({html, initial, min, max, volumes}).value_or(below(min));
  });
}

float zqGetFloatInput(const char* prompt, float initial, float min, float max) {
  return perform("zqGetFloatInput", below(min), [&](Operation& op) {
    requireLimits(op, op.number(initial, "initial value"), op.number(min, "smallest value"),
                  op.number(max, "largest value"));
    return op.frontEnd().askNumber({op.text(prompt, "prompt"), initial, min, max}).value_or(below(min));
  });
}

int zqGetTextInput(const char* prompt, const char* initial, char* out) {
  return perform("zqGetTextInput", 0, [&](Operation& op) {
    char* buffer = &op.record(out, "text buffer");
    return copyOut(
        op.frontEnd().askText({op.text(prompt, "prompt"), op.text(initial, "initial text"), kMaxTextBytes}),
        buffer);
  });
}

int zqGetOpenFileName(const char* title, const char* folder, const char* filter, char* out) {
  return perform("zqGetOpenFileName", 0, [&](Operation& op) {
    char* buffer = &op.record(out, "path buffer");
    return copyOut(op.frontEnd().askFileToOpen(fileQuestion(op, title, folder, filter)), buffer);
  });
}

int zqGetSaveFileName(const char* title, const char* folder, const char* filter, char* out) {
  return perform("zqGetSaveFileName", 0, [&](Operation& op) {
    char* buffer = &op.record(out, "path buffer");
    return copyOut(op.frontEnd().askFileToSave(fileQuestion(op, title, folder, filter)), buffer);
  });
}

void zqUpdateActiveWindow() {
  perform("zqUpdateActiveWindow", [](Operation&) {});
}

void zqShowBusyCursor() {
  perform("zqShowBusyCursor", [](Operation& op) { op.frontEnd().setBusy(true); });
}

void zqStopBusyCursor() {
  perform("zqStopBusyCursor", [](Operation& op) { op.frontEnd().setBusy(false); });
}
