#include "tav/loaded_vtc.h"

#include <atomic>
#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>

#include "tav/at_once.h"
#include "tests/tav/run_fixture.h"

using ::testing::HasSubstr;

namespace {

class LoadedVtc : public RunTest {
 protected:
  // Whole numbers, but for the value at `index`.
  std::shared_ptr<const tav::LoadedVtc> loadedWith(std::size_t index, float value) {
    std::vector<float> values(spec.nrOfVoxels() * static_cast<std::size_t>(spec.nrOfVolumes));
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i * 7 % 65536);
    values.at(index) = value;
    fakes::writeVtc(folder.file("a.vtc"), spec, values);
    auto vtc = tav::LoadedVtc::read(folder.file("a.vtc"), errors);
    if (vtc == nullptr) return vtc;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const float loaded = vtc->floats() != nullptr ? vtc->floats()[i] : static_cast<float>(vtc->shorts()[i]);
      EXPECT_EQ(std::bit_cast<std::uint32_t>(loaded), std::bit_cast<std::uint32_t>(values[i])) << i;
      if (::testing::Test::HasFailure()) break;
    }
    return vtc;
  }
  static fakes::VtcSpec floats(fakes::VtcSpec spec) {
    spec.dataType = 2;
    return spec;
  }
  // Of a run over the file, either opened or in memory.
  std::vector<RecordingStore::Map> mapsOf(const tav::TAV_Pars& pars,
                                          std::shared_ptr<const tav::LoadedVtc> vtc) {
    tav::RunOptions options;
    options.fitForm = tav::FitForm::kLeastSquares;
    options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
    options.thresholdRule = tav::ThresholdRule::kStepUp;
    options.nullDraws = 3;
    options.timeBase = 5;
    if (vtc != nullptr) options.loadedVtcs[pars.conds[0].vtcIntvSets[0].srcVtcName] = std::move(vtc);
    RecordingStore maps;
    tav::Computer computer(options, &listener, &maps);
    EXPECT_EQ(computer.computeTAVs(pars, errors), tav::kSuccess) << errors.str();
    return maps.saved.empty() ? std::vector<RecordingStore::Map>{} : maps.saved[0].maps;
  }

  fakes::VtcSpec spec = floats(fakes::cellGrid(7, 6, 5, 40));
};

TEST_F(LoadedVtc, KeepsWholeNumbersInHalfOfTheMemory) {
  for (const float value : {0.0F, 1.0F, 65535.0F}) {
    const auto vtc = loadedWith(17, value);
    ASSERT_NE(vtc, nullptr) << errors.str();
    EXPECT_EQ(vtc->floats(), nullptr);
    EXPECT_NE(vtc->header().dataType, kVtcFloatData);
    EXPECT_EQ(vtc->bytes(), spec.nrOfVoxels() * 40 * 2);
  }
}

TEST_F(LoadedVtc, KeepsFloatsWhenAnyValueIsNoWholeNumber) {
  for (const float value : {0.5F, -1.0F, -0.0F, 65536.0F, 65535.5F, std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity()}) {
    const auto vtc = loadedWith(17, value);
    ASSERT_NE(vtc, nullptr) << errors.str();
    EXPECT_EQ(vtc->shorts(), nullptr) << value;
    EXPECT_EQ(vtc->header().dataType, kVtcFloatData);
    EXPECT_EQ(vtc->bytes(), spec.nrOfVoxels() * 40 * 4);
  }
}

// The file is read in parts of four megabytes.
TEST_F(LoadedVtc, KeepsFloatsWhenTheFirstOtherValueComesLate) {
  spec = floats(fakes::cellGrid(30, 30, 30, 90));
  const std::size_t last = spec.nrOfVoxels() * 90 - 1;
  ASSERT_GT(last * sizeof(float), std::size_t{9} << 20U);
  for (const std::size_t index : {last, last / 2}) {
    const auto vtc = loadedWith(index, 0.25F);
    ASSERT_NE(vtc, nullptr) << errors.str();
    EXPECT_NE(vtc->floats(), nullptr);
  }
  EXPECT_NE(loadedWith(last, 3.0F)->shorts(), nullptr);
}

TEST_F(LoadedVtc, GivesTheMapsOfTheFileWhetherWholeNumbersOrNot) {
  for (const bool isWhole : {true, false}) {
    Noise noise(3);
    const std::string path = writeVtc(isWhole ? "whole.vtc" : "not.vtc", spec, [&](int, int, int, int) {
      const float value = 1000.0F + 50.0F * noise();
      return isWhole ? std::round(value) : value;
    });
    tav::TAV_Pars pars = requestOn(spec);
    addCondition(pars, "rest", path, {{1, 40}});
    const auto vtc = tav::LoadedVtc::read(path, errors);
    ASSERT_NE(vtc, nullptr) << errors.str();
    EXPECT_EQ(vtc->floats() == nullptr, isWhole);
    const auto opened = mapsOf(pars, nullptr), loaded = mapsOf(pars, vtc);
    ASSERT_FALSE(opened.empty());
    ASSERT_EQ(opened.size(), loaded.size());
    for (std::size_t map = 0; map < opened.size(); ++map) {
      EXPECT_EQ(opened[map].values, loaded[map].values) << map;
      EXPECT_EQ(opened[map].header.thresholds, loaded[map].header.thresholds) << map;
    }
  }
}

TEST_F(LoadedVtc, RefusesAFileThatEndsEarly) {
  ASSERT_NE(loadedWith(0, 1.0F), nullptr);
  const std::string path = folder.file("a.vtc");
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
  EXPECT_EQ(tav::LoadedVtc::read(path, errors), nullptr);
  EXPECT_THAT(errors.str(), HasSubstr("shorter than its header says"));
}

TEST_F(LoadedVtc, StopsWhenItIsCalledOff) {
  ASSERT_NE(loadedWith(0, 1.0F), nullptr);
  const std::atomic<bool> cancel = true;
  EXPECT_THROW(static_cast<void>(tav::LoadedVtc::read(folder.file("a.vtc"), errors, &cancel)),
               tav::Cancelled);
}

}  // namespace
