// The time courses of the references: fetched once per (reference, source VTC).
#include <algorithm>
#include <utility>

#include "io/cnvtcfile.h"
#include "io/tcutils.h"
#include "tav/tav.h"

namespace tav {
namespace {

constexpr std::int32_t kCapacityStep = 100;  // voxels

void reportOutside(const TAV_VOI_Pars& voi, const std::string& vtcName, std::int32_t nrOutside,
                   std::ostream& errors) {
  errors << "WARNING: " << nrOutside << " of " << voi.nVoxels << " voxels of VOI '" << voi.name
         << "' lie outside the bounding box of vtc '" << vtcName << "' and were left out\n";
}

void reportFailure(const TAV_VOI_Pars& voi, const std::string& vtcName, const VoiTcReport& report,
                   std::ostream& errors) {
  if (report.truncated) {
    errors << "Could not read data from vtc '" << vtcName << "'\n"
           << "The file was corrupted (not of expected size) or made inaccessible\n";
  }
  errors
      << "Could not obtain time-course information from vtc-file for creation of a voi time-course(internal "
         "error) for:\n"
      << "vtc: " << vtcName << "\n"
      << "voi: " << voi.name << "\n";
}

// Room for nVoxels, growing in steps.
void growCoordinateBuffer(std::int32_t nVoxels, std::int32_t& capacity,
                          std::unique_ptr<std::int32_t[]>& buffer) {
  if (nVoxels <= capacity) return;
  const std::int32_t steps = (nVoxels - capacity + kCapacityStep - 1) / kCapacityStep;
  capacity += steps * kCapacityStep;
  buffer = std::make_unique_for_overwrite<std::int32_t[]>(3 * static_cast<std::size_t>(capacity));
}

bool averageVoxels(const VtcFile& source, const TAV_VOI_Pars& voi, std::int32_t* workBuffer,
                   simo::Matrix<float>& course, VoiTcReport& report) {
  using Average = tc_accum_avgW<float>;
  if (source.loaded != nullptr) {
    return getVOITcFromMemory<float, Average>(source.loaded->floats(), source.loaded->shorts(), source.header,
                                              voi.voxels, voi.nVoxels, voi.talCoords, course, 1, workBuffer,
                                              report);
  }
  return getVOITcFromVTC<float, Average>(source.fp, source.header, voi.voxels, voi.nVoxels, voi.talCoords,
                                         course, 1, workBuffer, report);
}

}  // namespace

VoiTc::VoiTc(std::string voi, std::string vtc, int nrOfVolumes, int order, int nrOfSurrogates)
    : voiName(std::move(voi)),
      vtcName(std::move(vtc)),
      tc(1, nrOfVolumes, 1, 1, 0.0F),
      noiseCov(1, 1, 0, 0, 0.0F),
      arCoefs(order, 1, noiseCov),
      surrogates(nrOfSurrogates, nrOfVolumes, 1, 1, 0.0F) {}

int Computer::fetchVOITC(const TAV_Pars& request, const TAV_VOI_Pars& voi, const TAV_VTC_intv_set& set,
                         std::ostream& errors) {
  growCoordinateBuffer(voi.nVoxels, crdBufCapacity, crdBuf);
  const VtcFile& source = *set.srcVtc;
  auto voiTc = std::make_unique<VoiTc>(voi.name, set.srcVtcName, source.header.nrOfVolumes, request.arOrder,
                                       request.nSurrogateSims);
  VoiTcReport report;
  const bool fetched = averageVoxels(source, voi, crdBuf.get(), voiTc->tc, report);
  if (report.nrOutside > 0) reportOutside(voi, set.srcVtcName, report.nrOutside, errors);
  if (!fetched) {
    reportFailure(voi, set.srcVtcName, report, errors);
    return kTerminalError;
  }
  voiTcs.push_back(std::move(voiTc));
  return kSuccess;
}

int Computer::prefetchVOITCs(const TAV_Pars& request, std::ostream& errors) {
  for (const TAV_VOI_Pars& voi : request.vois) {
    for (const TAV_Cond_Pars& cond : request.conds) {
      for (const TAV_VTC_intv_set& set : cond.vtcIntvSets) {
        if (getFetchedVoiTc(voi.name, set.srcVtcName) != nullptr) continue;
        const int status = fetchVOITC(request, voi, set, errors);
        if (status != kSuccess) return status;
      }
    }
  }
  return kSuccess;
}

VoiTc* Computer::getFetchedVoiTc(const std::string& voiName, const std::string& vtcName) const {
  const auto found = std::find_if(voiTcs.begin(), voiTcs.end(), [&](const auto& voiTc) {
    return voiTc->voiName == voiName && voiTc->vtcName == vtcName;
  });
  return found == voiTcs.end() ? nullptr : found->get();
}

}  // namespace tav
