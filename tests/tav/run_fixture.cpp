#include "tests/tav/run_fixture.h"

#include <cmath>

#include "simo/randomness.h"
#include "tests/support/scratch.h"

float Noise::uniform() {
  state_ = state_ * 1664525U + 1013904223U;
  return static_cast<float>((state_ >> 8) + 1) / 16777217.0F;
}

float Noise::operator()() {
  const float radius = std::sqrt(-2.0F * std::log(uniform()));
  return radius * std::cos(6.2831853F * uniform());
}

RunTest::RunTest() {
  simo::setTimeBase(4711);
}

RunTest::~RunTest() {
  simo::setTimeBase(std::nullopt);
}

std::string RunTest::writeVtc(const std::string& name, const fakes::VtcSpec& spec,
                              const VoxelFunction& value) const {
  std::vector<float> values;
  for (int z = 0; z < spec.dimZ(); ++z)
    for (int y = 0; y < spec.dimY(); ++y)
      for (int x = 0; x < spec.dimX(); ++x)
        for (int t = 0; t < spec.nrOfVolumes; ++t) values.push_back(value(x, y, z, t));
  fakes::writeVtc(folder.file(name), spec, values);
  return folder.file(name);
}

std::string RunTest::writeNoise(const std::string& name, const fakes::VtcSpec& spec, unsigned seed) const {
  Noise noise(seed);
  std::vector<float> driver(static_cast<std::size_t>(spec.nrOfVolumes)), state(driver.size());
  return writeVtc(name, spec, [&](int x, int, int, int t) {
    const auto now = static_cast<std::size_t>(t);
    const float past = t > 0 ? 0.5F * state[now - 1] : 0.0F;
    const float driven = x == 1 && t > 0 ? 0.8F * driver[now - 1] : 0.0F;
    state[now] = past + driven + noise();
    if (x == 0) driver[now] = state[now];
    return 1000.0F + 50.0F * state[now];
  });
}

tav::TAV_Pars RunTest::requestOn(const fakes::VtcSpec& spec) const {
  tav::TAV_Pars pars;
  pars.vtcXStart = spec.xStart;
  pars.vtcXEnd = spec.xEnd;
  pars.vtcYStart = spec.yStart;
  pars.vtcYEnd = spec.yEnd;
  pars.vtcZStart = spec.zStart;
  pars.vtcZEnd = spec.zEnd;
  pars.vtcResolution = spec.resolution;
  pars.vtcMaxNrOfVolumes = spec.nrOfVolumes;
  pars.nSurrogateSims = 20;
  pars.nDiscardedSimTps = 10;
  pars.showVerboseProgress = false;
  pars.resultPathPrefix = folder.file("maps");
  voiVoxels_ = {spec.xStart, spec.yStart, spec.zStart, spec.xStart, spec.yStart, spec.zEnd - spec.resolution};
  pars.vois.push_back({"seed", 0, 2, voiVoxels_.data(), 0});
  return pars;
}

tav::TAV_Pars RunTest::simpleRequest(const fakes::VtcSpec& spec) const {
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "rest", writeNoise("noise.vtc", spec, 1), {{1, spec.nrOfVolumes}});
  return pars;
}

void RunTest::addCondition(tav::TAV_Pars& pars, const std::string& name, const std::string& vtc,
                           std::vector<tav::TAV_intv> intervals) {
  pars.conds.push_back({name, {{vtc, vtc, std::move(intervals)}}});
}

std::string RunTest::savedLog(const std::string& voiName) const {
  return store.logs.at(folder.file("maps_" + voiName + ".log"));
}
