#include "study/order_evidence.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <sstream>

#include "request/problem.h"
#include "tav/tav.h"

namespace study {
namespace {

// One included voxel's courses in every target file of a condition.
using Courses = std::vector<simo::Matrix<float>>;

// Reads single voxels' courses out of open VTCs, in any order.
class VoxelReader {
 public:
  VoxelReader(const tav::TAV_Cond_Pars& cond, int inclusionThreshold)
      : cond_(cond), threshold_(inclusionThreshold) {
    for (const tav::TAV_VTC_intv_set& set : cond.vtcIntvSets)
      courses_.emplace_back(1, set.trgVtc->header.nrOfVolumes, 1, 1);
  }

  // False for a voxel that any file excludes, or that cannot be read.
  bool read(std::size_t voxel) {
    for (std::size_t s = 0; s < courses_.size(); ++s) {
      if (!readOne(*cond_.vtcIntvSets[s].trgVtc, voxel, courses_[s])) return false;
      if (!(courses_[s][1][1] > static_cast<float>(threshold_))) return false;
    }
    return true;
  }
  const Courses& courses() const { return courses_; }

 private:
  bool readOne(const tav::VtcFile& file, std::size_t voxel, simo::Matrix<float>& course) {
    const std::size_t volumes = static_cast<std::size_t>(file.header.nrOfVolumes);
    const std::size_t elementBytes = file.isFloat() ? sizeof(float) : sizeof(std::uint16_t);
    const off_t at = file.header.dataOffset + static_cast<off_t>(voxel * volumes * elementBytes);
    if (fseeko(file.fp, at, SEEK_SET) != 0) return false;
    if (file.isFloat()) return std::fread(course.elements(), elementBytes, volumes, file.fp) == volumes;
    shorts_.resize(volumes);
    if (std::fread(shorts_.data(), elementBytes, volumes, file.fp) != volumes) return false;
    std::copy(shorts_.begin(), shorts_.end(), course.elements());
    return true;
  }

  const tav::TAV_Cond_Pars& cond_;
  int threshold_;
  Courses courses_;
  std::vector<std::uint16_t> shorts_;
};

// Visits all numbers below count, spread evenly from the start: steps of about the golden section.
class EvenWalk {
 public:
  explicit EvenWalk(std::size_t count) : count_(count), step_(std::max<std::size_t>(1, count * 618 / 1000)) {
    while (std::gcd(step_, count_) != 1) ++step_;
  }
  std::size_t next() { return at_ = (at_ + step_) % count_; }

 private:
  std::size_t count_, step_, at_ = 0;
};

class Gatherer {
 public:
  Gatherer(const tav::TAV_Pars& pars, const tav::Computer& computer, int maxOrder, int sample)
      : pars_(pars),
        computer_(computer),
        maxOrder_(maxOrder),
        sample_(sample),
        fit_(maxOrder, pars.vtcMaxNrOfVolumes) {}

  OrderEvidence gather() {
    evidence_.maxOrder = maxOrder_;
    for (const tav::TAV_Cond_Pars& cond : pars_.conds) {
      const std::vector<std::size_t> voxels = sampleVoxels(cond);
      for (const tav::TAV_VOI_Pars& voi : pars_.vois) gatherEntry(voi, cond, voxels);
    }
    for (const OrderEvidence::Entry& entry : evidence_.entries) {
      const double share = 1.0 / static_cast<double>(evidence_.entries.size());
      accumulate(evidence_.total, entry.own, share);
      if (entry.voxels > 0) accumulate(evidence_.total, entry.joint, share);
    }
    return std::move(evidence_);
  }

 private:
  bool longEnough(const tav::TAV_intv& interval) const {
    return interval.last - interval.first + 1 > maxOrder_ + 2;
  }

  int samplesOf(const tav::TAV_Cond_Pars& cond) const {
    int samples = 0;
    for (const tav::TAV_VTC_intv_set& set : cond.vtcIntvSets) {
      for (const tav::TAV_intv& interval : set.intervals) {
        if (longEnough(interval)) samples += interval.last - interval.first + 1 - maxOrder_;
      }
    }
    if (samples > 0) return samples;
    throw InputError(
        fmt::format("condition '{}': no interval is long enough to try order {}; lower 'max_order'",
                    cond.name, maxOrder_));
  }

  std::vector<std::size_t> sampleVoxels(const tav::TAV_Cond_Pars& cond) const {
    const std::size_t count = gridOf(pars_).voxels();
    VoxelReader reader(cond, pars_.firstTpInclThres);
    EvenWalk walk(count);
    std::vector<std::size_t> voxels;
    for (std::size_t i = 0; i < count && voxels.size() < static_cast<std::size_t>(sample_); ++i) {
      const std::size_t voxel = walk.next();
      if (reader.read(voxel)) voxels.push_back(voxel);
    }
    std::sort(voxels.begin(), voxels.end());
    return voxels;
  }

  // Both rows of every interval; without voxel courses the reference stands in for them.
  void fitIntervals(const tav::TAV_VOI_Pars& voi, const tav::TAV_Cond_Pars& cond, const Courses* courses) {
    fit_.begin();
    for (std::size_t s = 0; s < cond.vtcIntvSets.size(); ++s) {
      const tav::TAV_VTC_intv_set& set = cond.vtcIntvSets[s];
      const simo::Matrix<float>& reference = computer_.getFetchedVoiTc(voi.name, set.srcVtcName)->tc;
      for (const tav::TAV_intv& interval : set.intervals) {
        if (!longEnough(interval)) continue;
        fit_.addInterval(reference, courses == nullptr ? reference : (*courses)[s],
                         {interval.first, interval.last});
      }
    }
  }

  void gatherEntry(const tav::TAV_VOI_Pars& voi, const tav::TAV_Cond_Pars& cond,
                   const std::vector<std::size_t>& voxels) {
    OrderEvidence::Entry entry{voi.name, cond.name, samplesOf(cond), 0, {}, {}};
    std::vector<double> curve, sum(static_cast<std::size_t>(maxOrder_), 0.0);
    fitIntervals(voi, cond, nullptr);
    if (!fit_.ownFit(curve))
      throw RunError(fmt::format("the course of reference '{}' has no model; is it constant?", voi.name));
    entry.own = criteriaOf(curve, 1, entry.samples);
    VoxelReader reader(cond, pars_.firstTpInclThres);
    for (const std::size_t voxel : voxels) {
      if (!reader.read(voxel)) continue;
      fitIntervals(voi, cond, &reader.courses());
      if (!fit_.jointFit(curve)) continue;
      ++entry.voxels;
      for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += curve[i];
    }
    for (double& value : sum) value /= std::max(1, entry.voxels);
    if (entry.voxels > 0) entry.joint = criteriaOf(sum, 4, entry.samples);
    evidence_.entries.push_back(std::move(entry));
  }

  const tav::TAV_Pars& pars_;
  const tav::Computer& computer_;
  int maxOrder_, sample_;
  OrderFit fit_;
  OrderEvidence evidence_;
};

const std::vector<double>& curveOf(const Criteria& criteria, OrderChoice choice) {
  if (choice == OrderChoice::kAic) return criteria.aic;
  return choice == OrderChoice::kHqc ? criteria.hqc : criteria.bic;
}

}  // namespace

int OrderEvidence::best(OrderChoice choice) const {
  return bestOrder(curveOf(total, choice));
}

OrderEvidence gatherOrderEvidence(const tav::TAV_Pars& pars, const std::filesystem::path& vtcFolder,
                                  int maxOrder, int sampleVoxels) {
  tav::RunOptions options;
  options.vtcFolder = vtcFolder.string();
  tav::Computer computer(options);
  std::ostringstream errors;
  try {
    if (computer.Init(pars, errors) != tav::kSuccess) throw RunError(errors.str());
    OrderEvidence evidence = Gatherer(pars, computer, maxOrder, sampleVoxels).gather();
    computer.CleanUp();
    return evidence;
  } catch (...) {
    computer.CleanUp();
    throw;
  }
}

}  // namespace study
