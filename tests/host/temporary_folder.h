// A folder of a test's own, removed with all it holds.
#ifndef TAVMAP_TESTS_HOST_TEMPORARY_FOLDER_H
#define TAVMAP_TESTS_HOST_TEMPORARY_FOLDER_H

#include <string>

#include "tests/fakes/vtc_file.h"

namespace host_test {

struct TemporaryFolder : fakes::TempFolder {
  std::string operator/(const std::string& name) const { return file(name); }

  // Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& content) const {
    fakes::writeBytes(file(name), content);
    return file(name);
  }
};

inline std::string contentOf(const std::string& path) {
  return fakes::readBytes(path);
}

}  // namespace host_test

#endif
