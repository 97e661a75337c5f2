// Checksums that say which file it was.
#ifndef TAVMAP_FORMATS_CHECKSUM_H
#define TAVMAP_FORMATS_CHECKSUM_H

#include <string>

namespace formats {

// SHA-256 of the file's bytes, 64 hexadecimal digits in lower case. Throws FileError.
[[nodiscard]] std::string sha256Of(const std::string& path);

}  // namespace formats

#endif
