#include "study/label_map.h"

#include <fmt/core.h>

#include "formats/atomic_file.h"
#include "formats/nifti_writer.h"
#include "results/map_findings.h"

namespace study {

void writeLabelMap(const Staging& staging, const std::string& image, const std::string& table,
                   const formats::ImageHeader& run, const std::vector<std::uint8_t>& codes,
                   const std::vector<std::string>& names) {
  formats::NiftiWriter writer(staging.path(image).string(), statusHeader(run), formats::Durability::kCached);
  writer.writeStored(codes.data(), codes.size());
  writer.commit();
  std::string text = "index\tname\n";
  for (std::size_t code = 0; code < names.size(); ++code) text += fmt::format("{}\t{}\n", code, names[code]);
  formats::writeTextFile(staging.path(table).string(), text, formats::Durability::kCached);
}

}  // namespace study
