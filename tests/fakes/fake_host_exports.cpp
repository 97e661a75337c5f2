// The exported operations: one to three lines each on the current FakeHost. This file must not
// include the forwarder header, which declares the same names with C++ linkage.
#include <cstring>

#include "tests/fakes/fake_host.h"

#define ZQ_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

fakes::FakeHost& host(const char* operation) {
  fakes::FakeHost& current = *fakes::FakeHost::current();
  current.calls.emplace_back(operation);
  return current;
}

}  // namespace

ZQ_EXPORT int zqGetVersionOfCorvaneZQ(int* major, int* minor, int* patch) {
  const auto& version = host(__func__).version;
  *major = version[0];
  *minor = version[1];
  *patch = version[2];
  return 1;
}

ZQ_EXPORT int zqGetPluginsPath(char* path) {
  const std::string& text = host(__func__).pluginsPath;
  std::memcpy(path, text.c_str(), text.size() + 1);
  return 1;
}

ZQ_EXPORT void zqShowLogTab() {
  host(__func__);
}
ZQ_EXPORT void zqLogText(const char* text) {
  host(__func__).log.emplace_back(text);
}
ZQ_EXPORT void zqMessageBox(const char* html) {
  host(__func__).messages.emplace_back(html);
}
ZQ_EXPORT void zqShowBusyCursor() {
  host(__func__).busyCursor = true;
}
ZQ_EXPORT void zqStopBusyCursor() {
  host(__func__).busyCursor = false;
}

ZQ_EXPORT int zqGetIntegerInput(const char* prompt, int initial, int min, int max) {
  return host(__func__).integerInput({fakes::PromptKind::kInteger, prompt, initial, min, max, "", "", ""});
}

ZQ_EXPORT int zqGetTextInput(const char* prompt, const char* initial, char* out) {
  return host(__func__).textInput({fakes::PromptKind::kText, prompt, 0, 0, 0, initial, "", ""}, out);
}

ZQ_EXPORT int zqGetOpenFileName(const char* title, const char* folder, const char* filter, char* out) {
  return host(__func__).textInput({fakes::PromptKind::kOpen, title, 0, 0, 0, "", folder, filter}, out);
}

ZQ_EXPORT int zqGetSaveFileName(const char* title, const char* folder, const char* filter, char* out) {
  return host(__func__).textInput({fakes::PromptKind::kSave, title, 0, 0, 0, "", folder, filter}, out);
}

ZQ_EXPORT int zqGetCurrentVMR(int* dimX, int* dimY, int* dimZ) {
  *dimX = *dimY = *dimZ = 256;
  return host(__func__).hasVmr ? 1 : 0;
}

ZQ_EXPORT int zqGetVTCOfCurrentVMR(VTC_Header* header) {
  *header = host(__func__).linkedVtc;
  return header->dataOffset == -1 ? 0 : 1;
}

ZQ_EXPORT int zqSetVTCParametersOfCurrentVMR(VTC_Header* header) {
  return host(__func__).setLinkedVtc(*header);
}

ZQ_EXPORT int zqGetVOIs(VOIs_Header* header) {
  const fakes::FakeHost& current = host(__func__);
  *header = {};
  header->nrOfVOIs = static_cast<std::int32_t>(current.vois.size());
  header->talCoords = current.talCoords;
  return header->nrOfVOIs > 0 ? 1 : 0;
}

ZQ_EXPORT int* zqGetVOI(int index, VOI_Header* header) {
  fakes::FakeVoi& voi = host(__func__).vois.at(static_cast<std::size_t>(index));
  *header = {};
  header->nrOfVoxels = static_cast<std::int32_t>(voi.voxels.size() / 3);
  std::strncpy(header->name, voi.name.c_str(), sizeof header->name - 1);
  return voi.voxels.data();
}

ZQ_EXPORT int zqGetProtocol(Protocol_Header* header) {
  const fakes::FakeHost& current = host(__func__);
  if (!current.hasProtocol) return 0;
  *header = {};
  header->nrOfConditions = static_cast<std::int32_t>(current.protocol.conditions.size());
  header->timeResolution = current.protocol.timeResolution;
  return 1;
}

ZQ_EXPORT int zqGetProtocolCondition(int index, ProtocolCondition_Header* header) {
  return host(__func__).getProtocolCondition(index, *header);
}

ZQ_EXPORT int zqCreateNRVMPsForCurrentVMR(int nrOfMaps, int /*reserved*/, int nrOfThresholds,
                                          NR_VMPs_Header* header) {
  fakes::FakeHost& current = host(__func__);
  if (current.failCreateMaps) return 0;
  current.createMaps(nrOfMaps, nrOfThresholds, *header);
  return 1;
}

ZQ_EXPORT int zqDeleteNRVMPsOfCurrentVMR() {
  host(__func__).deleteMaps();
  return fakes::FakeHost::current()->deleteMapsResult;
}

ZQ_EXPORT int zqGetNRVMPsOfCurrentVMR(NR_VMPs_Header* header) {
  return host(__func__).getMapSet(*header);
}

ZQ_EXPORT float* zqGetNRVMPOfCurrentVMR(int index, NR_VMP_Header* header) {
  return host(__func__).getMap(index, *header);
}

ZQ_EXPORT int zqSetNRVMPParametersOfCurrentVMR(int index, NR_VMP_Header* header) {
  return host(__func__).setMapParameters(index, *header);
}

ZQ_EXPORT int zqSaveNRVMPsOfCurrentVMR(const char* path) {
  host(__func__).saveMaps(path);
  return fakes::FakeHost::current()->saveMapsResult;
}
