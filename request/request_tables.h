// The [[run]], [[reference]] and [[condition]] tables of a request file.
#ifndef TAVMAP_REQUEST_REQUEST_TABLES_H
#define TAVMAP_REQUEST_REQUEST_TABLES_H

#include <toml++/toml.h>

#include <filesystem>
#include <string>
#include <vector>

#include "request/request.h"
#include "request/toml_table.h"

namespace study {

// Where a request lies: its name for messages and the folder where relative paths start.
struct RequestPlace {
  std::string file;
  std::filesystem::path folder;
};

// All throw InputError. Named files must exist; the message names the nearest file of the folder.
[[nodiscard]] RunRequest parseRun(const toml::table& node, const RequestPlace& place, std::size_t number);
// [preparation]: how every run is prepared, without the files of any.
[[nodiscard]] RunRequest parsePreparation(const toml::table& node, const std::string& file);
[[nodiscard]] ReferenceRequest parseReference(const toml::table& node, const RequestPlace& place);
// runs: names that a condition may use.
[[nodiscard]] ConditionRequest parseCondition(const toml::table& node, const RequestPlace& place,
                                              const std::vector<std::string>& runs);

// The key's path, absolute or taken from the request's folder; empty when the key is absent.
[[nodiscard]] std::filesystem::path existingFile(const TomlTable& table, std::string_view key,
                                                 const RequestPlace& place);

}  // namespace study

#endif
