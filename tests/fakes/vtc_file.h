// Writes VTC files for tests, field by field, so that a test can also write wrong ones.
#ifndef TAVMAP_TESTS_FAKES_VTC_FILE_H
#define TAVMAP_TESTS_FAKES_VTC_FILE_H

#include <cstdint>
#include <string>
#include <vector>

namespace fakes {

struct VtcSpec {
  std::int16_t version = 3;
  std::string sourceName = "run.fmr";
  std::int16_t nrOfLinkedProtocols = 1;  // version 3 and up
  std::string protocolName = "run.prt";
  std::int16_t dataType = 1;  // version 3 and up; 2: floats
  std::int16_t nrOfVolumes = 10;
  std::int16_t resolution = 3;
  std::int16_t xStart = 57, xEnd = 66, yStart = 52, yEnd = 61, zStart = 59, zEnd = 68;
  std::uint8_t code1 = 1, code2 = 3;  // version 3 and up
  float tr = 2000.0F;

  [[nodiscard]] int dimX() const { return (xEnd - xStart) / resolution; }
  [[nodiscard]] int dimY() const { return (yEnd - yStart) / resolution; }
  [[nodiscard]] int dimZ() const { return (zEnd - zStart) / resolution; }
  [[nodiscard]] std::size_t nrOfVoxels() const {
    return static_cast<std::size_t>(dimX()) * static_cast<std::size_t>(dimY()) *
           static_cast<std::size_t>(dimZ());
  }
};

// A box of x * y * z cells of resolution 1 that starts at 0.
[[nodiscard]] VtcSpec cellGrid(int x, int y, int z, int nrOfVolumes);

// The bytes of the header alone.
[[nodiscard]] std::string vtcHeaderBytes(const VtcSpec& spec);

// Writes header and data; `values` in file order: [z][y][x][volume]. 16-bit data are stored
// modulo 65536, as floats otherwise (dataType 2).
void writeVtc(const std::string& path, const VtcSpec& spec, const std::vector<float>& values);

void writeBytes(const std::string& path, const std::string& bytes);

}  // namespace fakes

#endif
