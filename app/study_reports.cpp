#include "app/study_reports.h"

#include <fmt/core.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>

#include "report/report.h"
#include "report/reports.h"
#include "report/study_outputs.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostNamed = 5;

void write(const std::string& what, const std::function<std::string()>& page, StudyReports& reports) {
  try {
    reports.pages.push_back(page());
  } catch (const std::exception& error) {
    reports.failures.push_back(
        fmt::format("{}: the report cannot be written ({}); the results are complete, `tavmap "
                    "report` makes it from them",
                    what, error.what()));
    std::cerr << "tavmap: " << reports.failures.back() << "\n";
  }
}

bool hasOutputs(const study::OutputRequest& output) {
  if (!fs::is_directory(output.folder)) return false;
  const std::vector<std::string> prefixes = report::prefixesIn(output.folder);
  return std::find(prefixes.begin(), prefixes.end(), output.prefix) != prefixes.end();
}

}  // namespace

StudyReports writeReports(const std::vector<study::Request>& requests, const study::StudyOptions& options) {
  StudyReports reports;
  for (const study::Request& request : requests) {
    if (!hasOutputs(request.output)) continue;
    write(
        request.title,
        [&] { return report::writeReport(request.output.folder, request.output.prefix, options.jobs); },
        reports);
  }
  if (!options.datasetFolder.empty() && !reports.pages.empty())
    write(
        options.datasetFolder, [&] { return report::writeIndex(options.datasetFolder); }, reports);
  return reports;
}

void printReports(const StudyReports& reports, std::ostream& out) {
  const std::size_t first = reports.pages.size() > kMostNamed ? reports.pages.size() - 1 : 0;
  for (std::size_t i = first; i < reports.pages.size(); ++i) out << "Report: " << reports.pages[i] << "\n";
}

nlohmann::ordered_json withReports(nlohmann::ordered_json summary, const StudyReports& reports) {
  summary["Reports"] = reports.pages;
  return summary;
}

}  // namespace app
