#include "tests/host/sample_workspace.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/fakes/vtc_file.h"

namespace host_test {
namespace {

constexpr std::size_t kHeaderBytes = 352;  // with the four bytes that say "no extension"

template <typename Value>
void put(std::string& bytes, std::size_t offset, Value value) {
  std::memcpy(&bytes[offset], &value, sizeof value);
}

void putRow(std::string& header, std::size_t offset, float x, float y, float z, float t) {
  const float row[] = {x, y, z, t};
  std::memcpy(&header[offset], row, sizeof row);
}

}  // namespace

std::string niftiBytes(int x, int y, int z) {
  std::string header(kHeaderBytes, '\0');
  put(header, 0, std::int32_t{348});
  const std::int16_t dims[] = {
      3, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), static_cast<std::int16_t>(z), 1, 1, 1,
      1};
  std::memcpy(&header[40], dims, sizeof dims);
  put(header, 70, std::int16_t{2});  // unsigned bytes
  put(header, 72, std::int16_t{8});
  const float pixdim[] = {1, 2, 2, 2, 0, 0, 0, 0};
  std::memcpy(&header[76], pixdim, sizeof pixdim);
  put(header, 108, 352.0F);           // where the voxels begin
  put(header, 123, char{2});          // millimetres
  put(header, 254, std::int16_t{1});  // sform: scanner space
  putRow(header, 280, 2, 0, 0, -10);
  putRow(header, 296, 0, 2, 0, -20);
  putRow(header, 312, 0, 0, 2, -30);
  std::memcpy(&header[344], "n+1", 4);
  return header +
         std::string(static_cast<std::size_t>(x) * static_cast<std::size_t>(y) * static_cast<std::size_t>(z),
                     '\0');
}

std::string SampleFiles::vtc(const std::string& name) const {
  fakes::VtcSpec spec = fakes::cellGrid(kSampleX, kSampleY, kSampleZ, kSampleVolumes);
  spec.tr = kSampleTrMs;
  std::vector<float> values;
  for (std::size_t cell = 0; cell < spec.nrOfVoxels(); ++cell)
    for (int v = 0; v < kSampleVolumes; ++v)
      values.push_back(1000.0F + 10.0F * static_cast<float>(cell) + static_cast<float>(v));
  fakes::writeVtc(folder / name, spec, values);
  return folder / name;
}

std::string SampleFiles::vois() const {
  return folder.write("vois.json", R"({"talairach": false, "vois": [
    {"name": "LH-V1", "voxels": [[0, 0, 0], [1, 0, 0]]},
    {"name": "RH-V1", "voxels": [[3, 2, 1]]}]})");
}

std::string SampleFiles::events() const {
  return folder.write("events.tsv", "onset\tduration\ttrial_type\n0\t2\tface\n3\t2\tface\n10\t4\thouse\n");
}

std::string SampleFiles::volumeTable() const {
  return folder.write("volumes.tsv", "condition\tfirst_volume\tlast_volume\nrest\t1\t6\ntask\t7\t12\n");
}

void openSample(const SampleFiles& files, host::Workspace& workspace) {
  workspace.openAnatomy(files.anatomy());
  workspace.linkVtc(files.vtc());
  workspace.loadVois(files.vois(), "");
  workspace.loadProtocol(files.volumeTable());
}

}  // namespace host_test
