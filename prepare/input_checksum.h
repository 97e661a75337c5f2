// Checksums of inputs, kept so that a large image is read for it once and not by every worker.
#ifndef TAVMAP_PREPARE_INPUT_CHECKSUM_H
#define TAVMAP_PREPARE_INPUT_CHECKSUM_H

#include <filesystem>
#include <string>

namespace study {

// SHA-256 of the file, 64 hexadecimal digits: that which "checksums" in the work folder has for this path,
// size and time of change, or that of its bytes, which is kept there then. Throws formats::FileError.
[[nodiscard]] std::string inputChecksum(const std::filesystem::path& file,
                                        const std::filesystem::path& workFolder);

}  // namespace study

#endif
