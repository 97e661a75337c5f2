#include "tests/support/small_study.h"

#include <cmath>
#include <fstream>
#include <random>
#include <vector>

#include "formats/nifti_writer.h"
#include "tests/support/autoregressive.h"

namespace small_study {
namespace {

namespace fs = std::filesystem;

formats::ImageHeader header() {
  formats::ImageHeader h;
  h.size = {kDims[0], kDims[1], kDims[2]};
  h.affine = {{-3, 0.2, 0, 20, 0.2, 3, 0.3, -15, 0, -0.2, 4, -10, 0, 0, 0, 1}};
  h.sformCode = 1;
  return h;
}

std::size_t index(int x, int y, int z) {
  return static_cast<std::size_t>((z * kDims[1] + y) * kDims[0] + x);
}

// 1, 2, 3: regions of 2 x 2 x 2 voxels; 0: none.
int regionAt(int x, int y, int z) {
  const auto in = [&](int x0, int y0, int z0) {
    return x >= x0 && x < x0 + 2 && y >= y0 && y < y0 + 2 && z >= z0 && z < z0 + 2;
  };
  if (in(2, 3, 3)) return 1;
  if (in(8, 5, 4)) return 2;
  return in(5, 7, 2) ? 3 : 0;
}

std::vector<double> autocorrelated(std::size_t count, std::mt19937& generator) {
  auto noise = normalFrom(generator);
  const double before = noise();
  return autoregressive(count, 0.4, noise, before);
}

}  // namespace

int regionVoxels() {
  return 8;
}

bool inMask(int x, int y, int z) {
  const double dx = (x - 5.5) / 5.5, dy = (y - 4.5) / 4.5, dz = (z - 3.5) / 3.8;
  return dx * dx + dy * dy + dz * dz <= 1.1;
}

void writeBold(const fs::path& file, unsigned seed, double level, double trMs, int volumes) {
  std::mt19937 generator(seed);
  std::normal_distribution<double> normal;
  formats::ImageHeader h = header();
  h.volumes = volumes;
  h.trMs = trMs;
  const std::size_t voxels = h.size.voxels(), count = static_cast<std::size_t>(volumes);
  std::vector<float> values(voxels * count);
  const std::vector<double> driver = autocorrelated(count + 1, generator);
  for (int z = 0; z < kDims[2]; ++z) {
    for (int y = 0; y < kDims[1]; ++y) {
      for (int x = 0; x < kDims[0]; ++x) {
        const std::vector<double> noise = autocorrelated(count, generator);
        const int region = regionAt(x, y, z);
        for (std::size_t t = 0; t < count; ++t) {
          double value = noise[t];
          if (region == 1) value = 0.5 * noise[t] + 2 * driver[t + 1];
          if (region == 2) value = noise[t] + 1.5 * driver[t];
          const bool air = !inMask(x, y, z);
          values[t * voxels + index(x, y, z)] =
              static_cast<float>(air ? 3 + 0.1 * value : level + 10 * value);
        }
      }
    }
  }
  formats::NiftiWriter writer(file.string(), h);
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

void writeMask(const fs::path& file) {
  formats::Image3D mask{header(), {}};
  mask.header.dataType = formats::DataType::kUint8;
  for (int z = 0; z < kDims[2]; ++z) {
    for (int y = 0; y < kDims[1]; ++y) {
      for (int x = 0; x < kDims[0]; ++x) mask.values.push_back(inMask(x, y, z) ? 1.0F : 0.0F);
    }
  }
  formats::writeImage(file.string(), mask);
}

void writeRegions(const fs::path& image) {
  formats::LabelImage labels{header(), {}};
  labels.header.dataType = formats::DataType::kUint8;
  for (int z = 0; z < kDims[2]; ++z) {
    for (int y = 0; y < kDims[1]; ++y) {
      for (int x = 0; x < kDims[0]; ++x) labels.labels.push_back(regionAt(x, y, z));
    }
  }
  formats::writeLabelImage(image.string(), labels);
  std::string table = image.string();
  table.replace(table.rfind(".nii.gz"), 7, ".tsv");
  std::ofstream(table) << "index\tname\n0\tbackground\n1\tA\n2\tB\n3\tC-left\n";
}

void writeTo(const fs::path& folder) {
  writeBold(folder / "bold1.nii.gz", 1);
  writeBold(folder / "bold2.nii.gz", 2);
  writeMask(folder / "mask.nii.gz");
  writeRegions(folder / "dseg.nii.gz");
  std::ofstream(folder / "events.tsv")
      << "onset\tduration\ttrial_type\n20\t60\tface\n100\t60\thouse\n180\t60\tface\n";
}

std::string request(const std::string& settings, const std::string& more) {
  return "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" + settings +
         "\n"
         "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\nevents = 'events.tsv'\n"
         "[[run]]\nname = 'run2'\nbold = 'bold2.nii.gz'\nmask = 'mask.nii.gz'\nevents = 'events.tsv'\n"
         "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = 'all'\n"
         "[[condition]]\nname = 'whole'\nwhole_run = true\n"
         "[[condition]]\nname = 'face'\ntrial_types = ['face']\n" +
         more;
}

}  // namespace small_study
