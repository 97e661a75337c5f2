#include "formats/byte_source.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "formats/file_error.h"
#include "formats/gzip_reader.h"
#include "formats/system_calls.h"

namespace formats {
namespace {

class PlainFile : public ByteSource {
 public:
  explicit PlainFile(const std::string& path) : path_(path), fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (fd_ < 0) {
      throw FileError(path, fmt::format("cannot open the file ({})", std::strerror(errno)),
                      "Check the path and its permissions");
    }
  }
  ~PlainFile() override { ::close(fd_); }
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;

  std::size_t read(void* data, std::size_t bytes) override {
    auto* to = static_cast<char*>(data);
    std::size_t done = 0;
    while (done < bytes) {
      const ssize_t got = systemCalls().read(fd_, to + done, bytes - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) failReading();
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    return done;
  }

  [[nodiscard]] FileKind kind() {
    struct stat status {};
    if (::fstat(fd_, &status) != 0) failReading();
    if (S_ISDIR(status.st_mode)) {
      throw FileError(path_, "this is a folder, not a file", "Name a file in it");
    }
    unsigned char magic[2] = {0, 0};
    const bool gzip = read(magic, sizeof magic) == sizeof magic && magic[0] == 0x1f && magic[1] == 0x8b;
    return {static_cast<std::uint64_t>(status.st_size), gzip};
  }

 private:
  [[noreturn]] void failReading() const {
    throw FileError(path_, fmt::format("cannot read the file ({})", std::strerror(errno)), "Check the disk",
                    Fault::kSystem);
  }

  std::string path_;
  int fd_;
};

}  // namespace

std::unique_ptr<ByteSource> openPlain(const std::string& path) {
  (void)kindOfFile(path);
  return std::make_unique<PlainFile>(path);
}

std::unique_ptr<ByteSource> openPlainOrGzip(const std::string& path) {
  const bool gzip = kindOfFile(path).gzip;
  auto plain = std::make_unique<PlainFile>(path);
  if (!gzip) return plain;
  return std::make_unique<GzipReader>(std::move(plain), path);
}

FileKind kindOfFile(const std::string& path) {
  return PlainFile(path).kind();
}

}  // namespace formats
