#include "tests/kernel/differential.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

#include "tav/kernel_path.h"
#include "tav/reference_path.h"
#include "tests/kernel/oracle.h"
#include "tests/support/autoregressive.h"

namespace differential {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr std::uint16_t kThreshold = 100;

class Maker {
 public:
  Maker(std::uint32_t seed, Case& made) : random_(seed), case_(made) {}

  void make() {
    tav::VoxelJob& job = case_.job;
    job.order = chance(3) ? upTo(19) + 1 : upTo(4) + 1;
    job.inclusionThreshold = kThreshold;
    job.nrOfSurrogates = upTo(6) + 1;
    job.nullDraws = chance(3) ? upTo(4) + 1 : 1;
    job.fitForm = chance(2) ? tav::FitForm::kLeastSquares : tav::FitForm::kWritten;
    case_.nrOfVoxels = static_cast<std::size_t>(upTo(45) + 1);
    const int nrOfFiles = upTo(2) + 1;
    for (int file = 0; file < nrOfFiles; ++file) addFile();
    const int nrOfSets = nrOfFiles + upTo(1);
    for (int set = 0; set < nrOfSets; ++set) addSet(set < nrOfFiles ? set : 0);
    for (std::size_t file = 0; file < job.files.size(); ++file) fillFile(file);
  }

 private:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
  bool chance(int oneIn) { return upTo(oneIn - 1) == 0; }
  double normal() { return std::normal_distribution<double>()(random_); }

  void addFile() { case_.job.files.push_back({chance(2), case_.job.order + 1 + upTo(90)}); }

  void addSet(int file) {
    const int nrOfVolumes = case_.job.files[static_cast<std::size_t>(file)].nrOfVolumes;
    auto& intervals = case_.intervals.emplace_back();
    const int count = chance(20) ? 0 : upTo(3) + 1;
    for (int i = 0; i < count; ++i) {
      const int length = case_.job.order + 1 + upTo(nrOfVolumes - case_.job.order - 1);
      const int first = 1 + upTo(nrOfVolumes - length);
      intervals.push_back({first, first + length - 1});
    }
    auto& reference = case_.matrices.emplace_back(1, nrOfVolumes, 1, 1);
    fillRow(reference[1] + 1, nrOfVolumes, referenceKind());
    auto& surrogates = case_.matrices.emplace_back(case_.job.nrOfSurrogates, nrOfVolumes, 1, 1);
    for (int s = 1; s <= case_.job.nrOfSurrogates; ++s)
      fillRow(surrogates[s] + 1, nrOfVolumes, referenceKind());
    case_.job.sets.push_back({file, &reference, &surrogates, intervals});
  }

  CourseKind anyKind() { return static_cast<CourseKind>(upTo(kCourseKinds - 1)); }
  CourseKind referenceKind() { return chance(8) ? anyKind() : CourseKind::kCoupled; }

  void fillRow(float* row, int n, CourseKind kind) {
    const Course course = makeCourse(n, kind, {});
    for (int t = 0; t < n; ++t) row[t] = static_cast<float>(course[static_cast<std::size_t>(t)]);
  }

  Course makeCourse(int n, CourseKind kind, const Course& partner) {
    const double coefficient = 0.1 * upTo(9), mean = 200.0 + upTo(12000), sd = 1.0 + upTo(200);
    Course course = autoregressive(static_cast<std::size_t>(n), coefficient, [&] { return normal(); });
    for (double& v : course) v = mean + sd * v;
    applyKind(
        kind, mean, partner, [&](int most) { return upTo(most); }, course);
    return course;
  }

  void fillFile(std::size_t file) {
    const tav::VoxelFile& shape = case_.job.files[file];
    const auto set = std::ranges::find_if(
        case_.job.sets, [&](const auto& s) { return static_cast<std::size_t>(s.file) == file; });
    const float* reference = set->reference->elements();
    const Course partner(reference, reference + shape.nrOfVolumes);
    std::vector<float>& floats = case_.floats.emplace_back();
    std::vector<std::uint16_t>& shorts = case_.shorts.emplace_back();
    for (std::size_t voxel = 0; voxel < case_.nrOfVoxels; ++voxel) {
      case_.kinds.push_back(chance(2) ? anyKind() : CourseKind::kCoupled);
      for (const double v : makeCourse(shape.nrOfVolumes, case_.kinds.back(), partner)) {
        if (shape.isFloat) {
          floats.push_back(static_cast<float>(v));
        } else {
          shorts.push_back(static_cast<std::uint16_t>(std::isnan(v) ? 0.0 : std::clamp(v, 0.0, 65535.0)));
        }
      }
    }
    case_.data.push_back({shape.isFloat ? floats.data() : nullptr, shape.isFloat ? nullptr : shorts.data()});
  }

  std::mt19937 random_;
  Case& case_;
};

// One job of a run: where its results go.
struct Place {
  explicit Place(const Case& made) : further(made.job.nullDraws - 1) {
    for (auto& plane : outcome.measures) plane.resize(made.nrOfVoxels, kNan);
    for (auto& plane : outcome.nulls) plane.resize(made.nrOfVoxels, kNan);
    outcome.status.resize(made.nrOfVoxels);
  }

  tav::VoxelResults resultsAt(std::size_t voxel) {
    const bool hasFurther = further.drawsPerVoxel() > 0;
    tav::VoxelResults results{
        {}, {}, outcome.status.data() + voxel, hasFurther ? &further : nullptr, &outcome.counts};
    for (std::size_t m = 0; m < tav::kNrOfMeasures; ++m) {
      results.measures[m] = outcome.measures[m].data() + voxel;
      results.nullMeasures[m] = outcome.nulls[m].data() + voxel;
    }
    return results;
  }

  // Further draws voxel after voxel.
  Outcome finish() {
    outcome.nextDraw = random.next();
    for (const auto& block : further.blocks()) {
      for (std::size_t voxel = 0; voxel < block.nrOfVoxels(); ++voxel) {
        for (std::size_t draw = 0; draw < further.drawsPerVoxel(); ++draw) {
          for (int m = 0; m < tav::kNrOfMeasures; ++m)
            outcome.further[m].push_back(block.draw(m, draw)[voxel]);
        }
      }
    }
    return std::move(outcome);
  }

  simo::RandomStream random;
  tav::FurtherNulls further;
  Outcome outcome;
};

std::vector<tav::VoxelData> dataFrom(std::size_t voxel, const Case& made) {
  std::vector<tav::VoxelData> data = made.data;
  for (std::size_t file = 0; file < data.size(); ++file) {
    const std::size_t offset = voxel * static_cast<std::size_t>(made.job.files[file].nrOfVolumes);
    if (data[file].floats != nullptr) data[file].floats += offset;
    if (data[file].shorts != nullptr) data[file].shorts += offset;
  }
  return data;
}

// Conditioning of one voxel with a surrogate per interval, or (drawn null) with the reference.
double conditioning(const Case& made, std::size_t voxel, const std::uint32_t* drawn, std::size_t step) {
  std::vector<oracle::Segment> segments;
  for (const tav::VoxelSet& set : made.job.sets) {
    const auto file = static_cast<std::size_t>(set.file);
    const std::size_t volumes = static_cast<std::size_t>(made.job.files[file].nrOfVolumes);
    for (const tav::TAV_intv& interval : set.intervals) {
      const float* x = set.reference->elements();
      if (drawn != nullptr) x = set.surrogates->elements() + *drawn * volumes;
      if (drawn != nullptr && made.job.fitForm == tav::FitForm::kWritten) drawn += step;
      oracle::Segment segment;
      for (auto t = static_cast<std::size_t>(interval.first - 1); t < static_cast<std::size_t>(interval.last);
           ++t) {
        const std::size_t at = voxel * volumes + t;
        segment.x.push_back(static_cast<double>(x[t]));
        segment.y.push_back(made.data[file].floats != nullptr
                                ? static_cast<double>(made.data[file].floats[at])
                                : static_cast<double>(made.data[file].shorts[at]));
      }
      segments.push_back(std::move(segment));
    }
  }
  return oracle::geweke(segments, made.job.order, made.job.fitForm == tav::FitForm::kLeastSquares)
      .conditioning;
}

// Fits in single precision of both sides; in least squares the reference is exact, and the kernel's
// margin of accuracy bounds what large values at an interval's edges cost it.
double toleranceOf(const Case& made, double conditioning) {
  constexpr double kEps = static_cast<double>(std::numeric_limits<float>::epsilon()), kLeastSquares = 3e-4;
  const int order = made.job.order;
  const double least = made.job.fitForm == tav::FitForm::kLeastSquares ? kLeastSquares : 0;
  return least + 2.0 * kEps * (20.0 + 4.0 * order) / std::min(1.0, conditioning);
}

bool isSame(float a, float b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// The surrogates of every included voxel, drawn once more.
std::vector<std::uint32_t> drawnFor(const Case& made, const Outcome& outcome, std::size_t perVoxel) {
  simo::RandomStream random;
  std::vector<std::uint32_t> drawn;
  for (const tav::VoxelStatus status : outcome.status) {
    for (std::size_t i = 0; i < perVoxel; ++i) {
      const bool isDrawn = status != tav::VoxelStatus::kBelowInclusion;
      drawn.push_back(isDrawn ? static_cast<unsigned>(random.next()) %
                                    static_cast<unsigned>(made.job.nrOfSurrogates)
                              : 0U);
    }
  }
  return drawn;
}

class Comparison {
 public:
  Comparison(const Case& made, const Outcome& kernel, const Outcome& reference)
      : case_(made),
        kernel_(kernel),
        reference_(reference),
        draws_(static_cast<std::size_t>(made.job.nullDraws)) {
    drawn_ = drawnFor(made, reference, tav::drawsPerVoxel(made.job));
  }

  std::string first() {
    std::size_t included = 0;
    for (std::size_t voxel = 0; voxel < case_.nrOfVoxels && text_.str().empty(); ++voxel) {
      compareVoxel(voxel, included);
      if (reference_.status[voxel] != tav::VoxelStatus::kBelowInclusion) ++included;
    }
    compareCounts();
    return text_.str();
  }

  void describe(std::size_t voxel) {
    text_ << "order " << case_.job.order
          << (case_.job.fitForm == tav::FitForm::kLeastSquares ? " least squares" : " written") << ", kinds";
    for (std::size_t i = voxel; i < case_.kinds.size(); i += case_.nrOfVoxels)
      text_ << " " << nameOf(case_.kinds[i]) << ",";
    text_ << " intervals";
    for (const auto& intervals : case_.intervals) {
      for (const auto& interval : intervals) text_ << " " << interval.first << "-" << interval.last;
    }
    text_ << ". ";
  }

 private:
  void compareCounts() {
    const tav::VoxelCounts &a = kernel_.counts, &b = reference_.counts;
    if (a.skipped != b.skipped || a.illDefined != b.illDefined ||
        a.surrogatesIllDefined != b.surrogatesIllDefined) {
      text_ << "counts " << a.skipped << "/" << a.illDefined << "/" << a.surrogatesIllDefined
            << " instead of " << b.skipped << "/" << b.illDefined << "/" << b.surrogatesIllDefined;
    }
    if (kernel_.nextDraw != reference_.nextDraw) text_ << "another random number follows";
  }

  void compareVoxel(std::size_t voxel, std::size_t included) {
    if (kernel_.status[voxel] != reference_.status[voxel]) {
      describe(voxel);
      text_ << "voxel " << voxel << ": status " << static_cast<int>(kernel_.status[voxel]) << " instead of "
            << static_cast<int>(reference_.status[voxel]) << "; ";
    }
    for (std::size_t m = 0; m < tav::kNrOfMeasures; ++m) {
      compareValue(voxel, -1, kernel_.measures[m][voxel], reference_.measures[m][voxel]);
      compareValue(voxel, 0, kernel_.nulls[m][voxel], reference_.nulls[m][voxel]);
      if (reference_.status[voxel] == tav::VoxelStatus::kBelowInclusion) continue;
      for (std::size_t k = 1; k < draws_; ++k) {
        const std::size_t at = included * (draws_ - 1) + k - 1;
        compareValue(voxel, static_cast<int>(k), kernel_.further[m][at], reference_.further[m][at]);
      }
    }
  }

  void compareValue(std::size_t voxel, int draw, float a, float b) {
    if (isSame(a, b)) return;
    const double error = std::abs(static_cast<double>(a) - static_cast<double>(b));
    if (error <= toleranceOf(case_, 1.0)) return;
    const std::uint32_t* drawn =
        draw < 0 ? nullptr
                 : drawn_.data() + voxel * tav::drawsPerVoxel(case_.job) + static_cast<std::size_t>(draw);
    const double allowed = toleranceOf(case_, conditioning(case_, voxel, drawn, draws_));
    if (error <= allowed) return;
    describe(voxel);
    text_ << "voxel " << voxel << " draw " << draw << ": " << a << " instead of " << b << ", allowed "
          << allowed << "; ";
  }

  const Case& case_;
  const Outcome& kernel_;
  const Outcome& reference_;
  std::size_t draws_;
  std::vector<std::uint32_t> drawn_;
  std::ostringstream text_;
};

}  // namespace

void makeCase(std::uint32_t seed, Case& made) {
  Maker(seed, made).make();
}

std::vector<Outcome> run(tav::VoxelPath& path, const Case& made, std::vector<tav::VoxelJob> jobs,
                         std::size_t voxelsPerCall) {
  std::deque<Place> places;
  for (tav::VoxelJob& job : jobs) job.random = &places.emplace_back(made).random;
  path.begin(jobs);
  for (std::size_t voxel = 0; voxel < made.nrOfVoxels; voxel += voxelsPerCall) {
    std::vector<tav::VoxelResults> results;
    for (Place& place : places) results.push_back(place.resultsAt(voxel));
    path.compute(std::min(voxelsPerCall, made.nrOfVoxels - voxel), dataFrom(voxel, made), results);
  }
  std::vector<Outcome> outcomes;
  for (Place& place : places) outcomes.push_back(place.finish());
  return outcomes;
}

Outcome run(tav::VoxelPath& path, const Case& made, std::size_t voxelsPerCall) {
  return run(path, made, std::vector{made.job}, voxelsPerCall)[0];
}

std::string difference(const Case& made, const Outcome& kernel, const Outcome& reference) {
  return Comparison(made, kernel, reference).first();
}

std::string check(const tav::kernel::Kernel& kernel, std::uint32_t seed) {
  Case made;
  makeCase(seed, made);
  tav::KernelPath fast(kernel);
  tav::ReferencePath reference;
  return difference(made, run(fast, made, 1000), run(reference, made, 1000));
}

}  // namespace differential
