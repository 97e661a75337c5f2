#include "workbench/page_dialogs.h"

#include <utility>

#include "host/run_ended.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

constexpr std::size_t kMostLogged = 20'000;

}  // namespace

void PageDialogs::begin() {
  const std::lock_guard lock(mutex_);
  log_ = maps_ = Json::array();
  question_ = nullptr;
  busy_ = ended_ = false;
}

void PageDialogs::requireGoesOn() const {
  if (ended_) throw host::RunEnded{host::kExitFailed, "Ended in the page."};
}

void PageDialogs::log(const std::string& text) {
  const std::lock_guard lock(mutex_);
  requireGoesOn();
  if (log_.size() == kMostLogged) log_.erase(0);
  log_.push_back(text);
  news_.publish({{"log", text}});
}

void PageDialogs::setBusy(bool busy) {
  const std::lock_guard lock(mutex_);
  requireGoesOn();
  if (std::exchange(busy_, busy) != busy) news_.publish({{"busy", busy}});
}

void PageDialogs::savedMaps(Json maps) {
  const std::lock_guard lock(mutex_);
  news_.publish({{"maps", maps}});
  maps_.push_back(std::move(maps));
}

std::optional<PageDialogs::Json> PageDialogs::ask(Json question, const Check& check) {
  std::unique_lock lock(mutex_);
  requireGoesOn();
  question["id"] = ++lastId_;
  question_ = std::move(question);
  check_ = check;
  isAnswered_ = false;
  news_.publish({{"question", question_}});
  answered_.wait(lock, [this] { return isAnswered_ || ended_; });
  question_ = nullptr;
  check_ = nullptr;
  news_.publish({{"question", nullptr}});
  requireGoesOn();
  return std::exchange(answer_, std::nullopt);
}

const PageDialogs::Json& PageDialogs::standingQuestion(const Json& body) const {
  const bool stands = !question_.is_null() && !isAnswered_ && !ended_ && body.contains("question") &&
                      body["question"] == question_["id"];
  if (!stands) throw Refusal(409, "This question does not stand any more. The page shows the present one.");
  return question_;
}

void PageDialogs::answer(const Json& body) {
  const std::lock_guard lock(mutex_);
  static_cast<void>(standingQuestion(body));
  const bool isCancelled = body.contains("cancel") && body["cancel"] == true;
  if (!isCancelled && !body.contains("answer"))
    throw Refusal(400, "\"answer\" is missing, and \"cancel\" too.");
  answer_ = isCancelled ? std::nullopt : std::optional(check_(body["answer"]));
  isAnswered_ = true;
  answered_.notify_all();
}

void PageDialogs::end() {
  const std::lock_guard lock(mutex_);
  ended_ = true;
  news_.publish({{"ending", true}});
  answered_.notify_all();
}

PageDialogs::Json PageDialogs::state() const {
  const std::lock_guard lock(mutex_);
  const bool stands = !isAnswered_ && !ended_;
  return {{"log", log_},
          {"question", stands ? question_ : Json()},
          {"busy", busy_},
          {"maps", maps_},
          {"ending", ended_}};
}

}  // namespace workbench
