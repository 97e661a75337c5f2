// The plug-in object: start-up check, one complete run, and the set-up dialogs.
#ifndef TAVMAP_PLUGIN_TAVPLUGIN_H
#define TAVMAP_PLUGIN_TAVPLUGIN_H

#include <string>

#include "hostapi/CNZQPluginInterface.h"
#include "hostapi/zq_records.h"
#include "tav/tav_pars.h"

// Runs on the host's thread; dialogs are modal. Nothing of a run outlives execute(). Dialogs return
// a tav::Status: 1 go on, 0 cancelled, 2 an invalid interval, 3 terminal error.
class TAVPlugin : public CNZQPluginInterface {
 public:
  TAVPlugin() = default;
  ~TAVPlugin() override = default;

  // Binds the host's operations and refuses hosts older than 2.1.0 with a message box.
  bool initPlugin() override;

  // One run: preconditions, banner, settings file, dialogs, computation, closing banner. True when
  // every map was computed. Exceptions pass through.
  bool execute() override;

  // Writes `text` to the host's log as one call, with the prompt "// TAV> " before each line. A text
  // that ends in a line end leaves a bare prompt behind it.
  void tavLogText(const std::string& text);

  // The closing banner.
  void tavExit();

  // All dialogs; fills the request. The first VTC chosen fixes the geometry of the run.
  [[nodiscard]] int tavGetParametersFromUser(tav::TAV_Pars& pars, VOIs_Header& vois);

  // Which VOIs are reference regions.
  [[nodiscard]] int tavGetVOIParametersFromUser(tav::TAV_Pars& pars, const VOIs_Header& vois);

  // The VTCs, or source/target pairs, of one condition. `method`: 1 one interval each, typed in; 2
  // intervals of a protocol condition.
  [[nodiscard]] int tavGetVtcsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method);
  [[nodiscard]] int tavGetVtcPairsForConditionFromUser(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, int method);

  // The intervals of one set: method 2, method 1. `vtcName` is shown in the prompts.
  [[nodiscard]] int tavGetVtcIntvsFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder);
  [[nodiscard]] int tavGetVtcBeginEndFromUser(tav::TAV_VTC_intv_set* set, const char* vtcName, int arOrder);

  // True when the VTC can be read and has the geometry of the run, which it fixes when it is the
  // first. The longest course seen is remembered.
  [[nodiscard]] bool checkVTC(tav::TAV_Pars& pars, std::string path);

 private:
  [[nodiscard]] bool hostIsReady(VOIs_Header& vois);
  void readSettings(tav::TAV_Pars& pars, std::ostringstream& sink);
  [[nodiscard]] bool compute(const tav::TAV_Pars& pars, std::ostringstream& sink);
  [[nodiscard]] bool reportFailure(const std::string& lastLine, const std::ostringstream& sink);

  void addVoi(tav::TAV_Pars& pars, const VOIs_Header& vois, int index);
  void addAllVois(tav::TAV_Pars& pars, const VOIs_Header& vois);

  [[nodiscard]] int askConditions(tav::TAV_Pars& pars, int method);
  [[nodiscard]] int addCondition(tav::TAV_Pars& pars, const std::string& name, int method);
  [[nodiscard]] int addSet(tav::TAV_Pars& pars, tav::TAV_Cond_Pars& cond, const std::string& source,
                           const std::string& target, int method);

  [[nodiscard]] int addConvertedInterval(tav::TAV_VTC_intv_set& set, int startMs, int endMs, int trMs, int arOrder);
  [[nodiscard]] int addProtocolIntervals(tav::TAV_VTC_intv_set& set, const Protocol_Header& protocol,
                                         const ProtocolCondition_Header& condition, int trMs, int arOrder);
  void addInterval(tav::TAV_VTC_intv_set& set, const tav::TAV_intv& interval);

  bool logUserSelections = true;  // echo every choice into the log
};

#endif
