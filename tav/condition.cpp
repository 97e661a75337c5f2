#include "tav/condition.h"

#include <cstdint>

#include "tav/tav.h"

namespace tav {
namespace {

// One interval set while it is checked.
struct SetCheck {
  const TAV_VTC_intv_set& set;
  const TAV_Cond_Pars& cond;
  const TAV_Pars& request;
  const VoiTc& reference;
  std::ostream& errors;

  [[nodiscard]] bool accepts(const TAV_intv& interval) const {
    const bool inSource = interval.first >= reference.tc.colBase && interval.last < reference.tc.colEnd;
    if (!inSource || interval.last - interval.first < request.arOrder) {
      reject(interval, set.srcVtcName, set.srcVtc->header.nrOfVolumes);
      return false;
    }
    if (interval.last > set.trgVtc->header.nrOfVolumes) {
      reject(interval, set.trgVtcName, set.trgVtc->header.nrOfVolumes);
      return false;
    }
    return true;
  }

  void reject(const TAV_intv& interval, const std::string& vtcName, std::int32_t nrOfVolumes) const {
    errors << "An interval (" << interval.first << ", " << interval.last << ") for vtc '" << vtcName << "', "
           << nrOfVolumes << " volumes, in condition '" << cond.name
           << "' was wrongly specified (N.B. last-first+1 must be greater than AR-order(" << request.arOrder
           << "))";
  }
};

void describeVtcs(const TAV_VTC_intv_set& set, bool separate, std::ostream& log) {
  if (separate) {
    log << "\tSrc VTC: " << set.srcVtcName << "\n\tTrg VTC: " << set.trgVtcName << "\n";
  } else {
    log << "\tVTC: " << set.srcVtcName << "\n";
  }
}

void describeIntervals(const TAV_VTC_intv_set& set, std::ostream& log) {
  log << "\tintv(s):\n";
  for (const TAV_intv& interval : set.intervals) {
    log << "\t\t" << interval.first << "\t-\t" << interval.last << "\n";
  }
}

void describeTimePoints(const CheckedCondition& checked, std::ostream& log) {
  log << "\n\tTotal nr. time-points: " << checked.totalTimePoints << "\n";
  log << "\n\tEffective nr. time-points: " << checked.effectiveTimePoints << "\n";
}

bool checkIntervals(const SetCheck& check, CheckedCondition& checked) {
  for (const TAV_intv& interval : check.set.intervals) {
    if (!check.accepts(interval)) return false;
    const auto length = static_cast<unsigned>(interval.last - interval.first + 1);
    checked.totalTimePoints += length;
    checked.effectiveTimePoints += length - static_cast<unsigned>(check.request.arOrder);
  }
  return true;
}

void reportMissingCourse(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, std::ostream& errors) {
  errors << "Failed to retrieve precomputed voi time-course for VOI '" << voi.name << "', Condition '"
         << cond.name << "' (internal error)";
}

}  // namespace

int checkCondition(const Computer& computer, const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                   const TAV_Pars& request, std::ostream& log, std::ostream& errors,
                   CheckedCondition& checked) {
  for (const TAV_VTC_intv_set& set : cond.vtcIntvSets) {
    describeVtcs(set, request.separateSrcTrgVtcs, log);
    const VoiTc* const reference = computer.getFetchedVoiTc(voi.name, set.srcVtcName);
    if (reference == nullptr || set.srcVtc == nullptr || set.trgVtc == nullptr) {
      reportMissingCourse(voi, cond, errors);
      return kTerminalError;
    }
    checked.references.push_back(reference);
    describeIntervals(set, log);
    if (!checkIntervals({set, cond, request, *reference, errors}, checked)) return kInvalidParameters;
  }
  describeTimePoints(checked, log);
  return kSuccess;
}

void reportCounts(const VoxelCounts& counts, const TAV_Pars& request, const RunLog& runLog,
                  std::ostream& log) {
  const auto nrOfVoxels = static_cast<double>(gridOf(request).voxels());
  const auto percent = [&](int count) { return nrOfVoxels > 0 ? count / nrOfVoxels * 100.0 : 0.0; };
  if (request.showVerboseProgress) {
    runLog.line<128>(
        "%s\tVoxels skipped: %d\t(%3.1f%%)\n%s\tVoxels ill-defined: %d\t(%3.1f%%)\n%s\tSurrogates "
        "ill-defined: "
        "%d\t(%3.1f%%)",
        TAV_PROMPT, counts.skipped, percent(counts.skipped), TAV_PROMPT, counts.illDefined,
        percent(counts.illDefined), TAV_PROMPT, counts.surrogatesIllDefined,
        percent(counts.surrogatesIllDefined));
  }
  log << "\n\tVoxels skipped: " << counts.skipped << "\t(" << percent(counts.skipped) << "%)\n";
  log << "\tVoxels ill-defined: " << counts.illDefined << "\t(" << percent(counts.illDefined) << "%)\n";
  log << "\tSurrogates ill-defined: " << counts.surrogatesIllDefined << "\t("
      << percent(counts.surrogatesIllDefined) << "%)\n";
}

}  // namespace tav
