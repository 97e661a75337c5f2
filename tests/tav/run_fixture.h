// A small data set, a store and a request, for tests of the engine's steps and whole runs.
#ifndef TAVMAP_TESTS_TAV_RUN_FIXTURE_H
#define TAVMAP_TESTS_TAV_RUN_FIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tav/tav.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"
#include "tests/tav/recording_store.h"

// The value of one voxel at one volume (both from 0).
using VoxelFunction = std::function<float(int x, int y, int z, int t)>;

class RunTest : public ::testing::Test {
 protected:
  RunTest();
  ~RunTest() override;

  // Writes a VTC into the test's folder and returns its path.
  std::string writeVtc(const std::string& name, const fakes::VtcSpec& spec, const VoxelFunction& value) const;
  // Autoregressive voxels around 1,000; the voxels with x = 0 drive those with x = 1.
  std::string writeNoise(const std::string& name, const fakes::VtcSpec& spec, unsigned seed) const;

  // A request on the grid of `spec`: one reference and no conditions yet. The reference
  // is the mean of the first voxel of the first slice and that of the last, so that with several
  // slices no voxel equals it. The voxels belong to the fixture: one request at a time.
  [[nodiscard]] tav::TAV_Pars requestOn(const fakes::VtcSpec& spec) const;
  // A request with one condition over all volumes of one new noise file.
  [[nodiscard]] tav::TAV_Pars simpleRequest(const fakes::VtcSpec& spec) const;
  static void addCondition(tav::TAV_Pars& pars, const std::string& name, const std::string& vtc,
                           std::vector<tav::TAV_intv> intervals);
  [[nodiscard]] std::string savedLog(const std::string& voiName) const;

  Scratch folder;
  RecordingStore store;
  Listener listener;
  std::ostringstream errors;

 private:
  mutable std::vector<std::int32_t> voiVoxels_;
};

// Deterministic normal noise, independent of the generator under test.
class Noise {
 public:
  explicit Noise(unsigned seed) : state_(seed * 2654435761U + 12345U) {}
  float operator()();

 private:
  float uniform();
  unsigned state_;
};

#endif
