#include "host/plugin_library.h"

#include <dlfcn.h>
#include <fmt/core.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "host/run_ended.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 7> kExports = {"getPluginName", "getPluginDescription",
                                                 "getAuthor",     "getHelpFile",
                                                 "getGUIScript",  "getRegistrationOfGenericComponentLoader",
                                                 "createPlugin"};

[[noreturn]] void refuse(const std::string& path, const std::string& why, const std::string& remedy) {
  throw RunEnded{kExitBadInput, fmt::format("Cannot load the plug-in {}: {}. {}", path, why, remedy)};
}

void requireLibraryFile(const std::string& path) {
  std::error_code ignored;
  if (!fs::exists(path, ignored)) refuse(path, "there is no such file", "Check the path.");
  if (!fs::is_regular_file(path, ignored))
    refuse(path, "it is not a file", "Give the path of the .so itself.");
  std::ifstream file(path, std::ios::binary);
  if (!file) refuse(path, "it cannot be read", "Check its permissions.");
  std::array<char, 4> magic{};
  file.read(magic.data(), magic.size());
  if (!file || magic != std::array<char, 4>{'\x7f', 'E', 'L', 'F'})
    refuse(path, "it is not a shared library", "Give a plug-in built for Linux, such as TAVPlugin.so.");
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path)
    : path_(fs::absolute(path).lexically_normal().string()) {
  requireLibraryFile(path_);
  // An absolute path keeps dlopen from searching the library folders for a bare file name.
  handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* reason = dlerror();
    refuse(path_, reason == nullptr ? "the loader gives no reason" : reason,
           "It must be built for this machine and need no library that is not installed.");
  }
  try {
    requireExports();
  } catch (...) {
    dlclose(handle_);
    throw;
  }
}

PluginLibrary::~PluginLibrary() {
  dlclose(handle_);
}

void* PluginLibrary::symbol(const char* name) const {
  return dlsym(handle_, name);
}

void PluginLibrary::requireExports() const {
  std::string missing;
  for (const char* name : kExports)
    if (symbol(name) == nullptr) missing += (missing.empty() ? "" : ", ") + std::string(name);
  if (!missing.empty())
    refuse(path_, "it does not export " + missing,
           "It is no plug-in of this kind, or was built without its exports.");
}

std::string PluginLibrary::text(const char* name) const {
  const char* value = reinterpret_cast<const char* (*)()>(symbol(name))();
  return value == nullptr ? std::string() : std::string(value);
}

std::unique_ptr<CNZQPluginInterface> PluginLibrary::create() const {
  auto* create = reinterpret_cast<CNZQPluginInterface* (*)()>(symbol("createPlugin"));
  std::unique_ptr<CNZQPluginInterface> plugin(create());
  if (plugin == nullptr)
    refuse(path_, "createPlugin returned a null pointer",
           "The plug-in could not be started; ask its makers.");
  return plugin;
}

}  // namespace host
