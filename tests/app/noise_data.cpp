#include "tests/app/noise_data.h"

#include <cstdint>
#include <random>
#include <vector>

#include "tests/fakes/vtc_file.h"
#include "tests/host/sample_workspace.h"

namespace app_test {
namespace {

constexpr int kX = 8, kY = 6, kZ = 4, kVolumes = 120;

// Uniform noise of variance 1 that is the same on every machine.
class Noise {
 public:
  explicit Noise(std::uint32_t seed) : engine_(seed) {}
  float next() { return (static_cast<float>(engine_() >> 8U) / 16777216.0F - 0.5F) * 3.4641F; }

 private:
  std::mt19937 engine_;
};

// Voxels with x < 2 are "driver": one common course and little noise of their own. Voxels with
// x >= 4 repeat that course one volume later. The first slice lies below the inclusion threshold.
std::vector<float> runValues(const fakes::VtcSpec& spec, std::uint32_t seed) {
  Noise noise(seed);
  std::vector<float> driver(kVolumes);
  for (float& value : driver) value = noise.next();
  std::vector<float> values;
  for (std::size_t cell = 0; cell < spec.nrOfVoxels(); ++cell) {
    const std::size_t x = cell % kX;
    const float level = cell < std::size_t{kX} * kY ? 50.0F : 1000.0F;
    for (std::size_t v = 0; v < kVolumes; ++v) {
      const float led = x >= 4 && v > 0 ? 8.0F * driver[v - 1] : 0.0F;
      values.push_back(level + 10.0F * noise.next() + led + (x < 2 ? 30.0F * driver[v] : 0.0F));
    }
  }
  return values;
}

void writeRun(const std::string& path, std::uint32_t seed) {
  fakes::VtcSpec spec = fakes::cellGrid(kX, kY, kZ, kVolumes);
  spec.tr = 2000;
  spec.dataType = 2;
  fakes::writeVtc(path, spec, runValues(spec, seed));
}

}  // namespace

NoiseData::NoiseData() {
  folder.write("t1.nii", host_test::niftiBytes(kX, kY, kZ));
  writeRun(folder / "run1.vtc", 1);
  writeRun(folder / "run2.vtc", 2);
  folder.write("vois.json", R"({"talairach": false, "vois": [
    {"name": "driver", "voxels": [[0, 2, 2], [1, 2, 2], [0, 3, 2], [1, 3, 2]]},
    {"name": "other", "voxels": [[3, 1, 1], [3, 2, 1]]}]})");
  folder.write("events.tsv",
               "onset\tduration\ttrial_type\n0\t60\tface\n60\t60\thouse\n120\t60\tface\n180\t58\thouse\n");
  folder.write("volumes.tsv", "condition\tfirst_volume\tlast_volume\nfirst\t1\t60\nsecond\t61\t120\n");
  folder.write("TAVPlugin.ini", "NumSurrogateSimulations= 50\n");
}

}  // namespace app_test
