// Request files (TOML): reading one, and the commented example that `tavmap run --example` prints.
#ifndef TAVMAP_REQUEST_REQUEST_FILE_H
#define TAVMAP_REQUEST_REQUEST_FILE_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "request/request.h"

namespace study {

// Reads and checks a request. Relative paths are taken from the file's folder. Throws InputError
// with file, line and, for a misspelt name, the nearest known one. Files named in the request must
// exist; labels are looked up later, when the images are read.
[[nodiscard]] Request readRequestFile(const std::filesystem::path& file);

// The same from a text; `name` stands in messages, `folder` is where relative paths start.
[[nodiscard]] Request parseRequest(std::string_view text, const std::string& name,
                                   const std::filesystem::path& folder);

// A request without runs, for the BIDS command line, which finds them itself: [settings], [connectome],
// [[reference]], [[condition]] (for every run), and [preparation] with the keys of [[run]] that say
// how runs are prepared.
struct RequestTemplate {
  Settings settings;
  ConnectomeSettings connectome;
  std::optional<std::uint32_t> seed;
  RunRequest preparation;  // without files
  std::vector<ReferenceRequest> references;
  std::vector<ConditionRequest> conditions;  // without parts
};
[[nodiscard]] RequestTemplate readRequestTemplate(const std::filesystem::path& file);
[[nodiscard]] RequestTemplate parseRequestTemplate(std::string_view text, const std::string& name,
                                                   const std::filesystem::path& folder);

// A request with every key explained, which runs as it stands on examples/oneback-small.
[[nodiscard]] std::string exampleRequest();

}  // namespace study

#endif
