// The one exception of this layer: what happened to which file, and what the user can do.
#ifndef TAVMAP_FORMATS_FILE_ERROR_H
#define TAVMAP_FORMATS_FILE_ERROR_H

#include <stdexcept>
#include <string>

namespace formats {

// Whether the user's input is at fault (a program exits with 2) or the machine (exits with 1).
enum class Fault { kInput, kSystem };

// what() reads "PATH: reason. Remedy." `reason` and `remedy` are given without a full stop, the
// reason starting in lower case, the remedy in upper case.
class FileError : public std::runtime_error {
 public:
  FileError(std::string path, std::string reason, std::string remedy, Fault fault = Fault::kInput);

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& reason() const { return reason_; }
  [[nodiscard]] const std::string& remedy() const { return remedy_; }
  [[nodiscard]] Fault fault() const { return fault_; }

 private:
  std::string path_, reason_, remedy_;
  Fault fault_;
};

}  // namespace formats

#endif
