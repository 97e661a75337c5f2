#include "tests/fakes/fake_host.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace fakes {
namespace {

FakeHost* theHost = nullptr;

const char* nameOf(PromptKind kind) {
  switch (kind) {
    case PromptKind::kInteger:
      return "integer";
    case PromptKind::kText:
      return "text";
    case PromptKind::kOpen:
      return "open";
    case PromptKind::kSave:
      return "save";
  }
  return "?";
}

}  // namespace

FakeHost::FakeHost() {
  theHost = this;
  linkedVtc.dataOffset = 0;
  linkedVtc.tr = 2000;
}

FakeHost::~FakeHost() {
  theHost = nullptr;
}

FakeHost* FakeHost::current() {
  return theHost;
}

FakeHost& FakeHost::answerInteger(int value) {
  answers_.push_back({PromptKind::kInteger, value, "", false});
  return *this;
}
FakeHost& FakeHost::answerText(const std::string& text) {
  answers_.push_back({PromptKind::kText, 0, text, false});
  return *this;
}
FakeHost& FakeHost::answerOpen(const std::string& path) {
  answers_.push_back({PromptKind::kOpen, 0, path, false});
  return *this;
}
FakeHost& FakeHost::answerSave(const std::string& path) {
  answers_.push_back({PromptKind::kSave, 0, path, false});
  return *this;
}
FakeHost& FakeHost::cancelNext() {
  answers_.push_back({PromptKind::kInteger, 0, "", true});
  return *this;
}

std::string FakeHost::logText() const {
  std::string all;
  for (const std::string& entry : log) all += entry + "\n";
  return all;
}

int FakeHost::callCount(const std::string& operation) const {
  return static_cast<int>(std::count(calls.begin(), calls.end(), operation));
}

std::unique_ptr<FakeHost::Answer> FakeHost::takeAnswer(const FakePrompt& prompt) {
  prompts.push_back(prompt);
  if (answers_.empty()) {
    troubles.push_back(std::string("no answer left for the ") + nameOf(prompt.kind) +
                       " prompt: " + prompt.text);
    return nullptr;
  }
  const Answer answer = answers_.front();
  answers_.pop_front();
  if (answer.cancel) return nullptr;
  if (answer.kind != prompt.kind) {
    troubles.push_back(std::string("a ") + nameOf(answer.kind) + " answer met the " + nameOf(prompt.kind) +
                       " prompt: " + prompt.text);
    return nullptr;
  }
  return std::make_unique<Answer>(answer);
}

int FakeHost::integerInput(const FakePrompt& prompt) {
  const auto answer = takeAnswer(prompt);
  if (answer == nullptr) return prompt.min - 1;
  if (answer->integer < prompt.min || answer->integer > prompt.max) {
    troubles.push_back("answer " + std::to_string(answer->integer) + " is out of range: " + prompt.text);
  }
  return answer->integer;
}

int FakeHost::textInput(const FakePrompt& prompt, char* out) {
  const auto answer = takeAnswer(prompt);
  if (answer == nullptr) return 0;
  std::memcpy(out, answer->text.c_str(), answer->text.size() + 1);
  return 1;
}

void FakeHost::createMaps(int nrOfMaps, int nrOfThresholds, const NR_VMPs_Header& header) {
  auto set = std::make_unique<FakeMapSet>();
  set->header = header;
  set->header.nrOfMaps = nrOfMaps;
  set->header.nrOfFDRThresholds = nrOfThresholds;
  const auto cells = [&](std::int32_t start, std::int32_t end) {
    return static_cast<std::size_t>((end - start) / header.resolution);
  };
  const std::size_t nrOfValues = cells(header.xStart, header.xEnd) * cells(header.yStart, header.yEnd) *
                                 cells(header.zStart, header.zEnd);
  set->maps.resize(static_cast<std::size_t>(nrOfMaps));
  for (FakeMap& map : set->maps) {
    map.header = {};
    map.values.assign(nrOfValues, std::numeric_limits<float>::quiet_NaN());
    map.thresholds.assign(static_cast<std::size_t>(nrOfThresholds), -1.0F);
    map.header.fdrThresholds = map.thresholds.data();
  }
  nameStorage_.assign(static_cast<std::size_t>(nrOfThresholds), {});
  namePointers_.clear();
  for (auto& name : nameStorage_) namePointers_.push_back(name.data());
  set->header.fdrThresholdNames = namePointers_.data();
  mapSet_ = std::move(set);
}

void FakeHost::deleteMaps() {
  mapSet_.reset();
}

int FakeHost::getMapSet(NR_VMPs_Header& header) {
  if (mapSet_ == nullptr || failGetMapSet) return 0;
  header = mapSet_->header;
  return 1;
}

float* FakeHost::getMap(int index, NR_VMP_Header& header) {
  if (mapSet_ == nullptr || index < 0 || index >= mapSet_->header.nrOfMaps || index == nullMapIndex) {
    return nullptr;
  }
  FakeMap& map = mapSet_->maps[static_cast<std::size_t>(index)];
  header = map.header;
  return map.values.data();
}

int FakeHost::setMapParameters(int index, const NR_VMP_Header& header) {
  if (mapSet_ == nullptr || index < 0 || index >= mapSet_->header.nrOfMaps) {
    troubles.push_back("parameters of a map that does not exist: " + std::to_string(index));
    return 0;
  }
  FakeMap& map = mapSet_->maps[static_cast<std::size_t>(index)];
  map.header = header;
  map.header.fdrThresholds = map.thresholds.data();
  return 1;
}

void FakeHost::saveMaps(const std::string& path) {
  if (mapSet_ == nullptr) {
    troubles.push_back("saving without a map set: " + path);
    return;
  }
  SavedMapSet saved{path, *mapSet_};
  for (const auto& name : nameStorage_) saved.set.thresholdNames.emplace_back(name.data());
  saved.set.header.fdrThresholdNames = nullptr;
  for (FakeMap& map : saved.set.maps) map.header.fdrThresholds = nullptr;
  savedMaps.push_back(std::move(saved));
}

int FakeHost::setLinkedVtc(const VTC_Header& header) {
  linkedVtc = header;
  const auto found = protocolFiles.find(header.protocolName);
  hasProtocol = found != protocolFiles.end();
  if (hasProtocol) protocol = found->second;
  return 1;
}

int FakeHost::getProtocolCondition(int index, ProtocolCondition_Header& header) {
  if (!hasProtocol || index < 0 || static_cast<std::size_t>(index) >= protocol.conditions.size()) return 0;
  FakeProtocolCondition& condition = protocol.conditions[static_cast<std::size_t>(index)];
  header = {};
  std::strncpy(header.name, condition.name.c_str(), sizeof header.name - 1);
  header.nrOfIntervals = static_cast<std::int32_t>(condition.starts.size());
  header.starts = condition.starts.data();
  header.ends = condition.ends.data();
  return 1;
}

}  // namespace fakes
