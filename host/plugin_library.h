// A plug-in's shared library, loaded as the desktop host loads it: every symbol resolved at once,
// none made visible to other libraries.
//
// All failures are RunEnded (bad input) with one message that names the file, the reason and the
// remedy. The library is closed by the destructor, so every object of the plug-in, exceptions
// included, must be gone by then.
#ifndef TAVMAP_HOST_PLUGIN_LIBRARY_H
#define TAVMAP_HOST_PLUGIN_LIBRARY_H

#include <memory>
#include <string>

#include "hostapi/CNZQPluginInterface.h"

namespace host {

class PluginLibrary {
 public:
  explicit PluginLibrary(const std::string& path);
  ~PluginLibrary();
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }  // absolute

  // What the plug-in says of itself, as HTML fragments. Empty when it gives a null pointer.
  [[nodiscard]] std::string name() const { return text("getPluginName"); }
  [[nodiscard]] std::string description() const { return text("getPluginDescription"); }
  [[nodiscard]] std::string author() const { return text("getAuthor"); }
  [[nodiscard]] std::string helpFile() const { return text("getHelpFile"); }

  // A new plug-in object. What the plug-in throws passes through.
  [[nodiscard]] std::unique_ptr<CNZQPluginInterface> create() const;

 private:
  void* symbol(const char* name) const;
  [[nodiscard]] std::string text(const char* name) const;
  void requireExports() const;

  std::string path_;
  void* handle_ = nullptr;
};

}  // namespace host

#endif
