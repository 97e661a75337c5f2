// Which volumes of a VTC belong to a condition: typed in, or those of a protocol condition.
#include <array>
#include <cstdio>
#include <cstring>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/protocol_time.h"
#include "plugin/text_buffer.h"

namespace {

constexpr int kLastVolumeOffered = 1000000;

int askVolume(const char* which, const char* vtcName, int initial) {
  const std::string prompt =
      std::string("Specify <b>") + which + "</b> time-point(volume) of interval in<br><i>" + vtcName + "</i>";
  return zqGetIntegerInput(prompt.c_str(), initial, 1, kLastVolumeOffered);
}

// last - first >= order, in a type in which the difference of any two ints fits.
bool isLongEnough(const tav::TAV_intv& interval, int arOrder) {
  return static_cast<std::int64_t>(interval.last) - interval.first >= arOrder;
}

std::string formatted(const char* format, const tav::TAV_intv& interval, int arOrder) {
  std::array<char, 256> text{};
  std::snprintf(text.data(), text.size(), format, interval.first, interval.last, arOrder);
  return text.data();
}

std::string conditionMenu(const Protocol_Header& protocol, const char* vtcName) {
  std::string menu =
      std::string(
          "<b>Select a PRT Condition</b><br>Select a single condition from the currently loaded protocol to "
          "specify the intervals for the current TAV condition in <i>") +
      vtcName + "</i><br><br><b>Select:</b><br>";
  for (int i = 0; i < protocol.nrOfConditions; ++i) {
    ProtocolCondition_Header condition = {};
    zqGetProtocolCondition(i, &condition);
    menu += std::to_string(i + 1) + ". " + condition.name + "<br>";
  }
  return menu;
}

// False when the path does not fit the header's field.
bool setProtocolPath(VTC_Header& vtc, const std::string& path) {
  if (path.size() >= sizeof vtc.protocolName) return false;
  std::memcpy(vtc.protocolName, path.c_str(), path.size() + 1);
  return true;
}

}  // namespace

void TAVPlugin::addInterval(tav::TAV_VTC_intv_set& set, const tav::TAV_intv& interval) {
  set.intervals.push_back(interval);
  if (logUserSelections) {
    tavLogText("\t\t" + std::to_string(interval.first) + "\t-\t" + std::to_string(interval.last));
  }
}

int TAVPlugin::tavGetVtcBeginEndFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder) {
  for (;;) {
    tav::TAV_intv interval = {};
    interval.first = askVolume("first", vtcName, 5);
    if (interval.first < 1) return tav::kCancelled;
    interval.last = askVolume("last", vtcName, 100);
    if (interval.last < 1) return tav::kCancelled;
    if (isLongEnough(interval, arOrder)) {
      addInterval(*set, interval);
      return tav::kSuccess;
    }
    zqMessageBox(formatted("<b>Invalid selection</b><br>The interval (%d, %d) is too short: last-first+1 must be "
                           "greater than AR-order(%d)<br><br>Try again after closing this dialog",
                           interval, arOrder)
                     .c_str());
  }
}

int TAVPlugin::tavGetVtcIntvsFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder) {
  TextBuffer path;
  if (zqGetOpenFileName("Specify a protocol file with VOLUME time-resolution", "", "Protocol Files (*.prt)",
                        path.data()) == 0) {
    return tav::kCancelled;
  }
  VTC_Header vtc = {};
  zqGetVTCOfCurrentVMR(&vtc);
  if (vtc.dataOffset == -1) {
    tavLogText("ERROR: Could not get access to VTC");
    return tav::kTerminalError;
  }
  if (!setProtocolPath(vtc, path.text())) {
    tavLogText("ERROR: The path of the protocol is longer than 260 characters, move the file: " + path.text());
    return tav::kTerminalError;
  }
  zqSetVTCParametersOfCurrentVMR(&vtc);  // the host loads the protocol and makes it the current one

  Protocol_Header protocol = {};
  if (zqGetProtocol(&protocol) == 0) {
    tavLogText("ERROR: Could not get access to protocol definition");
    return tav::kTerminalError;
  }
  const int choice = zqGetIntegerInput(conditionMenu(protocol, vtcName).c_str(), 1, 1, protocol.nrOfConditions);
  if (choice < 1) return tav::kCancelled;
  ProtocolCondition_Header condition = {};
  zqGetProtocolCondition(choice - 1, &condition);
  return addProtocolIntervals(*set, protocol, condition, vtc.tr, arOrder);
}

int TAVPlugin::addProtocolIntervals(tav::TAV_VTC_intv_set& set, const Protocol_Header& protocol,
                                    const ProtocolCondition_Header& condition, int trMs, int arOrder) {
  if (protocol.timeResolution == kProtocolInMilliseconds) {
    tavLogText("\tWARNING: The specified protocol has millisecond resolution, TAV requires volumes");
    tavLogText(
        "\tWARNING: Converting milliseconds to volumes (using current VTC's TR), please check intervals below or "
        "in written log-file");
  }
  for (int i = 0; i < condition.nrOfIntervals; ++i) {
    const tav::TAV_intv stated = {condition.starts[i], condition.ends[i]};
    int status = tav::kSuccess;
    if (protocol.timeResolution == kProtocolInMilliseconds) {
      status = addConvertedInterval(set, stated.first, stated.last, trMs, arOrder);
    } else if (protocol.timeResolution == kProtocolInVolumes) {
      addInterval(set, stated);  // taken as it is; the computation checks it
    } else {
      tavLogText("ERROR: Unknown protocol time-resolution: not volumes or msec");
      status = tav::kTerminalError;
    }
    if (status != tav::kSuccess) return status;
  }
  return tav::kSuccess;
}

int TAVPlugin::addConvertedInterval(tav::TAV_VTC_intv_set& set, int startMs, int endMs, int trMs, int arOrder) {
  if (trMs < 1) {
    tavLogText("ERROR: The linked VTC states no repetition time (TR); milliseconds cannot be converted to volumes");
    return tav::kTerminalError;
  }
  const tav::TAV_intv interval = volumesOfMilliseconds(startMs, endMs, trMs);
  if (!isLongEnough(interval, arOrder)) {
    tavLogText(formatted(
        "ERROR : The interval (%d, %d) is invalid: last-first+1 must be greater than AR-order(%d)", interval, arOrder));
    return tav::kInvalidParameters;
  }
  addInterval(set, interval);
  return tav::kSuccess;
}
