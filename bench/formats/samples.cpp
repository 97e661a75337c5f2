#include "bench/formats/samples.h"

#include <zlib.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "formats/byte_source.h"
#include "formats/nifti_writer.h"

namespace bench {
namespace {

namespace fs = std::filesystem;
using formats::DataType;
using formats::GridSize;

constexpr GridSize kRunSize{80, 80, 35};
constexpr int kVolumes = 156;

// Distance of every voxel from the middle; the head ends at 1.
std::vector<double> distances(const GridSize& size) {
  std::vector<double> distances;
  for (int z = 0; z < size.z; ++z) {
    for (int y = 0; y < size.y; ++y) {
      for (int x = 0; x < size.x; ++x) {
        distances.push_back(
            std::hypot(2.5 * x / size.x - 1.25, 2.22 * y / size.y - 1.11, 2.06 * z / size.z - 1.03));
      }
    }
  }
  return distances;
}

formats::ImageHeader headerOf(DataType type, int volumes) {
  formats::ImageHeader header;
  header.size = kRunSize;
  header.volumes = volumes;
  header.series = volumes > 1;
  header.dataType = type;
  header.trMs = volumes > 1 ? 2000 : 0;
  return header;
}

DataType typeOf(Run run) {
  return run == Run::kScanner ? DataType::kInt16 : DataType::kFloat32;
}

// Sum of two even distributions, in steps that 16 bits show and floats do not.
float noiseOf(std::minstd_rand& random, Run run) {
  const unsigned steps = run == Run::kScanner ? 64 : 4096;
  return static_cast<float>(random() % steps + random() % steps) / static_cast<float>(steps) - 1.0F;
}

void writeRun(const std::string& path, Run run) {
  const std::vector<double> r = distances(kRunSize);
  std::vector<float> volume(r.size());
  std::minstd_rand random(7);
  formats::NiftiWriter writer(path, headerOf(typeOf(run), kVolumes), formats::Durability::kCached);
  for (int t = 0; t < kVolumes; ++t) {
    for (std::size_t i = 0; i < r.size(); ++i) {
      const float base = static_cast<float>(r[i] < 1 ? 900 + 300 * std::cos(4 * r[i]) : 15);
      const float noise = noiseOf(random, run);
      const bool isEmpty = run == Run::kStripped && r[i] >= 1;
      volume[i] = isEmpty ? 0.0F : base * (1.0F + 0.02F * noise) + 8 * noise + 8;
    }
    writer.writeValues(volume.data(), volume.size());
  }
  writer.commit();
}

void compressByZlib(const std::string& from, const std::string& to) {
  const std::string unfinished = to + ".part";
  const auto source = formats::openPlain(from);
  const gzFile file = gzopen(unfinished.c_str(), "wb6");
  std::vector<char> piece(std::size_t{1} << 20U);
  while (const std::size_t got = source->read(piece.data(), piece.size())) {
    gzwrite(file, piece.data(), static_cast<unsigned>(got));
  }
  if (gzclose(file) != Z_OK) throw std::runtime_error("cannot write " + unfinished);
  fs::rename(unfinished, to);
}

void writeMask(const std::string& path) {
  std::vector<float> mask;
  for (const double r : distances(kRunSize)) mask.push_back(r < 1 ? 1.0F : 0.0F);
  formats::NiftiWriter writer(path, headerOf(DataType::kUint8, 1), formats::Durability::kCached);
  writer.writeValues(mask.data(), mask.size());
  writer.commit();
}

}  // namespace

std::string scratchFile(const std::string& name) {
  const char* named = std::getenv("TAVMAP_BENCH_FOLDER");
  const fs::path folder = named != nullptr ? fs::path(named) : fs::temp_directory_path() / "tavmap-bench";
  fs::create_directories(folder);
  return (folder / name).string();
}

const char* nameOf(Run run) {
  return run == Run::kScanner ? "scanner" : run == Run::kPreprocessed ? "preprocessed" : "stripped";
}

std::string sampleRun(Run run) {
  const std::string plain = scratchFile(std::string(nameOf(run)) + ".nii"), path = plain + ".gz";
  if (fs::exists(path)) return path;
  writeRun(plain, run);
  compressByZlib(plain, path);
  fs::remove(plain);
  return path;
}

std::string sampleMask() {
  const std::string path = scratchFile("mask.nii.gz");
  if (!fs::exists(path)) writeMask(path);
  return path;
}

std::vector<float> sampleMap() {
  std::mt19937 random(3);
  std::normal_distribution<float> noise(0, 0.01F);
  std::vector<float> map;
  for (const double r : distances(kMapSize)) map.push_back(r < 1 ? noise(random) : 0.0F);
  return map;
}

std::vector<std::uint8_t> sampleStatus() {
  std::mt19937 random(4);
  std::vector<std::uint8_t> codes;
  for (const double r : distances(kMapSize)) {
    const std::uint8_t inside = random() % 97 == 0 ? 3 : 1;
    codes.push_back(r < 1 ? inside : 0);
  }
  return codes;
}

}  // namespace bench
