#include "workbench/explore.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "formats/file_error.h"
#include "request/problem.h"
#include "tav/at_once.h"
#include "workbench/exchange.h"
#include "workbench/explore_images.h"
#include "workbench/explore_words.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

const char* stateName(int state) {
  constexpr const char* kNames[] = {"none", "choosing", "loading", "ready", "failed"};
  return kNames[state];
}

}  // namespace

Explore::Explore(ExploreOptions options) : options_(std::move(options)) {
  try {
    choices_ = exploreChoices(options_.sources, options_.output);
  } catch (const std::exception& problem) {
    settle(State::kFailed, problem.what());
    return;
  }
  if (choices_.size() == 1)
    begin(choices_[0].request);
  else if (choices_.size() > 1)
    settle(State::kChoosing, "");
}

Explore::~Explore() {
  stop();
}

void Explore::stop() {
  const std::lock_guard one(beginning_);
  cancel_ = true;
  if (loader_.joinable()) loader_.join();
  if (const std::shared_ptr<Open> now = std::exchange(open_, nullptr)) now->latest.stop();
  events_.close();
}

Json Explore::state() const {
  std::unique_lock lock(mutex_);
  if (state_ == State::kReady) {
    const std::shared_ptr<Open> now = open_;
    lock.unlock();
    return studyJson(*now->study);
  }
  Json json{{"state", stateName(static_cast<int>(state_))}, {"message", message_}, {"progress", progress_}};
  if (state_ != State::kChoosing && choices_.size() < 2) return json;
  json["choices"] = Json::array();
  for (const ExploreChoice& choice : choices_)
    json["choices"].push_back({{"id", choice.id}, {"words", choice.words}});
  return json;
}

void Explore::open(const std::string& id) {
  const auto found =
      std::find_if(choices_.begin(), choices_.end(), [&](const ExploreChoice& one) { return one.id == id; });
  if (found == choices_.end()) throw Refusal(404, "there is nothing of this id to open; reload the page");
  begin(found->request);
}

// A loader that is called off comes back within the time of one run's import.
void Explore::begin(study::Request request) {
  const std::lock_guard one(beginning_);
  cancel_ = true;
  if (loader_.joinable()) loader_.join();
  cancel_ = false;
  {
    const std::lock_guard lock(mutex_);
    if (open_ != nullptr) open_->latest.stop();
    open_.reset();
    request_ = request;
    progress_ = 0;
  }
  settle(State::kLoading, "runs are looked at");
  loader_ = std::thread([this, request = std::move(request)] { load(request); });
}

void Explore::load(const study::Request& request) {
  live::LoadOptions options{
      options_.program, options_.version,
      options_.threads, options_.mostBytes,
      &cancel_,         [this](double progress, const std::string& words) { told(progress, words); }};
  try {
    auto opened = std::make_shared<Open>(live::loadStudy(request, options), options_.threads);
    opened->images = newImageFolder();
    settle(State::kReady, "", std::move(opened));
  } catch (const tav::Cancelled&) {  // whoever called it off says what comes instead
  } catch (const std::exception& problem) {
    settle(State::kFailed, problem.what());
  }
}

void Explore::told(double progress, const std::string& message) {
  {
    const std::lock_guard lock(mutex_);
    progress_ = progress;
    message_ = message;
  }
  publish();
}

void Explore::settle(State state, const std::string& message, std::shared_ptr<Open> opened) {
  {
    const std::lock_guard lock(mutex_);
    state_ = state;
    message_ = message;
    open_ = std::move(opened);
  }
  publish();
}

void Explore::publish() {
  Json event;
  {
    const std::lock_guard lock(mutex_);
    event = {{"state", stateName(static_cast<int>(state_))}, {"message", message_}, {"progress", progress_}};
  }
  events_.publish(event);
}

// Images of another study must not be taken for those of this one.
fs::path Explore::newImageFolder() {
  const std::lock_guard lock(mutex_);
  const fs::path folder =
      fs::path(request_.output.workFolder) / "workbench" / fmt::format("images-{}", ++opens_);
  fs::remove_all(folder);
  return folder;
}

std::shared_ptr<Explore::Open> Explore::opened() const {
  const std::lock_guard lock(mutex_);
  if (open_ == nullptr) throw Refusal(kConflict, "nothing is open to explore; open something first");
  return open_;
}

std::shared_ptr<const live::LoadedStudy> Explore::study() const {
  return opened()->study;
}

fs::path Explore::image(const std::string& name) const {
  const std::shared_ptr<Open> now = opened();
  return now->latest.whenFree([&] { return exploreImage(*now->study, name, now->images); });
}

}  // namespace workbench
