#include "bench/study/made_study.h"

#include <cmath>
#include <fstream>
#include <random>
#include <vector>

#include "formats/nifti_writer.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRegions = 20;

formats::ImageHeader headerOf(const MadeRun& run) {
  formats::ImageHeader header;
  header.size = run.size;
  header.volumes = run.volumes;
  header.series = true;
  header.dataType = run.type;
  header.trMs = 2000;
  return header;
}

// Distance from the grid's centre, 1 at the border of its box.
double radius(const formats::GridSize& size, int x, int y, int z) {
  return std::hypot(2.0 * x / size.x - 1, 2.0 * y / size.y - 1, 2.0 * z / size.z - 1);
}

std::vector<float> baseOf(const formats::GridSize& size, bool isWhole) {
  std::vector<float> base;
  for (int z = 0; z < size.z; ++z) {
    for (int y = 0; y < size.y; ++y) {
      for (int x = 0; x < size.x; ++x) {
        const double r = radius(size, x, y, z);
        base.push_back(static_cast<float>(isWhole || r < 0.96 ? 900 + 300 * std::cos(4 * r) : 15));
      }
    }
  }
  return base;
}

void writeBold(const fs::path& path, const MadeRun& run) {
  formats::NiftiWriter writer(path.string(), headerOf(run));
  const std::vector<float> base = baseOf(run.size, run.isWhole);
  std::vector<float> state(base.size(), 0.0F), volume(base.size());
  std::minstd_rand random(7);
  const auto uniform = [&] { return static_cast<float>(random() % 4096) / 2048.0F - 1.0F; };
  for (int t = 0; t < run.volumes; ++t) {
    for (std::size_t i = 0; i < base.size(); ++i) {
      state[i] = 0.5F * state[i] + uniform() + uniform();
      volume[i] = base[i] + 0.02F * base[i] * state[i];
    }
    writer.writeValues(volume.data(), volume.size());
  }
  writer.commit();
}

// Cubes of 27 voxels around the centre, four in a row.
void writeLabels(const fs::path& path, const MadeRun& run) {
  formats::LabelImage image;
  image.header = headerOf(run);
  image.header.volumes = 1;
  image.header.series = false;
  image.header.dataType = formats::DataType::kUint8;
  image.labels.assign(run.size.voxels(), 0);
  for (int region = 0; region < kRegions; ++region) {
    const int x = run.size.x / 2 - 10 + 6 * (region % 4), y = run.size.y / 2 - 10 + 6 * (region / 4);
    for (int i = 0; i < 27; ++i) {
      const int cx = x + i % 3, cy = y + i / 3 % 3, cz = run.size.z / 2 + i / 9;
      image.labels[run.size.index(cx, cy, cz)] = region + 1;
    }
  }
  formats::writeLabelImage(path.string(), image);
}

fs::path runFolder(const fs::path& folder, const MadeRun& run) {
  fs::create_directories(folder / run.name);
  return folder / run.name;
}

}  // namespace

fs::path boldFile(const fs::path& folder, const MadeRun& run) {
  const fs::path path = runFolder(folder, run) / "bold.nii.gz";
  if (!fs::exists(path)) writeBold(path, run);
  return path;
}

fs::path requestFile(const fs::path& folder, const MadeRun& run, int references, const char* name) {
  const fs::path bold = boldFile(folder, run), labels = bold.parent_path() / "labels.nii.gz";
  if (!fs::exists(labels)) writeLabels(labels, run);
  const fs::path path = bold.parent_path() / (std::string(name) + ".toml");
  std::ofstream out(path);
  out << "prefix = \"made\"\nfolder = \"" << name
      << "\"\nseed = 1\n[[run]]\nname = \"run\"\nbold = \"bold.nii.gz\"\n"
      << "[[reference]]\nlabel_image = \"labels.nii.gz\"\nlabels = [";
  for (int i = 1; i <= references; ++i) out << (i > 1 ? ", " : "") << i;
  out << "]\n[[condition]]\nname = \"whole\"\nwhole_run = true\n";
  return path;
}

}  // namespace bench
