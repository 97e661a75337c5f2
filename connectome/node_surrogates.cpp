#include "connectome/node_surrogates.h"

#include <array>

#include "simo/random_stream.h"

namespace connectome {

NodeSurrogates::NodeSurrogates(const NodeSeries& series, std::size_t draws, std::uint32_t seed)
    : series_(series), course_(series.runs.size()) {
  const std::size_t blocks = (draws + kTogether - 1) / kTogether;
  simo::RandomStream ofRuns(seed);
  for (const SeriesRun& run : series.runs) {
    seeds_.emplace_back();
    simo::RandomStream random(static_cast<unsigned>(ofRuns.next()));
    for (std::size_t i = 0; i < blocks * kTogether; ++i)
      seeds_.back().push_back(static_cast<unsigned>(random.next()));
    treatments_.push_back(run.treatment ? run.treatment() : Treatment());
    drawn_.emplace_back(kTogether * static_cast<std::size_t>(run.volumes));
  }
}

bool NodeSurrogates::begin(std::size_t node) {
  models_.clear();
  block_.reset();
  const std::vector<const float*> course = series_.courseOf(node);
  for (std::size_t run = 0; run < series_.runs.size(); ++run) {
    const SeriesRun& of = series_.runs[run];
    models_.emplace_back(std::span(course[run], static_cast<std::size_t>(of.volumes)), of.known);
    if (!models_.back().isDefined()) return false;
  }
  return true;
}

void NodeSurrogates::drawBlock(std::size_t block) {
  block_ = block;
  for (std::size_t run = 0; run < models_.size(); ++run) {
    std::array<simo::RandomStream, kTogether> random;
    for (std::size_t i = 0; i < kTogether; ++i) random[i].seed(seeds_[run][block * kTogether + i]);
    models_[run].drawTogether(random, drawn_[run]);
    const auto volumes = static_cast<std::size_t>(series_.runs[run].volumes);
    for (std::size_t i = 0; treatments_[run] && i < kTogether; ++i)
      treatments_[run](drawn_[run].data() + i * volumes);
  }
}

const std::vector<const float*>& NodeSurrogates::draw(std::size_t index) {
  if (block_ != index / kTogether) drawBlock(index / kTogether);
  for (std::size_t run = 0; run < course_.size(); ++run)
    course_[run] =
        drawn_[run].data() + index % kTogether * static_cast<std::size_t>(series_.runs[run].volumes);
  return course_;
}

}  // namespace connectome
