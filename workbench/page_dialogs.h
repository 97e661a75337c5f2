// Between a plug-in, which asks and waits, and pages, which come and go: the log so far, the question that
// stands, and its answer. Any thread may call.
#ifndef TAVMAP_WORKBENCH_PAGE_DIALOGS_H
#define TAVMAP_WORKBENCH_PAGE_DIALOGS_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "workbench/event_hub.h"

namespace workbench {

class PageDialogs {
 public:
  using Json = nlohmann::ordered_json;
  // Turns what a page answered into the value for the plug-in. Throws Refusal 400 for one that the question
  // does not take: the question then stands.
  using Check = std::function<Json(const Json&)>;

  // Borrows it: every change is published there.
  explicit PageDialogs(EventHub& news) : news_(news) {}

  // A new session: nothing is logged, nothing asked.
  void begin();

  // The plug-in's side. Each throws host::RunEnded once end() was called.
  void log(const std::string& text);
  void setBusy(bool busy);
  void savedMaps(Json maps);  // {"path", "place": {"folder", "path"}, "pictures": [places], "problem"}
  // Shows the question and waits for its answer, however long; none: cancelled.
  [[nodiscard]] std::optional<Json> ask(Json question, const Check& check);

  // The pages' side. {"question": id, "answer": value} or {"question": id, "cancel": true}. Throws Refusal
  // 409 when that question does not stand (any more), 400 for a bad answer.
  void answer(const Json& body);
  // Ends the session at its next call: a plug-in that computes has none, and the host has no other way to
  // tell it.
  void end();
  // {"log", "question" or null, "busy", "maps", "ending": whether end() was called}
  [[nodiscard]] Json state() const;

 private:
  void requireGoesOn() const;
  [[nodiscard]] const Json& standingQuestion(const Json& body) const;

  EventHub& news_;
  mutable std::mutex mutex_;
  std::condition_variable answered_;
  Json log_ = Json::array(), maps_ = Json::array();
  Json question_;  // null: none stands
  Check check_;
  std::optional<Json> answer_;
  bool isAnswered_ = false, busy_ = false, ended_ = false;
  int lastId_ = 0;  // never used again, over sessions: a page that was away must not answer another question
};

}  // namespace workbench

#endif
