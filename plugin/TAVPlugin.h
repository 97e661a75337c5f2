// The plug-in object that the host creates, initialises once and runs any number of times.
//
// Everything runs on the host's calling thread; dialogs are modal. Nothing but the bound host
// operations outlives a run: each execute() starts from defaults and reads the settings anew.
// Exceptions (exhausted memory) pass through to the host.
#ifndef TAVMAP_PLUGIN_TAVPLUGIN_H
#define TAVMAP_PLUGIN_TAVPLUGIN_H

#include <iosfwd>
#include <string>

#include "hostapi/CNZQPluginInterface.h"
#include "hostapi/zq_records.h"
#include "tav/tav_pars.h"

class TAVPlugin : public CNZQPluginInterface {
 public:
  // Checks the workspace, reads the settings, asks the user, computes and saves. True when all
  // maps were computed.
  bool execute() override;

  // Binds the host's operations. False when that fails or when the host is older than 2.1.0; the
  // object is then unusable.
  bool initPlugin() override;

  // Writes the text to the host's log in one call, each of its lines behind the prompt.
  void tavLogText(const std::string& text);

  // Writes the closing banner.
  void tavExit();

  // The set-up dialogs. Each returns a tav::Status: kSuccess, kCancelled by the user,
  // kInvalidParameters or kTerminalError (both with the reason in the log). They write straight
  // into the request, which keeps what was chosen before a cancel.

  // The whole set-up: references, conditions with their files and intervals, result prefix.
  int tavGetParametersFromUser(tav::TAV_Pars& pars, VOIs_Header& vois);

  // Appends the chosen references to `pars.vois`.
  int tavGetVOIParametersFromUser(tav::TAV_Pars& pars, const VOIs_Header& vois);

  // Add files with their intervals to `cond`: single VTCs, or pairs of source (reference) and
  // target (voxels). `method`: 1, one typed interval per file; 2, the intervals of a condition of
  // a protocol.
  int tavGetVtcsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method);
  int tavGetVtcPairsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method);

  // Add intervals (volumes, from 1, both ends inclusive) to `set`. `vtcName` is shown in the
  // prompts; an interval has more than `arOrder` volumes, except that volumes from a protocol are
  // taken as they are.
  int tavGetVtcBeginEndFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder);
  int tavGetVtcIntvsFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder);

  // True when the VTC can be read and fits the bounding box and the resolution of the request. The
  // first file of a request fixes them; the largest number of volumes is remembered.
  bool checkVTC(tav::TAV_Pars& pars, std::string path);

  // Echo every choice of the user in the log. The first member: it follows the table pointer.
  bool logUserSelections = true;

 private:
  // What a protocol's numbers mean.
  struct ProtocolTiming {
    int resolution;  // kProtocolInVolumes or kProtocolInMilliseconds
    int trMs;
    int arOrder;
  };

  void writeBanner();
  void readSettings(std::istream& file, const std::string& path, tav::TAV_Pars& pars,
                    std::ostringstream& messages);
  bool compute(const tav::TAV_Pars& pars, std::ostringstream& messages);
  void explainFailure(const std::string& messages, const std::string& conclusion);

  void addVoi(tav::TAV_Pars& pars, const VOIs_Header& vois, int index);
  int addConditions(tav::TAV_Pars& pars, int method);
  int addCondition(tav::TAV_Pars& pars, const std::string& name, int method);
  int addVtcPair(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, const tav::TAV_VTC_intv_set& pair,
                 int method);
  int addVtcSet(const tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, const tav::TAV_VTC_intv_set& set,
                int method);
  bool loadProtocol(const std::string& path, VTC_Header& vtc, Protocol_Header& protocol);
  int addProtocolIntervals(tav::TAV_VTC_intv_set& set, const ProtocolCondition_Header& condition,
                           const ProtocolTiming& timing);
  int addProtocolInterval(tav::TAV_VTC_intv_set& set, int start, int end, const ProtocolTiming& timing);
  int addMilliseconds(tav::TAV_VTC_intv_set& set, int startMs, int endMs, const ProtocolTiming& timing);
  void addInterval(tav::TAV_VTC_intv_set& set, tav::TAV_intv interval);
};

#endif
