// What a kernel sees of a prepared plan and of one batch of voxels: plain pointers and counts, so
// that the files compiled per CPU need nothing of the standard library.
//
// Scale: in least squares every sample has the weight 1. In the written form every interval enters
// with the weight 1/N (its length). Measures are quotients, so only the ratio of the weights counts:
// rows of an interval are multiplied by sqrt(longest N / N), and products of such rows are summed over
// intervals without further factors.
#ifndef TAVMAP_TAV_KERNEL_PLAN_VIEW_H
#define TAVMAP_TAV_KERNEL_PLAN_VIEW_H

#include <cstddef>
#include <cstdint>

namespace tav::kernel {

inline constexpr int kMaxOrder = 20;
inline constexpr int kMaxDraws = 100;
inline constexpr int kMaxReferences = 8;  // of one plan
// Voxels that the widest kernel computes at once; arrays of results hold a multiple of it.
inline constexpr int kMaxLanes = 16;
// Rows have a multiple of this many values; those behind the interval's end are 0.
inline constexpr int kRowAlign = 16;
// Tables have a multiple of this many values.
inline constexpr int kTableAlign = 4;
// Zeros before a voxel's row and behind it, so that a product at any lag up to the order reads
// zeros beyond the interval's ends instead of branching, and the vector before the first at that lag.
inline constexpr int kRowPad = 48;
static_assert(kRowPad >= kMaxOrder + kMaxLanes && kRowPad % kRowAlign == 0);
// Bytes behind the last value of a course that a kernel may read (and ignores).
inline constexpr int kReadSlack = 64;

// Values at the edges of an interval that a fit needs of each series: the last ones, and in least
// squares the first ones behind them.
constexpr int edgeSize(int order, bool leastSquares) {
  return leastSquares ? 2 * order : order;
}

// An array's extent from a constant count.
constexpr std::size_t extent(int count) {
  return static_cast<std::size_t>(count);
}

enum class Element : std::uint8_t { kUint16, kFloat };

// One interval of one course.
struct IntervalView {
  int set;                  // index into a voxel's courses
  int first;                // first value of the interval in the course, 0-based
  int length;               // values, above the order
  int paddedLength;         // rounded up to kRowAlign
  std::size_t rowOffset;    // of this interval's zone in a voxel's row buffer
  float scale;              // 1, or sqrt(longest length / length)
  float rampSquares;        // sum of squares of ramp
  const float* ramp;        // t / (length - 1) - 0.5, then zeros; paddedLength values
  std::size_t tableStride;  // a multiple of kTableAlign
};

// One reference over one interval.
struct ReferenceRows {
  // Detrended and scaled: the reference, and one row of paddedLength values per surrogate.
  const float* reference;
  const float* surrogates;
  // Per surrogate tableStride values: order + 1 own lag sums at lags 0 ... order, then the `order`
  // last values of its row, latest first, in least squares its first values, and zeros. The reference
  // has the same in front, as row -1.
  const float* tables;
};

struct PlanView {
  int order;     // 1 ... kMaxOrder
  int draws;     // surrogates per voxel and reference, 1 ... kMaxDraws
  int nrOfSets;  // courses per voxel
  int nrOfIntervals;
  int nrOfReferences;       // 1 ... kMaxReferences
  bool leastSquares;        // false: the plug-in's written form
  std::size_t rowSize;      // values of one voxel's row buffer, all intervals
  const Element* elements;  // per set
  const IntervalView* intervals;
  const ReferenceRows* rows;  // [reference][interval]
};

// What became of a voxel.
enum class Verdict : std::uint8_t {
  kDone = 0,        // all measures are valid
  kIllDefined = 1,  // certainly no positive-definite model; the measures hold anything
  kUnsure = 2       // too close to singular, or out of range: the reference has to decide
};

// Draws and results of one reference, one array element per voxel; arrays hold nrOfVoxels rounded up
// to kMaxLanes, the draws behind nrOfVoxels being any that exist. What belongs to draw k starts at
// k * stride, the draws of interval n at n * draws * stride; in least squares those of interval 0 serve all.
// Measures: 0 reference to voxel, 1 voxel to reference, 2 instantaneous.
struct ReferenceBatch {
  const std::uint32_t* surrogates;  // rows of the interval's surrogates
  float* measures[3];
  Verdict* verdicts;
  float* nullMeasures[3];
  Verdict* nullVerdicts;
  std::size_t stride;
};

// `nrOfVoxels` voxels whose results go to consecutive elements.
struct BatchView {
  std::size_t nrOfVoxels;
  const void* const* courses;        // [voxel][set]: first value of the course
  const ReferenceBatch* references;  // per reference
};

// Rows to detrend and tabulate: the reference or surrogates over one interval.
struct RowsView {
  int order;
  bool leastSquares;
  int nrOfRows;
  const float* source;  // first value of the interval in the first row
  std::size_t sourceStride;
  float* rows;    // nrOfRows x paddedLength
  float* tables;  // see ReferenceRows::tables
};

// Rows of references and surrogates that one pass of lag sums takes at most.
inline constexpr int kMaxRows = 4;

// The rows of one interval that a voxel's lag sums are made of.
struct LagRows {
  const float* voxel;  // zeros around it
  const float* references[kMaxRows];
  int paddedLength;
};

// Scratch memory of one caller, 64-byte aligned.
struct WorkView {
  float* rows;        // detrended voxel rows; their padding is 0 and stays so
  float* partials;    // [statistic][lane][width]: lag sums before the sum over the width
  float* lanes;       // [variable][width]: everything that has one value per voxel, see layout.h
  LagRows* segments;  // [lane][interval]
};

}  // namespace tav::kernel

#endif
