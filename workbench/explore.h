// Exploring: what is open, and answers to what a page asks about it. Any thread may call anything.
#ifndef TAVMAP_WORKBENCH_EXPLORE_H
#define TAVMAP_WORKBENCH_EXPLORE_H

#include <atomic>
#include <memory>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <thread>
#include <vector>

#include "live/engine.h"
#include "live/latest.h"
#include "workbench/event_hub.h"
#include "workbench/explore_requests.h"

namespace workbench {

struct ExploreOptions {
  ExploreSources sources;
  std::filesystem::path output;  // where results of saved requests go
  std::string program, version;  // of `tavmap`, which imports runs
  int threads = 1;
  std::size_t mostBytes = 0;  // of time series in memory
};

class Explore {
 public:
  // Opens what there is when it is one thing; of several the page chooses. What is wrong with the sources is
  // told by state().
  explicit Explore(ExploreOptions options);
  ~Explore();
  Explore(const Explore&) = delete;
  Explore& operator=(const Explore&) = delete;

  // What is open, or how far opening is.
  [[nodiscard]] nlohmann::ordered_json state() const;
  [[nodiscard]] EventHub& events() { return events_; }

  // Begins to open the choice with this id, instead of what is open. Throws Refusal 404.
  void open(const std::string& id);
  // Opens the same with other runs, confounds or censoring, if they differ; true when it does.
  bool change(const nlohmann::ordered_json& settings);

  // Of what is open; Refusal 409 when nothing is.
  [[nodiscard]] std::shared_ptr<const live::LoadedStudy> study() const;
  // Bytes as maps_reply.h says. Throws Refusal 400 for what cannot be asked, 409 when a newer one came.
  [[nodiscard]] std::string maps(const nlohmann::ordered_json& asked);
  // With a "reference" and what else maps are asked with, of those maps; without, of the last ones.
  [[nodiscard]] nlohmann::ordered_json voxel(const nlohmann::ordered_json& asked);
  // Writes what is asked for as a request into the work folder: {"path", "text"}.
  [[nodiscard]] nlohmann::ordered_json save(const nlohmann::ordered_json& asked);
  // The image's file in the work folder.
  [[nodiscard]] std::filesystem::path image(const std::string& name) const;

  // Ends opening and computing. Nothing is answered afterwards.
  void stop();

 private:
  enum class State { kNone, kChoosing, kLoading, kReady, kFailed };
  // What is open: an engine of its own, and the last full maps.
  struct Open {
    explicit Open(std::shared_ptr<const live::LoadedStudy> loaded, int threads)
        : study(std::move(loaded)), engine(study, threads) {}
    std::shared_ptr<const live::LoadedStudy> study;
    live::Engine engine;
    live::Latest latest;
    std::shared_ptr<const live::LiveMaps> shown;  // last ones; guarded by the turn
    std::filesystem::path images;
  };

  void begin(study::Request request);
  void load(const study::Request& request);
  void told(double progress, const std::string& message);
  void settle(State state, const std::string& message, std::shared_ptr<Open> opened = nullptr);
  void publish();
  [[nodiscard]] std::shared_ptr<Open> opened() const;
  [[nodiscard]] std::filesystem::path newImageFolder();

  ExploreOptions options_;
  std::vector<ExploreChoice> choices_;
  EventHub events_;
  mutable std::mutex mutex_;  // of what follows
  State state_ = State::kNone;
  std::string message_;
  double progress_ = 0;
  std::shared_ptr<Open> open_;
  study::Request request_;  // of what is open or being opened
  int opens_ = 0;
  std::mutex beginning_;  // one opens at a time
  std::atomic<bool> cancel_ = false;
  std::thread loader_;
};

}  // namespace workbench

#endif
