#include "bench/inference/peer.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"

namespace bench {

namespace fs = std::filesystem;

namespace {

formats::Image3D imageOf(const MadeGroup& group, const float* values) {
  formats::Image3D image;
  image.header.size = group.grid;
  for (int i = 0; i < 3; ++i) image.header.affine.at(i, i) = 2;
  image.header.sformCode = 1;
  image.values.assign(group.grid.voxels(), 0.0F);
  for (std::size_t i = 0; i < group.voxels.size(); ++i)
    image.values[group.voxels[i]] = values ? values[i] : 1;
  return image;
}

std::string programOf(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');)
    if (fs::exists(fs::path(folder) / name)) return fs::path(folder) / name;
  return {};
}

}  // namespace

bool isPeerInstalled() {
  return !programOf("mrclusterstats").empty() && !programOf("mrconvert").empty();
}

std::string writeForPeer(const MadeGroup& group) {
  const fs::path folder = fs::temp_directory_path() / "tavmap-bench-inference";
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::ofstream list(folder / "maps.txt"), design(folder / "design.txt"), contrast(folder / "contrast.txt");
  for (std::size_t row = 0; row < group.rows; ++row) {
    const std::string name = "map" + std::to_string(row) + ".nii";
    formats::writeImage(folder / name, imageOf(group, group.maps.data() + row * group.voxels.size()));
    list << name << '\n';
    design << "1\n";
  }
  contrast << "1\n";
  formats::writeImage(folder / "mask.nii", imageOf(group, nullptr));
  return folder;
}

Cost runPeer(const std::string& folder, int shuffles) {
  std::vector<std::string> arguments = {programOf("mrclusterstats")};
  for (const char* name : {"maps.txt", "design.txt", "contrast.txt", "mask.nii", "out"})
    arguments.push_back((fs::path(folder) / name).string());
  arguments.insert(arguments.end(),
                   {"-errors", "ise", "-nthreads", "2", "-force", "-nshuffles", std::to_string(shuffles)});
  return runChild(arguments);
}

std::vector<float> readPeerMap(const std::string& folder, const std::string& name, const MadeGroup& group) {
  const std::string made = fs::path(folder) / ("out" + name + ".mif"),
                    copy = fs::path(folder) / (name + ".nii");
  runChild({programOf("mrconvert"), made, copy, "-force"});
  const formats::Image3D image = formats::readImage(copy);
  std::vector<float> values;
  for (const std::size_t voxel : group.voxels) values.push_back(image.values[voxel]);
  return values;
}

}  // namespace bench
