// A recording stand-in for the host: the operations that the plug-in calls, exported with C
// linkage from the test program, on top of one scripted workspace.
//
// A FakeHost is the current host from its construction to its destruction; there is at most one.
// Set the workspace fields, queue one answer per expected prompt, run the code under test, then
// read what was logged, asked, created and saved. A prompt without a fitting answer is answered
// with a cancel and noted in `troubles`, which a test expects to be empty.
//
// Link the test program with tavmap_fake_host; it exports the operations, so that InitZQAccess()
// of the code under test finds them.
#ifndef TAVMAP_TESTS_FAKES_FAKE_HOST_H
#define TAVMAP_TESTS_FAKES_FAKE_HOST_H

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hostapi/zq_records.h"

namespace fakes {

struct FakeVoi {
  std::string name;
  std::vector<std::int32_t> voxels;  // x, y, z, x, y, z, ...
};

struct FakeProtocolCondition {
  std::string name;
  std::vector<std::int32_t> starts, ends;
};

struct FakeProtocol {
  std::int32_t timeResolution = kProtocolInVolumes;
  std::vector<FakeProtocolCondition> conditions;
};

enum class PromptKind { kInteger, kText, kOpen, kSave };

struct FakePrompt {
  PromptKind kind;
  std::string text;  // the prompt, or the title of a file dialog
  int initial = 0, min = 0, max = 0;
  std::string initialText;     // of a text prompt
  std::string folder, filter;  // of a file dialog
};

struct FakeMap {
  NR_VMP_Header header;       // its fdrThresholds points to `thresholds` of the current set's map
  std::vector<float> values;  // NaN until the plug-in writes them
  std::vector<float> thresholds;
};

struct FakeMapSet {
  NR_VMPs_Header header;
  std::vector<std::string> thresholdNames;
  std::vector<FakeMap> maps;
};

struct SavedMapSet {
  std::string path;
  FakeMapSet set;  // a copy; the pointers in its headers are null
};

class FakeHost {
 public:
  FakeHost();
  ~FakeHost();
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  // The current host; null outside the life of a FakeHost.
  static FakeHost* current();

  // Answers, in the order of the prompts they are meant for. cancelNext() fits every kind.
  FakeHost& answerInteger(int value);
  FakeHost& answerText(const std::string& text);
  FakeHost& answerOpen(const std::string& path);
  FakeHost& answerSave(const std::string& path);
  FakeHost& cancelNext();
  [[nodiscard]] std::size_t unusedAnswers() const { return answers_.size(); }

  // All log calls joined by line ends.
  [[nodiscard]] std::string logText() const;
  // How often an operation was called.
  [[nodiscard]] int callCount(const std::string& operation) const;
  [[nodiscard]] bool hasMapSet() const { return mapSet_ != nullptr; }
  [[nodiscard]] const FakeMapSet& mapSet() const { return *mapSet_; }

  // The workspace.
  std::array<int, 3> version = {2, 1, 0};
  std::string pluginsPath = ".";
  bool hasVmr = true;
  VTC_Header linkedVtc = {};
  std::vector<FakeVoi> vois;
  std::int32_t talCoords = 0;
  bool hasProtocol = false;
  FakeProtocol protocol;
  // Made current when a VTC header with this protocol path is set.
  std::map<std::string, FakeProtocol> protocolFiles;

  // Faults of the map container.
  bool failCreateMaps = false;
  bool failGetMapSet = false;
  int nullMapIndex = -1;  // zqGetNRVMPOfCurrentVMR returns null for this map
  int deleteMapsResult = 1;
  int saveMapsResult = 1;

  // What happened.
  std::vector<std::string> calls;     // operation names, in order
  std::vector<std::string> log;       // one entry per zqLogText call
  std::vector<std::string> messages;  // message boxes
  std::vector<FakePrompt> prompts;
  std::vector<std::string> troubles;
  std::vector<SavedMapSet> savedMaps;
  bool busyCursor = false;

  // The operations behind the exports.
  int integerInput(const FakePrompt& prompt);
  int textInput(const FakePrompt& prompt, char* out);
  void createMaps(int nrOfMaps, int nrOfThresholds, const NR_VMPs_Header& header);
  void deleteMaps();
  int getMapSet(NR_VMPs_Header& header);
  float* getMap(int index, NR_VMP_Header& header);
  int setMapParameters(int index, const NR_VMP_Header& header);
  void saveMaps(const std::string& path);
  int setLinkedVtc(const VTC_Header& header);
  int getProtocolCondition(int index, ProtocolCondition_Header& header);

 private:
  struct Answer {
    PromptKind kind;
    int integer;
    std::string text;
    bool cancel;
  };

  // The next answer when it fits the prompt; null: cancel (wanted, or noted as trouble).
  [[nodiscard]] std::unique_ptr<Answer> takeAnswer(const FakePrompt& prompt);

  std::deque<Answer> answers_;
  std::unique_ptr<FakeMapSet> mapSet_;
  std::vector<std::array<char, kThresholdNameBytes>> nameStorage_;
  std::vector<char*> namePointers_;
};

}  // namespace fakes

#endif
