// Which stretches of a VTC belong to a condition, taken from a stimulation protocol that the host
// loads.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"

namespace {

constexpr std::size_t kMaxProtocolPath = kVtcNameBytes - 1;

// Asks again for a path that the VTC header cannot hold: cut, it would name another file.
std::optional<std::string> askProtocolFile() {
  while (true) {
    auto path = askOpenFile("Specify a protocol file with VOLUME time-resolution", "Protocol Files (*.prt)");
    if (!path || path->size() <= kMaxProtocolPath) return path;
    refuseSelection(
        "The path of the protocol file has more than " + std::to_string(kMaxProtocolPath) +
        " characters. Move the file to a folder with a shorter path. Try again after closing this dialog");
  }
}

std::string protocolMenu(const Protocol_Header& protocol, const char* vtcName) {
  std::string menu =
      std::string(
          "<b>Select a PRT Condition</b><br>Select a single condition from the currently loaded protocol to "
          "specify the intervals for the current TAV condition in <i>") +
      vtcName + "</i><br><br><b>Select:</b><br>";
  for (int i = 0; i < protocol.nrOfConditions; ++i) {
    ProtocolCondition_Header condition{};
    zqGetProtocolCondition(i, &condition);
    menu += std::to_string(i + 1) + ". " + textOf(condition.name) + "<br>";
  }
  return menu;
}

std::int32_t clampToInt32(long double value) {
  constexpr long double kMin = std::numeric_limits<std::int32_t>::min();
  constexpr long double kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(value, kMin, kMax));
}

// The start goes to the nearest volume border and on to the volume behind it (volumes count from
// 1), the end to the nearest border alone: deliberately asymmetric, so that blocks that follow one
// another share no volume.
tav::TAV_intv volumesOf(std::int32_t startMs, std::int32_t endMs, std::int32_t trMs) {
  const auto border = [trMs](std::int32_t ms) {
    return std::trunc(static_cast<long double>(ms) / trMs + 0.5L);
  };
  const std::int32_t first = clampToInt32(border(startMs) + 1);
  return {first, std::max(first, clampToInt32(border(endMs)))};
}

}  // namespace

int TAVPlugin::tavGetVtcIntvsFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder) {
  const auto path = askProtocolFile();
  if (!path) return tav::kCancelled;
  VTC_Header vtc{};
  Protocol_Header protocol{};
  if (!loadProtocol(*path, vtc, protocol)) return tav::kTerminalError;
  const int choice =
      zqGetIntegerInput(protocolMenu(protocol, vtcName).c_str(), 1, 1, protocol.nrOfConditions);
  if (choice < 1) return tav::kCancelled;
  ProtocolCondition_Header condition{};
  zqGetProtocolCondition(choice - 1, &condition);
  return addProtocolIntervals(*set, condition, {protocol.timeResolution, vtc.tr, arOrder});
}

// Has the host load the protocol of the current VTC; false with the reason in the log.
bool TAVPlugin::loadProtocol(const std::string& path, VTC_Header& vtc, Protocol_Header& protocol) {
  zqGetVTCOfCurrentVMR(&vtc);
  if (vtc.dataOffset == -1) {
    tavLogText("ERROR: Could not get access to VTC");
    return false;
  }
  std::memcpy(vtc.protocolName, path.c_str(), path.size() + 1);
  zqSetVTCParametersOfCurrentVMR(&vtc);
  if (zqGetProtocol(&protocol) == 0) {
    tavLogText("ERROR: Could not get access to protocol definition");
    return false;
  }
  if (protocol.nrOfConditions < 1) tavLogText("ERROR: The protocol has no conditions: " + path);
  return protocol.nrOfConditions > 0;
}

int TAVPlugin::addProtocolIntervals(tav::TAV_VTC_intv_set& set, const ProtocolCondition_Header& condition,
                                    const ProtocolTiming& timing) {
  if (timing.resolution == kProtocolInMilliseconds) {
    tavLogText("\tWARNING: The specified protocol has millisecond resolution, TAV requires volumes");
    tavLogText(
        "\tWARNING: Converting milliseconds to volumes (using current VTC's TR), please check intervals "
        "below or in "
        "written log-file");
  }
  for (int i = 0; i < condition.nrOfIntervals; ++i) {
    const int status = addProtocolInterval(set, condition.starts[i], condition.ends[i], timing);
    if (status != tav::kSuccess) return status;
  }
  return tav::kSuccess;
}

int TAVPlugin::addProtocolInterval(tav::TAV_VTC_intv_set& set, int start, int end,
                                   const ProtocolTiming& timing) {
  if (timing.resolution == kProtocolInVolumes) {
    addInterval(set, {start, end});  // whatever its length
    return tav::kSuccess;
  }
  if (timing.resolution == kProtocolInMilliseconds) return addMilliseconds(set, start, end, timing);
  tavLogText("ERROR: Unknown protocol time-resolution: not volumes or msec");
  return tav::kTerminalError;
}

int TAVPlugin::addMilliseconds(tav::TAV_VTC_intv_set& set, int startMs, int endMs,
                               const ProtocolTiming& timing) {
  if (timing.trMs < 1) {
    tavLogText("ERROR: The current VTC has no repetition time (TR) to convert milliseconds to volumes: " +
               std::to_string(timing.trMs) + " ms. Use a protocol in volumes or correct the VTC");
    return tav::kTerminalError;
  }
  const tav::TAV_intv interval = volumesOf(startMs, endMs, timing.trMs);
  if (std::int64_t{interval.last} - interval.first < timing.arOrder) {
    tavLogText("ERROR : The interval (" + std::to_string(interval.first) + ", " +
               std::to_string(interval.last) + ") is invalid: last-first+1 must be greater than AR-order(" +
               std::to_string(timing.arOrder) + ")");
    return tav::kInvalidParameters;
  }
  addInterval(set, interval);
  return tav::kSuccess;
}
