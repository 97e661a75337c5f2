#include "host/completion.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "host/answer_parsing.h"

namespace host {
namespace {

namespace fs = std::filesystem;

bool isInsideCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

}  // namespace

std::vector<std::string> pathsFrom(const fs::path& folder, const std::string& typed) {
  const std::size_t slash = typed.rfind('/');
  const std::string begun = slash == std::string::npos ? typed : typed.substr(slash + 1);
  const std::string parent = slash == std::string::npos ? "" : typed.substr(0, slash + 1);
  std::vector<std::string> paths;
  std::error_code ignored;
  for (fs::directory_iterator entry(folder / parent, ignored), end; entry != end; entry.increment(ignored)) {
    const std::string name = entry->path().filename().string();
    if (!name.starts_with(begun) || (begun.empty() && name.starts_with('.'))) continue;
    paths.push_back(parent + name + (entry->is_directory(ignored) ? "/" : ""));
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::vector<std::string> namesFrom(const std::vector<std::string>& names, const std::string& typed) {
  std::vector<std::string> found;
  const std::string wanted = inSmallLetters(typed);
  std::copy_if(names.begin(), names.end(), std::back_inserter(found),
               [&](const std::string& name) { return inSmallLetters(name).starts_with(wanted); });
  return found;
}

std::string sharedBeginning(const std::vector<std::string>& choices) {
  std::size_t shared = choices.front().size();
  for (const std::string& choice : choices) {
    const auto end =
        std::mismatch(choices.front().begin(), choices.front().end(), choice.begin(), choice.end()).first;
    shared = std::min(shared, static_cast<std::size_t>(end - choices.front().begin()));
  }
  while (shared > 0 && shared < choices.front().size() && isInsideCharacter(choices.front()[shared]))
    --shared;
  return choices.front().substr(0, shared);
}

}  // namespace host
