#include "tav/parameter_log.h"

#include "tav/map_kinds.h"

namespace tav {

void writeParameterLog(const TAV_Pars& pars, std::ostream& out) {
  out << "Created by TAV-plugin version " << VERSION_STRING << "\n\n";
  out << "Global parameter values \n";
  out << "------------------------\n";
  out << MAPTYPES_INI_STR << " ";
  for (const MapType type : pars.mapTypes) out << mapKind(type).keyword << " ";
  out << "\n" << INST_LTHRES_INI_STR << " " << static_cast<double>(pars.instLowerThres) << "\n";
  out << QS_INI_STR << " ";
  for (const float q : pars.qThresholds) out << static_cast<double>(q) << " ";
  out << "\n" << CV_INI_STR << " " << pars.cvConstant << "\n";
  out << SHOW_PROG_INI_STR << " " << (pars.showVerboseProgress ? 1 : 0) << "\n";
  out << MAP_SCALE_FACTOR_INI_STR << " " << static_cast<double>(pars.mapScaleFactor) << "\n";
  out << ORDER_INI_STR << " " << pars.arOrder << "\n";
  out << INCL_THRES_INI_STR << " " << static_cast<unsigned>(pars.firstTpInclThres) << "\n";
  out << N_SURR_REPS_INI_STR << " " << static_cast<unsigned>(pars.nSurrogateSims) << "\n";
  out << N_DISC_SIMTC_INI_STR << " " << static_cast<unsigned>(pars.nDiscardedSimTps) << "\n\n";
}

void writeRunOptionsLog(const RunOptions& options, std::ostream& out) {
  if (options.isPlugin()) return;
  const bool leastSquares = options.fitForm == FitForm::kLeastSquares;
  const bool ownResiduals = options.surrogateKind == SurrogateKind::kOwnResiduals;
  const bool stepUp = options.thresholdRule == ThresholdRule::kStepUp;
  out << "Run options (not those of the plug-in)\n";
  out << "--------------------------------------\n";
  out << "Models= " << (leastSquares ? "least squares over common samples" : "written") << "\n";
  out << "Surrogates= " << (ownResiduals ? "own residuals with random signs" : "pooled models") << "\n";
  out << "NullDrawsPerVoxel= " << options.nullDraws << "\n";
  out << "ThresholdRule= " << (stepUp ? "step-up" : "walk") << "\n";
  if (options.fdrConstant > 0)
    out << "FDRConstant= " << options.fdrConstant << " (CVConstantForFDR is not used)\n";
  if (options.fweDraws > 0) out << "FamilyWiseDraws= " << options.fweDraws << "\n";
  out << "ThresholdSearch= " << (options.searchOutsideReference ? "outside the reference" : "all voxels")
      << "\n\n";
}

}  // namespace tav
