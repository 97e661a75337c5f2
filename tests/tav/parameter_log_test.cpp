#include "tav/parameter_log.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(ParameterLog, WritesTheDefaultsInItsOwnOrder) {
  std::ostringstream out;
  tav::writeParameterLog(tav::TAV_Pars{}, out);
  EXPECT_EQ(out.str(),
            "Created by TAV-plugin version 1.5\n"
            "\n"
            "Global parameter values \n"
            "------------------------\n"
            "MapTypesComputed= REF2VOX VOX2REF INST DTAV DTAV_IT DTAV_RC \n"
            "DTAV_ITInstLowerThres= 0.05\n"
            "QThresholdsForFDR= 0.01 0.05 0.1 \n"
            "CVConstantForFDR= 2\n"
            "ShowVerboseProgressLog= 1\n"
            "MapScaleFactor= 100\n"
            "AutoRegressionOrder= 1\n"
            "FirstTimePointInclusionThres= 100\n"
            "NumSurrogateSimulations= 1000\n"
            "NumDiscardedSimulatedTimePoints= 100\n"
            "\n");
}

TEST(ParameterLog, WritesMapTypesInSetOrder) {
  tav::TAV_Pars pars;
  pars.mapTypes = {tav::DTAV, tav::INST};
  std::ostringstream out;
  tav::writeParameterLog(pars, out);
  EXPECT_NE(out.str().find("MapTypesComputed= INST DTAV \n"), std::string::npos);
}

TEST(ParameterLog, WritesTheWrappedInclusionThreshold) {
  tav::TAV_Pars pars;
  pars.firstTpInclThres = static_cast<std::uint16_t>(70000);
  pars.showVerboseProgress = false;
  std::ostringstream out;
  tav::writeParameterLog(pars, out);
  EXPECT_NE(out.str().find("FirstTimePointInclusionThres= 4464\n"), std::string::npos);
  EXPECT_NE(out.str().find("ShowVerboseProgressLog= 0\n"), std::string::npos);
}

TEST(RunOptionsLog, IsSilentAboutThePlugInsOwnWay) {
  std::ostringstream out;
  tav::writeRunOptionsLog({}, out);
  EXPECT_EQ(out.str(), "");
}

TEST(RunOptionsLog, NamesWhatDiffers) {
  std::ostringstream out;
  tav::RunOptions options;
  options.fitForm = tav::FitForm::kLeastSquares;
  options.surrogateKind = tav::SurrogateKind::kOwnResiduals;
  options.nullDraws = 20;
  options.thresholdRule = tav::ThresholdRule::kStepUp;
  options.fdrConstant = 1.5;
  options.fweDraws = 500;
  tav::writeRunOptionsLog(options, out);
  EXPECT_EQ(out.str(),
            "Run options (not those of the plug-in)\n"
            "--------------------------------------\n"
            "Models= least squares over common samples\n"
            "Surrogates= own residuals with random signs\n"
            "NullDrawsPerVoxel= 20\n"
            "ThresholdRule= step-up\n"
            "FDRConstant= 1.5 (CVConstantForFDR is not used)\n"
            "FamilyWiseDraws= 500\n"
            "ThresholdSearch= all voxels\n"
            "\n");
}
