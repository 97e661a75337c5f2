#include "study/study_seed.h"

#include <fstream>
#include <random>

#include "formats/atomic_file.h"

namespace study {
namespace {

namespace fs = std::filesystem;

fs::path workFolderOf(const Request& request) {
  return request.output.workFolder.empty() ? request.output.folder / "work" : request.output.workFolder;
}

fs::path seedFile(const Request& request) {
  return workFolderOf(request) / (request.output.prefix + ".seed");
}

}  // namespace

std::optional<std::uint32_t> keptSeed(const Request& request) {
  std::ifstream kept(seedFile(request));
  std::uint32_t seed = 0;
  return kept >> seed ? std::optional(seed) : std::nullopt;
}

std::uint32_t drawnSeed(const Request& request) {
  if (const auto kept = keptSeed(request)) return *kept;
  const std::uint32_t seed = std::random_device{}() & 0x7fffffffU;
  fs::create_directories(workFolderOf(request));
  formats::writeTextFile(seedFile(request).string(), std::to_string(seed) + "\n");
  return seed;
}

}  // namespace study
