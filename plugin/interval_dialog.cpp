// Which stretches of a VTC belong to a condition, typed by the user.
#include <string>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "plugin/TAVPlugin.h"
#include "plugin/host_prompts.h"

namespace {

constexpr int kMaxVolume = 1000000;

int askVolume(const char* which, const char* vtcName, int initial) {
  const std::string prompt =
      std::string("Specify <b>") + which + "</b> time-point(volume) of interval in<br><i>" + vtcName + "</i>";
  return zqGetIntegerInput(prompt.c_str(), initial, 1, kMaxVolume);
}

void refuseShortInterval(tav::TAV_intv interval, int arOrder) {
  refuseSelection("The interval (" + std::to_string(interval.first) + ", " + std::to_string(interval.last) +
                  ") is too short: last-first+1 must be greater than AR-order(" + std::to_string(arOrder) +
                  ")<br><br>Try again after closing this dialog");
}

}  // namespace

// The volumes are compared with the file's length later, when the computation opens it.
int TAVPlugin::tavGetVtcBeginEndFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder) {
  while (true) {
    const int first = askVolume("first", vtcName, 5);
    if (first < 1) return tav::kCancelled;
    const int last = askVolume("last", vtcName, 100);
    if (last < 1) return tav::kCancelled;
    if (last - first >= arOrder) {
      addInterval(*set, {first, last});
      return tav::kSuccess;
    }
    refuseShortInterval({first, last}, arOrder);
  }
}

void TAVPlugin::addInterval(tav::TAV_VTC_intv_set& set, tav::TAV_intv interval) {
  set.intervals.push_back(interval);
  if (logUserSelections) {
    tavLogText("\t\t" + std::to_string(interval.first) + "\t-\t" + std::to_string(interval.last));
  }
}
