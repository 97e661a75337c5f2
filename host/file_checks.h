// What a file dialog never lets through, in words for the person who answers; empty when fine.
#ifndef TAVMAP_HOST_FILE_CHECKS_H
#define TAVMAP_HOST_FILE_CHECKS_H

#include <string>

#include "host/front_end.h"

namespace host {

[[nodiscard]] std::string problemWithFileToOpen(const FileQuestion& question, const std::string& path);
[[nodiscard]] std::string problemWithFileToSave(const FileQuestion& question, const std::string& path);

}  // namespace host

#endif
