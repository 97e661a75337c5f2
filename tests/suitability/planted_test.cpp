// Problems put into data: at least 95 % of data sets get the warning that names them.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "direction/fourier.h"
#include "tests/suitability/simulated.h"

namespace {

using simulated::Run;
using simulated::Values;

constexpr unsigned kDataSets = 60;

Run plain(double a, double trSeconds, std::size_t n, unsigned seed) {
  return simulated::smoothField(a, trSeconds, n, seed);
}

// What becomes of power at hz; applied in both directions, so without delay.
void filter(Run& run, const std::function<double(double hz)>& gain) {
  const int n = static_cast<int>(run.length());
  direction::Fourier fourier(n);
  std::vector<std::complex<double>> spectrum;
  run.each([&](Values& values, std::size_t) {
    fourier.forward(values, spectrum);
    for (std::size_t k = 0; k < spectrum.size(); ++k)
      spectrum[k] *= std::sqrt(gain(static_cast<double>(k) / (n * run.trSeconds)));
    fourier.inverse(spectrum, values);
  });
}

void idealBandPass(Run& run, double low, double high) {
  filter(run, [=](double hz) { return hz >= low && hz <= high ? 1.0 : 0.0; });
}

// A filter of the given order in both directions.
void butterworth(Run& run, double edge, int order) {
  filter(run, [=](double hz) { return std::pow(1 + std::pow(hz / edge, 2 * order), -2); });
}

// Blocks seen through a response are nearly a sine. In the reference and in every second voxel.
void addBlocks(Run& run, double period, double amplitude) {
  run.each([&](Values& values, std::size_t number) {
    if (number % 2 == 1) return;
    for (std::size_t t = 0; t < values.size(); ++t)
      values[t] +=
          amplitude * std::sin(2 * std::numbers::pi * static_cast<double>(t) * run.trSeconds / period + 1);
  });
}

void addSpike(Run& run, std::size_t volume, double height) {
  run.each([&](Values& values, std::size_t number) {
    if (number % 3 == 0) values[volume] += number % 2 == 0 ? height : -height;
  });
}

void addTransient(Run& run, double height, double t1Seconds) {
  run.each([&](Values& values, std::size_t) {
    for (std::size_t t = 0; t < 20; ++t)
      values[t] += height * std::exp(-static_cast<double>(t) * run.trSeconds / t1Seconds);
  });
}

// One and a half slow waves over the run, of a size that differs between voxels.
void addDrift(Run& run, double amplitude) {
  run.each([&](Values& values, std::size_t number) {
    const double size = amplitude * (1 + 0.02 * static_cast<double>(number));
    for (std::size_t t = 0; t < values.size(); ++t)
      values[t] +=
          size * std::cos(3 * std::numbers::pi * static_cast<double>(t) / static_cast<double>(values.size()));
  });
}

// Up by so much over the run.
void addTrend(Run& run, double height) {
  run.each([&](Values& values, std::size_t) {
    for (std::size_t t = 0; t < values.size(); ++t)
      values[t] += height * static_cast<double>(t) / static_cast<double>(values.size());
  });
}

void addNoise(Values& values, double sd, unsigned seed) {
  std::mt19937 random(seed);
  const Values noise = simulated::white(values.size(), random);
  for (std::size_t t = 0; t < values.size(); ++t) values[t] += sd * noise[t];
}

struct Planted {
  const char* name;
  std::function<Run(unsigned seed)> make;
  std::string words;
};

std::ostream& operator<<(std::ostream& out, const Planted& planted) {
  return out << planted.name;
}

class PlantedProblems : public ::testing::TestWithParam<Planted> {};

TEST_P(PlantedProblems, AreFound) {
  int found = 0;
  for (unsigned seed = 0; seed < kDataSets; ++seed) {
    const std::vector<std::string> warnings = simulated::warningsOf(GetParam().make(seed + 500));
    if (simulated::anyContains(warnings, GetParam().words)) ++found;
  }
  RecordProperty("found", found);
  EXPECT_GE(found, std::ceil(0.95 * kDataSets));
}

// A run of which something is changed.
template <class Change>
std::function<Run(unsigned)> with(double a, double trSeconds, std::size_t n, Change change) {
  return [=](unsigned seed) {
    Run run = plain(a, trSeconds, n, seed);
    change(run, seed);
    return run;
  };
}

const std::vector<Planted> kFilters = {
    {"band-pass 0.01-0.1 Hz", with(0.6, 2, 300, [](Run& r, unsigned) { idealBandPass(r, 0.01, 0.1); }),
     "almost nothing below 0.0067 Hz and above 0.1 Hz"},
    {"band-pass, short run", with(0.3, 2, 100, [](Run& r, unsigned) { idealBandPass(r, 0.01, 0.1); }),
     "above 0.11 Hz"},
    {"band-pass, fast", with(0.6, 0.7, 600, [](Run& r, unsigned) { idealBandPass(r, 0.008, 0.09); }),
     "above 0.093 Hz"},
    {"low-pass, Butterworth 5", with(0.6, 2, 200, [](Run& r, unsigned) { butterworth(r, 0.1, 5); }),
     "it was filtered in time"},
    {"low-pass, Butterworth 3, fast", with(0.9, 0.7, 900, [](Run& r, unsigned) { butterworth(r, 0.08, 3); }),
     "it was filtered in time"},
    {"high-pass", with(0.9, 2, 300, [](Run& r, unsigned) { idealBandPass(r, 0.01, 1); }),
     "almost nothing below 0.0067 Hz:"},
};
INSTANTIATE_TEST_SUITE_P(Filters, PlantedProblems, ::testing::ValuesIn(kFilters));

const std::vector<Planted> kArtefacts = {
    {"two spikes", with(0.6, 2, 200, [](Run& r, unsigned) { addSpike(r, 70, 12), addSpike(r, 140, 12); }),
     "jump at once at 2 volumes (71, 141)"},
    {"one spike, long run", with(0.9, 0.7, 1200, [](Run& r, unsigned) { addSpike(r, 400, 15); }),
     "jump at once at 1 volume (401)"},
    {"transient", with(0.3, 2, 150, [](Run& r, unsigned) { addTransient(r, 40, 1.3); }),
     "set drop_volumes = "},
    {"transient, fast", with(0.9, 0.7, 400, [](Run& r, unsigned) { addTransient(r, 80, 1.3); }),
     "set drop_volumes = "},
    {"trend of a raw run", with(0.3, 2, 150, [](Run& r, unsigned) { addTrend(r, 40); }),
     "set high_pass = 128"},
    {"drift", with(0.3, 2, 250, [](Run& r, unsigned) { addDrift(r, 4); }), "lies below 0.008 Hz"},
    {"drift, fast", with(0.6, 0.7, 900, [](Run& r, unsigned) { addDrift(r, 6); }), "lies below 0.008 Hz"},
};
INSTANTIATE_TEST_SUITE_P(Artefacts, PlantedProblems, ::testing::ValuesIn(kArtefacts));

const std::vector<Planted> kDesigns = {
    {"blocks of 20 s", with(0.3, 2, 200, [](Run& r, unsigned) { addBlocks(r, 40, 3); }), "share a period of"},
    {"blocks of 15 s, short run", with(0.6, 2, 100, [](Run& r, unsigned) { addBlocks(r, 30, 7); }),
     "share a period of"},
    {"blocks of 30 s, fast", with(0.9, 0.7, 800, [](Run& r, unsigned) { addBlocks(r, 60, 12); }),
     "share a period of"},
};
INSTANTIATE_TEST_SUITE_P(Designs, PlantedProblems, ::testing::ValuesIn(kDesigns));

const std::vector<Planted> kNoise = {
    {"noisy reference", with(0.8, 2, 200, [](Run& r, unsigned seed) { addNoise(r.reference, 4, seed); }),
     "the reference is noisier than the voxels"},
    {"noisy voxels",
     with(0.9, 2, 200,
          [](Run& r, unsigned seed) {
            for (Values& voxel : r.voxels) addNoise(voxel, 8, ++seed * 77);
          }),
     "the reference is much cleaner than the voxels"},
    {"second order",
     [](unsigned seed) {
       Run run = plain(0.6, 2, 300, seed);
       std::mt19937 random(seed);
       const Values e = simulated::white(run.length(), random);
       for (std::size_t t = 2; t < e.size(); ++t)
         run.reference[t] = 0.4 * run.reference[t - 1] - 0.5 * run.reference[t - 2] + e[t];
       return run;
     },
     "not white"},
};
INSTANTIATE_TEST_SUITE_P(Noise, PlantedProblems, ::testing::ValuesIn(kNoise));

}  // namespace
