#include "tav/ini_file.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

struct Loaded {
  explicit Loaded(const std::string& text) {
    std::istringstream file(text);
    ok = tav::loadINIFile(file, pars, err);
  }
  tav::TAV_Pars pars;
  std::ostringstream err;
  bool ok;
};

// The message with which a text is refused; empty when it is accepted.
std::string refusal(const std::string& text) {
  const Loaded loaded(text);
  EXPECT_EQ(loaded.ok, loaded.err.str().empty());
  return loaded.err.str();
}

}  // namespace

TEST(IniFile, EmptyFilesAndCommentsChangeNothing) {
  for (const char* const text :
       {"", "\n", "\n\n  \t\n// AutoRegressionOrder= 3\n//\n  // x", "//x\r\n\r\n"}) {
    const Loaded loaded(text);
    EXPECT_TRUE(loaded.ok) << text;
    EXPECT_EQ(loaded.pars.arOrder, 1);
    EXPECT_EQ(loaded.err.str(), "");
  }
}

TEST(IniFile, ABlankLineForgetsTheKeyBefore) {
  EXPECT_TRUE(Loaded("QThresholdsForFDR= 0.1\n\nAutoRegressionOrder= 2\n").ok);
}

TEST(IniFile, ReadsEveryKey) {
  const Loaded loaded(
      "MapTypesComputed= DTAV REF2VOX\nQThresholdsForFDR= 0.2\nCVConstantForFDR= 1\nAutoRegressionOrder= 20\n"
      "FirstTimePointInclusionThres= 0\nShowVerboseProgressLog= 0\nNumSurrogateSimulations= 10000\n"
      "NumDiscardedSimulatedTimePoints= 10\nDTAV_ITInstLowerThres= 0.25\nDTAV_RCUpperThres= 0\n"
      "MapScaleFactor= 2.5\nSeparateSourceTargetVTCs= 1");
  ASSERT_TRUE(loaded.ok) << loaded.err.str();
  EXPECT_EQ(loaded.pars.mapTypes, (std::set<tav::MapType>{tav::REF2VOX, tav::DTAV}));
  EXPECT_EQ(loaded.pars.qThresholds, (std::vector<float>{0.2F}));
  EXPECT_EQ(loaded.pars.cvConstant, 1);
  EXPECT_EQ(loaded.pars.arOrder, 20);
  EXPECT_EQ(loaded.pars.firstTpInclThres, 0);
  EXPECT_FALSE(loaded.pars.showVerboseProgress);
  EXPECT_EQ(loaded.pars.nSurrogateSims, 10000);
  EXPECT_EQ(loaded.pars.nDiscardedSimTps, 10);
  EXPECT_EQ(loaded.pars.instLowerThres, 0.25F);
  EXPECT_EQ(loaded.pars.rcUpperThres, 0.0F);
  EXPECT_EQ(loaded.pars.mapScaleFactor, 2.5F);
  EXPECT_TRUE(loaded.pars.separateSrcTrgVtcs);
}

TEST(IniFile, MapTypesAreASet) {
  EXPECT_EQ(Loaded("MapTypesComputed= INST INST DTAV").pars.mapTypes,
            (std::set<tav::MapType>{tav::INST, tav::DTAV}));
}

TEST(IniFile, MapTypeKeyAloneFailsWithItself) {
  EXPECT_EQ(refusal("MapTypesComputed="),
            "Unknown type-string for 'MapTypesComputed=' in TAVPlugin.ini: 'MapTypesComputed='");
}

TEST(IniFile, MapTypesAreCaseSensitive) {
  EXPECT_EQ(refusal("MapTypesComputed= inst"),
            "Unknown type-string for 'MapTypesComputed=' in TAVPlugin.ini: 'inst'");
}

TEST(IniFile, QValuesKeepOrderAndDuplicates) {
  EXPECT_EQ(Loaded("QThresholdsForFDR= 0.05 0.01 0.05").pars.qThresholds,
            (std::vector<float>{0.05F, 0.01F, 0.05F}));
}

TEST(IniFile, CommentBehindQValuesIsAnItem) {
  EXPECT_EQ(refusal("QThresholdsForFDR= 0.05 // note"),
            "Invalid entry for 'QThresholdsForFDR=' in TAVPlugin.ini: '//'");
}

TEST(IniFile, QValuesLieBetween0And1) {
  EXPECT_EQ(refusal("QThresholdsForFDR= 0.05 0"),
            "Invalid q-value for 'QThresholdsForFDR=' in TAVPlugin.ini: 0");
  EXPECT_EQ(refusal("QThresholdsForFDR= 1.5"),
            "Invalid q-value for 'QThresholdsForFDR=' in TAVPlugin.ini: 1.5");
  EXPECT_EQ(refusal("QThresholdsForFDR= 1"), "Invalid q-value for 'QThresholdsForFDR=' in TAVPlugin.ini: 1");
}

TEST(IniFile, QValueKeyAloneFails) {
  EXPECT_EQ(refusal("QThresholdsForFDR="),
            "No valid q-values for 'QThresholdsForFDR=' found in TAVPlugin.ini");
}

TEST(IniFile, ScalarsOutsideTheirRangeFail) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"CVConstantForFDR= 3", "Invalid value for 'CVConstantForFDR=' in TAVPlugin.ini: 3 (must be 1 or 2)"},
      {"CVConstantForFDR= 0", "Invalid value for 'CVConstantForFDR=' in TAVPlugin.ini: 0 (must be 1 or 2)"},
      {"AutoRegressionOrder= 21",
       "Invalid value for 'AutoRegressionOrder=' in TAVPlugin.ini: 21 (valid range 1 - 20)"},
      {"AutoRegressionOrder= 0",
       "Invalid value for 'AutoRegressionOrder=' in TAVPlugin.ini: 0 (valid range 1 - 20)"},
      {"FirstTimePointInclusionThres= -1",
       "Invalid value for 'FirstTimePointInclusionThres=' in TAVPlugin.ini: -1 (must be >= 0)"},
      {"ShowVerboseProgressLog= 2",
       "Invalid value for 'ShowVerboseProgressLog=' in TAVPlugin.ini: 2 (must be 0 or 1)"},
      {"NumSurrogateSimulations= 9",
       "Invalid value for 'NumSurrogateSimulations=' in TAVPlugin.ini: 9 (valid range 10 - 10000)"},
      {"NumDiscardedSimulatedTimePoints= 1001",
       "Invalid value for 'NumDiscardedSimulatedTimePoints=' in TAVPlugin.ini: 1001 (valid range 10 - 1000)"},
      {"DTAV_ITInstLowerThres= -0.5",
       "Invalid value for 'DTAV_ITInstLowerThres=' in TAVPlugin.ini: -0.5 (must be >0, high values not "
       "recommended)"},
      {"DTAV_RCUpperThres= 1",
       "Invalid value for 'DTAV_RCUpperThres=' in TAVPlugin.ini: 1 (valid range [0, 1) )"},
      {"MapScaleFactor= 1000.5",
       "Invalid value for 'MapScaleFactor=' in TAVPlugin.ini: 1000.5 (must be bewteen 0.01 and 1000, "
       "inclusive)"},
      {"SeparateSourceTargetVTCs= -1",
       "Invalid value for 'SeparateSourceTargetVTCs=' in TAVPlugin.ini: -1 (must be 0 or 1)"}};
  for (const auto& [line, message] : cases) EXPECT_EQ(refusal(line), message);
}

TEST(IniFile, BoundsThatAreAccepted) {
  EXPECT_TRUE(Loaded("DTAV_ITInstLowerThres= 0").ok);
  EXPECT_TRUE(Loaded("MapScaleFactor= 1000").ok);
  EXPECT_TRUE(Loaded("NumSurrogateSimulations= 10").ok);
  EXPECT_TRUE(Loaded("NumDiscardedSimulatedTimePoints= 1000").ok);
}

TEST(IniFile, LowestScaleFactorIsLostToItsRounding) {
  EXPECT_EQ(refusal("MapScaleFactor= 0.01"),
            "Invalid value for 'MapScaleFactor=' in TAVPlugin.ini: 0.01 (must be bewteen 0.01 and 1000, "
            "inclusive)");
  EXPECT_TRUE(Loaded("MapScaleFactor= 0.011").ok);
}

TEST(IniFile, InclusionThresholdWrapsAt16Bits) {
  const Loaded loaded("FirstTimePointInclusionThres= 70000");
  EXPECT_TRUE(loaded.ok);
  EXPECT_EQ(loaded.pars.firstTpInclThres, 4464);
}

TEST(IniFile, KeyWithoutBlankIsUnknown) {
  EXPECT_EQ(refusal("MapScaleFactor=50"), "Unknown entry in TAVPlugin.ini: 'MapScaleFactor=50'");
  EXPECT_EQ(refusal("autoregressionorder= 2"), "Unknown entry in TAVPlugin.ini: 'autoregressionorder='");
}

TEST(IniFile, LinesBeforeTheFirstErrorStay) {
  const Loaded loaded(
      "AutoRegressionOrder= 3\nCVConstantForFDR= 1\nNumSurrogateSimulations= 5\nMapScaleFactor= 7\n");
  EXPECT_FALSE(loaded.ok);
  EXPECT_EQ(loaded.pars.arOrder, 3);
  EXPECT_EQ(loaded.pars.cvConstant, 1);
  EXPECT_EQ(loaded.pars.nSurrogateSims, 1000);
  EXPECT_EQ(loaded.pars.mapScaleFactor, 100.0F) << "lines after the error are not read";
}

TEST(IniFile, MissingValueSeesTheOneBefore) {
  EXPECT_EQ(refusal("AutoRegressionOrder= 3\nNumSurrogateSimulations=\n"),
            "Invalid value for 'NumSurrogateSimulations=' in TAVPlugin.ini: 3 (valid range 10 - 10000)");
  EXPECT_EQ(refusal("QThresholdsForFDR= 0.1\nNumSurrogateSimulations=\n"),
            "No valid entry for 'NumSurrogateSimulations=' found in TAVPlugin.ini");
  EXPECT_EQ(refusal("CVConstantForFDR=\n"), "No valid entry for 'CVConstantForFDR=' found in TAVPlugin.ini");
}

TEST(IniFile, QValueKeyAloneSeesTheScalarBefore) {
  EXPECT_EQ(Loaded("MapScaleFactor= 0.5\nQThresholdsForFDR=\n").pars.qThresholds, (std::vector<float>{0.5F}));
}

TEST(IniFile, ValuesThatAreNoNumbersFail) {
  EXPECT_EQ(refusal("AutoRegressionOrder= two"),
            "Invalid entry for 'AutoRegressionOrder=' in TAVPlugin.ini: two");
  EXPECT_EQ(refusal("CVConstantForFDR= x"), "Invalid entry for 'CVConstantForFDR=' in TAVPlugin.ini: 'x'");
  EXPECT_EQ(refusal("NumSurrogateSimulations= 99999999999"),
            "Invalid entry for 'NumSurrogateSimulations=' in TAVPlugin.ini: 99999999999");
}

TEST(IniFile, NumericBeginningsAreEnough) {
  EXPECT_EQ(Loaded("AutoRegressionOrder= 12abc").pars.arOrder, 12);
  EXPECT_EQ(Loaded("AutoRegressionOrder= 2.7").pars.arOrder, 2);
  EXPECT_EQ(Loaded("AutoRegressionOrder= 4 5 6").pars.arOrder, 4) << "only the second token counts";
}

TEST(IniFile, CarriageReturnsAreBlanks) {
  const Loaded loaded("AutoRegressionOrder= 5\r\n\r\nMapTypesComputed= INST\r\n");
  EXPECT_TRUE(loaded.ok);
  EXPECT_EQ(loaded.pars.arOrder, 5);
  EXPECT_EQ(loaded.pars.mapTypes, (std::set<tav::MapType>{tav::INST}));
}

TEST(IniFile, LastOccurrenceWins) {
  EXPECT_EQ(Loaded("AutoRegressionOrder= 5\nAutoRegressionOrder= 2").pars.arOrder, 2);
}

TEST(IniFile, LongestLineHas255Characters) {
  const std::string line = "// " + std::string(252, 'x');
  EXPECT_TRUE(Loaded(line + "\nAutoRegressionOrder= 5\n").ok);
  EXPECT_TRUE(Loaded(line).ok) << "at the end of the file";
  EXPECT_EQ(refusal(line + "x\n"), "A line in TAVPlugin.ini is longer than 255 characters");
  EXPECT_EQ(refusal(line + "x"), "A line in TAVPlugin.ini is longer than 255 characters");
}

TEST(IniFile, UnreadableStreamFails) {
  std::istringstream file("AutoRegressionOrder= 5");
  file.setstate(std::ios::badbit);
  tav::TAV_Pars pars;
  std::ostringstream err;
  EXPECT_FALSE(tav::loadINIFile(file, pars, err));
  EXPECT_EQ(err.str(), "Could not read TAVPlugin.ini");
}

TEST(AddMapType, KnowsAllSixKeywords) {
  std::set<tav::MapType> types;
  std::ostringstream err;
  for (const char* const keyword : {"REF2VOX", "VOX2REF", "INST", "DTAV", "DTAV_IT", "DTAV_RC", "DTAV"}) {
    EXPECT_TRUE(tav::addMapType(keyword, types, err));
  }
  EXPECT_EQ(types.size(), 6U);
  EXPECT_EQ(err.str(), "");
}
