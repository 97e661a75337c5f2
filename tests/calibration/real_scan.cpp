#include "tests/calibration/real_scan.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <stdexcept>

#include "direction/fourier.h"
#include "formats/nifti.h"
#include "formats/nifti_stream.h"
#include "formats/nifti_writer.h"
#include "simo/residual_surrogates.h"
#include "tests/support/scratch.h"

namespace calibration {
namespace {

namespace fs = std::filesystem;

constexpr int kDropped = 4;
constexpr std::ptrdiff_t kLeastShift = 20;

// The scan from its first steady volume on, with its atlas and brain.
struct Scan {
  formats::ImageHeader header;
  std::vector<float> values;
  std::vector<std::int32_t> labels, brain;

  [[nodiscard]] std::size_t voxels() const { return labels.size(); }
  [[nodiscard]] int regions() const { return *std::max_element(labels.begin(), labels.end()); }
  [[nodiscard]] Course meanOf(int label) const;
};

Scan readScan(const fs::path& folder) {
  formats::NiftiStream stream((folder / "bold_small.nii.gz").string());
  Scan scan{stream.header(),
            {},
            formats::readLabelImage((folder / "dseg_small.nii.gz").string()).labels,
            formats::readLabelImage((folder / "mask_small.nii.gz").string()).labels};
  scan.values.resize(scan.voxels() * static_cast<std::size_t>(scan.header.volumes));
  stream.readValues(scan.values.data(), scan.values.size());
  return scan;
}

Course Scan::meanOf(int label) const {
  Course mean;
  const auto count = static_cast<double>(std::count(labels.begin(), labels.end(), label));
  for (int t = kDropped; t < header.volumes; ++t) {
    double sum = 0;
    for (std::size_t i = 0; i < voxels(); ++i)
      if (labels[i] == label) sum += static_cast<double>(values[static_cast<std::size_t>(t) * voxels() + i]);
    mean.push_back(sum / count);
  }
  return mean;
}

void takeLine(Course& course) {
  const auto n = static_cast<double>(course.size());
  double mean = 0, products = 0, squares = 0;
  for (const double value : course) mean += value / n;
  const auto time = [n](std::size_t t) { return static_cast<double>(t) - (n - 1) / 2; };
  for (std::size_t t = 0; t < course.size(); ++t) {
    products += time(t) * course[t];
    squares += time(t) * time(t);
  }
  for (std::size_t t = 0; t < course.size(); ++t) course[t] -= mean + products / squares * time(t);
}

void shift(Course& course, Generator& generator) {
  const auto length = static_cast<std::ptrdiff_t>(course.size());
  std::uniform_int_distribution<std::ptrdiff_t> by(kLeastShift, length - kLeastShift);
  std::rotate(course.begin(), course.begin() + by(generator), course.end());
}

void randomisePhases(Course& course, Generator& generator) {
  direction::Fourier fourier(static_cast<int>(course.size()));
  std::vector<std::complex<double>> spectrum;
  fourier.forward(course, spectrum);
  std::uniform_real_distribution<double> phase(0, 2 * std::numbers::pi);
  for (auto& value : spectrum) value = std::polar(std::abs(value), phase(generator));
  spectrum.back() = spectrum.back().real();
  fourier.inverse(spectrum, course);
}

void randomiseSigns(Course& course, Generator& generator) {
  std::vector<float> values(course.begin(), course.end());
  simo::ResidualSurrogates surrogates(values, {{0, static_cast<int>(values.size())}});
  simo::RandomStream random(static_cast<unsigned>(generator()));
  surrogates.draw(random, values);
  course.assign(values.begin(), values.end());
}

void makeUnrelated(Unrelated kind, Course& course, Generator& generator) {
  takeLine(course);
  if (kind == Unrelated::kShifted) return shift(course, generator);
  if (kind == Unrelated::kRandomPhases) return randomisePhases(course, generator);
  randomiseSigns(course, generator);
}

// Voxels of the brain, one for each reference, spread evenly.
std::vector<std::size_t> placesIn(const Scan& scan, int references) {
  std::vector<std::size_t> brain, places;
  for (std::size_t i = 0; i < scan.voxels(); ++i)
    if (scan.brain[i] != 0) brain.push_back(i);
  for (int r = 0; r < references; ++r)
    places.push_back(
        brain[brain.size() * static_cast<std::size_t>(r) / static_cast<std::size_t>(references)]);
  return places;
}

// A run on the scan's grid in which each reference is one voxel.
void writeReferences(const Scan& scan, Unrelated kind, const std::vector<std::size_t>& places, unsigned seed,
                     const fs::path& file) {
  constexpr double kLevel = 10000;
  Generator generator(seed);
  formats::ImageHeader header = scan.header;
  header.dataType = formats::DataType::kFloat32;
  std::vector<float> values(scan.values.size(), static_cast<float>(kLevel));
  for (std::size_t r = 0; r < places.size(); ++r) {
    const auto regions = static_cast<std::size_t>(scan.regions());
    Course course = scan.meanOf(1 + static_cast<int>(r * regions / places.size()));
    makeUnrelated(kind, course, generator);
    for (std::size_t t = 0; t < course.size(); ++t)
      values[(t + kDropped) * scan.voxels() + places[r]] = static_cast<float>(kLevel + course[t]);
  }
  formats::NiftiWriter writer(file.string(), header, formats::Durability::kCached);
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

std::string requestFor(const Scan& scan, const std::vector<std::size_t>& places, const fs::path& folder,
                       unsigned seed) {
  std::string text = fmt::format(
      "prefix = 'scan'\nfolder = 'results'\nseed = {}\n[settings]\norder = 1\n"
      "[[run]]\nname = 'references'\nbold = 'references.nii'\ndrop_volumes = {}\n"
      "[[run]]\nname = 'scan'\nbold = '{}/bold_small.nii.gz'\nmask = '{}/mask_small.nii.gz'\n"
      "drop_volumes = {}\n",
      seed, kDropped, folder.string(), folder.string(), kDropped);
  for (std::size_t r = 0; r < places.size(); ++r) {
    const auto voxel = scan.header.size.voxelAt(places[r]);
    text += fmt::format("[[reference]]\nname = 'reference{}'\nvoxels = [[{}, {}, {}]]\n", r, voxel[0],
                        voxel[1], voxel[2]);
  }
  return text + "[[condition]]\nname = 'whole'\nwhole_run = true\npairs = [['references', 'scan']]\n";
}

// The scan with its references, imported.
struct ScanRun {
  ScanRun(const fs::path& folder, Unrelated kind, int references, unsigned seed) : scan(readScan(folder)) {
    const auto places = placesIn(scan, references);
    writeReferences(scan, kind, places, seed, scratch.folder() / "references.nii");
    run.emplace(requestFor(scan, places, fs::absolute(folder), seed), scratch.folder());
  }
  Scan scan;
  Scratch scratch;
  std::optional<LibraryRun> run;
};

ScanRates ratesOf(const std::vector<FoundMap>& maps, const Scan& scan) {
  ScanRates rates;
  addAny(maps, rates.any);
  const auto brain = static_cast<double>(std::count(scan.brain.begin(), scan.brain.end(), 1));
  for (const FoundMap& map : maps) {
    for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
      double& worst = rates.worstShare[{map.type, i}];
      worst = std::max(worst, static_cast<double>(map.thresholds[i].nrPassing) / brain);
    }
  }
  return rates;
}

}  // namespace

FamilyWiseRates measureScanFamilyWise(const fs::path& folder, Unrelated kind, int references, unsigned seed,
                                      int draws) {
  ScanRun made(folder, kind, references, seed);
  FamilyWiseRates rates;
  addFamilyWise(made.run->compute(1, [&](tav::RunOptions& options) { options.fweDraws = draws; }), rates);
  return rates;
}

PValueRates measureScanPValues(const fs::path& folder, Unrelated kind, int references, unsigned seed) {
  ScanRun made(folder, kind, references, seed);
  PValueRates rates;
  addPValues(made.run->compute(1, [](tav::RunOptions& options) { options.nullP = true; }), rates);
  return rates;
}

std::vector<ScanRates> measureScan(const fs::path& folder, Unrelated kind, int references, unsigned seed,
                                   const std::vector<Orders>& orders) {
  ScanRun made(folder, kind, references, seed);
  std::vector<ScanRates> rates;
  for (const Orders order : orders) {
    const int used = order == Orders::kFixed ? 1 : made.run->orderBy(study::OrderChoice::kBic);
    rates.push_back(ratesOf(made.run->compute(used), made.scan));
  }
  return rates;
}

}  // namespace calibration
