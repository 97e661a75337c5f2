#include "study/dataset_files.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "formats/table.h"
#include "results/dataset_description.h"
#include "results/output_folder.h"
#include "results/output_names.h"
#include "study/kept_request.h"

namespace study {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDescription = "dataset_description.json";

std::vector<fs::path> foldersIn(const fs::path& parts) {
  std::vector<fs::path> folders;
  if (!fs::is_directory(parts)) return folders;
  for (const fs::directory_entry& entry : fs::directory_iterator(parts))
    if (entry.is_directory()) folders.push_back(entry.path());
  std::sort(folders.begin(), folders.end());
  return folders;
}

void addFailures(const fs::path& file, std::vector<std::string>& failures) {
  if (!fs::exists(file)) return;
  const formats::Table table = formats::Table::read(file.string());
  const std::size_t message = table.require("message");
  for (std::size_t row = 0; row < table.rows(); ++row) failures.push_back(table.cell(row, message));
}

}  // namespace

void writeDatasetFiles(const Request& request, const std::string& version, const fs::path& folder) {
  writeUnlessForeign(folder / kDescription, datasetDescription(request, version).dump(2) + "\n");
  explainOutputFolder(folder);
}

void gatherDatasetFiles(const fs::path& folder, const fs::path& parts,
                        const std::vector<std::string>& titles) {
  const std::vector<fs::path> folders = foldersIn(parts);
  if (folders.empty()) return;
  StudyOutcome outcome;
  fs::path description;
  for (const fs::path& part : folders) {
    addFailures(part / kRequestFailuresFile, outcome.failures);
    if (fs::exists(part / kDescription)) description = part / kDescription;
  }
  keepRequestFailures(folder, titles, outcome);
  if (description.empty()) return;
  writeUnlessForeign(folder / kDescription, formats::readTextFile(description.string()));
  explainOutputFolder(folder);
}

}  // namespace study
