// The settings file that is installed beside the plug-in.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tav/ini_file.h"

namespace {

constexpr const char* kSample = TAVMAP_PLUGIN_SOURCE_DIR "/TAVPlugin.ini";

// Values that differ from every default, so that a key missing from the sample shows.
tav::TAV_Pars farFromDefaults() {
  tav::TAV_Pars pars;
  pars.mapTypes = {tav::INST};
  pars.qThresholds = {0.5F};
  pars.cvConstant = 1;
  pars.arOrder = 20;
  pars.firstTpInclThres = 1;
  pars.showVerboseProgress = false;
  pars.nSurrogateSims = 11;
  pars.nDiscardedSimTps = 11;
  pars.instLowerThres = 0.5F;
  pars.rcUpperThres = 0.5F;
  pars.separateSrcTrgVtcs = true;
  pars.mapScaleFactor = 5.0F;
  return pars;
}

TEST(SampleSettings, SetsEveryKeyToItsDefault) {
  std::ifstream file(kSample);
  ASSERT_TRUE(file) << kSample;
  tav::TAV_Pars pars = farFromDefaults();
  std::ostringstream errors;
  ASSERT_TRUE(tav::loadINIFile(file, pars, errors)) << errors.str();
  const tav::TAV_Pars defaults;
  EXPECT_EQ(pars.mapTypes, defaults.mapTypes);
  EXPECT_EQ(pars.qThresholds, defaults.qThresholds);
  EXPECT_EQ(pars.cvConstant, defaults.cvConstant);
  EXPECT_EQ(pars.arOrder, defaults.arOrder);
  EXPECT_EQ(pars.firstTpInclThres, defaults.firstTpInclThres);
  EXPECT_EQ(pars.showVerboseProgress, defaults.showVerboseProgress);
  EXPECT_EQ(pars.nSurrogateSims, defaults.nSurrogateSims);
  EXPECT_EQ(pars.nDiscardedSimTps, defaults.nDiscardedSimTps);
  EXPECT_EQ(pars.instLowerThres, defaults.instLowerThres);
  EXPECT_EQ(pars.rcUpperThres, defaults.rcUpperThres);
  EXPECT_EQ(pars.separateSrcTrgVtcs, defaults.separateSrcTrgVtcs);
  EXPECT_EQ(pars.mapScaleFactor, defaults.mapScaleFactor);
}

TEST(SampleSettings, ExplainsEverySetting) {
  std::ifstream file(kSample);
  std::string previous;
  std::string line;
  int settings = 0;
  while (std::getline(file, line)) {
    EXPECT_LE(line.size(), 255U) << line;
    if (!line.empty() && line.rfind("//", 0) != 0) {
      EXPECT_EQ(previous.rfind("// ", 0), 0U) << "no comment above: " << line;
      ++settings;
    }
    previous = line;
  }
  EXPECT_EQ(settings, 12);
}

}  // namespace
