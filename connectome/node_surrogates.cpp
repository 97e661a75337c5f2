#include "connectome/node_surrogates.h"

#include "simo/random_stream.h"

namespace connectome {

NodeSurrogates::NodeSurrogates(const NodeSeries& series, std::size_t draws, std::uint32_t seed)
    : series_(series) {
  simo::RandomStream ofRuns(seed);
  for (const SeriesRun& run : series.runs) {
    seeds_.emplace_back();
    simo::RandomStream random(static_cast<unsigned>(ofRuns.next()));
    for (std::size_t i = 0; i < draws; ++i) seeds_.back().push_back(static_cast<unsigned>(random.next()));
    treatments_.push_back(run.treatment ? run.treatment() : Treatment());
    drawn_.emplace_back(static_cast<std::size_t>(run.volumes));
  }
  for (const auto& values : drawn_) course_.push_back(values.data());
}

bool NodeSurrogates::begin(std::size_t node) {
  models_.clear();
  const std::vector<const float*> course = series_.courseOf(node);
  for (std::size_t run = 0; run < series_.runs.size(); ++run) {
    const SeriesRun& of = series_.runs[run];
    models_.emplace_back(std::span(course[run], static_cast<std::size_t>(of.volumes)), of.known);
    if (!models_.back().isDefined()) return false;
  }
  return true;
}

const std::vector<const float*>& NodeSurrogates::draw(std::size_t index) {
  for (std::size_t run = 0; run < models_.size(); ++run) {
    simo::RandomStream random(seeds_[run][index]);
    models_[run].draw(random, drawn_[run]);
    if (treatments_[run]) treatments_[run](drawn_[run].data());
  }
  return course_;
}

}  // namespace connectome
