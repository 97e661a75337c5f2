#include "study/kept_request.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "formats/atomic_file.h"
#include "formats/table.h"
#include "request/request_text.h"
#include "results/output_names.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// No absolute path of this machine goes along when results are handed on.
class RelativePaths {
 public:
  explicit RelativePaths(fs::path folder) : folder_(std::move(folder)) {}
  void operator()(fs::path& path) const {
    if (!path.empty()) path = fs::absolute(path).lexically_normal().lexically_relative(folder_);
  }

 private:
  fs::path folder_;
};

Request relativeTo(const fs::path& folder, Request request) {
  const RelativePaths make(fs::absolute(folder).lexically_normal());
  for (RunRequest& run : request.runs)
    for (fs::path* path : {&run.bold, &run.mask, &run.events, &run.confounds}) make(*path);
  for (ReferenceRequest& reference : request.references)
    for (fs::path* path : {&reference.image, &reference.table}) make(*path);
  for (auto& [name, dataset] : request.datasets) make(dataset);
  make(request.anatomy);
  make(request.output.workFolder);
  request.output.folder = ".";
  request.title = requestFileOf(request.output.prefix);
  return request;
}

// Table with a header; removed when it has no row.
void writeRows(const fs::path& file, const std::string& header, const std::string& rows) {
  if (rows.empty())
    fs::remove(file);
  else
    formats::writeTextFile(file.string(), header + rows);
}

std::string rowOf(const std::string& first, const std::string& second) {
  return fmt::format("{}\t{}\n", formats::tsvCell(first), formats::tsvCell(second));
}

std::string titleOf(const std::string& failure, const std::vector<std::string>& titles) {
  for (const std::string& title : titles)
    if (failure.starts_with(title + ":")) return title;
  return failure.substr(0, failure.find(':'));
}

std::string rowsOfOthers(const fs::path& file, const std::vector<std::string>& titles) {
  std::string rows;
  if (!fs::exists(file)) return rows;
  const formats::Table table = formats::Table::read(file.string());
  const std::size_t request = table.require("request"), message = table.require("message");
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const std::string& title = table.cell(row, request);
    if (std::find(titles.begin(), titles.end(), title) == titles.end())
      rows += rowOf(title, table.cell(row, message));
  }
  return rows;
}

}  // namespace

void keepRequest(const StudyPlan& plan) {
  const fs::path folder = plan.request.output.folder;
  Request request = relativeTo(folder, plan.request);
  request.seed = plan.seed;
  formats::writeTextFile((folder / requestFileOf(plan.request.output.prefix)).string(), requestText(request));
}

void keepFailures(const StudyPlan& plan, const StudyOutcome& outcome) {
  std::string rows;
  for (const ReferenceOutcome& reference : outcome.references)
    if (!reference.done && reference.request == plan.request.title)
      rows += rowOf(reference.reference, reference.message);
  writeRows(plan.request.output.folder / failuresFileOf(plan.request.output.prefix), "reference\tmessage\n",
            rows);
}

void keepRequestFailures(const fs::path& folder, const std::vector<std::string>& titles,
                         const StudyOutcome& outcome) {
  fs::create_directories(folder);
  const fs::path file = folder / kRequestFailuresFile;
  std::vector<std::string> asked = titles, failures = outcome.failures;
  std::sort(failures.begin(), failures.end());  // they arrive as workers finish
  std::string rows;
  for (const std::string& failure : failures) {
    asked.push_back(titleOf(failure, titles));
    rows += rowOf(asked.back(), failure);
  }
  writeRows(file, "request\tmessage\n", rowsOfOthers(file, asked) + rows);
}

}  // namespace study
