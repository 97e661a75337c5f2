#include "formats/atomic_file.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "formats/byte_source.h"
#include "formats/file_error.h"
#include "formats/file_lock.h"
#include "formats/system_calls.h"

namespace formats {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{256} << 10U;
constexpr std::size_t kDirectBytes = std::size_t{64} << 10U;  // not worth a copy into the buffer
constexpr std::size_t kHoleBytes = kDirectBytes;              // shorter ones are not worth the calls either
constexpr std::size_t kPieces = 64;                           // rows per call
constexpr int kNewFileMode = 0666;                            // less the user's umask

std::string folderOf(const std::string& path) {
  const auto folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

// ".tavmap.PID-N.part" beside the final name, which no other file of this process gets, whichever thread
// asks. Without the final name in it, since that may be as long as names can be.
std::string nextTemporaryName(const std::string& path) {
  static std::atomic<unsigned> counter = 0;
  const std::string name = fmt::format(".tavmap.{}-{}.part", ::getpid(), ++counter);
  return (std::filesystem::path(path).parent_path() / name).string();
}

// The rows from byte `done` of all of them on, as many as there are places in `pieces`.
int gatherRows(const char* rows, std::size_t count, std::size_t rowBytes, std::size_t stride,
               std::size_t done, iovec (&pieces)[kPieces]) {
  int gathered = 0;
  std::size_t within = done % rowBytes;
  for (std::size_t row = done / rowBytes; row < count && gathered < static_cast<int>(kPieces); ++row) {
    // The call only reads what an iovec points to.
    pieces[gathered++] = {const_cast<char*>(rows) + row * stride + within, rowBytes - within};
    within = 0;
  }
  return gathered;
}

const char* remedyFor(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "Free some space or choose another folder";
    case ENOENT:
    case ENOTDIR:
      return "Create the folder first";
    case EACCES:
    case EPERM:
    case EROFS:
      return "Choose a folder that you may write to";
    default:
      return "Check the disk and the path";
  }
}

}  // namespace

AtomicFile::AtomicFile(std::string path, Durability durability)
    : path_(std::move(path)), durability_(durability) {
  if (std::filesystem::is_directory(path_)) {
    throw FileError(path_, "cannot write the file, there is a folder of that name", "Choose another name");
  }
  openNameless(folderOf(path_));
  while (fd_ < 0) createNamed();
  buffer_.reserve(kBufferBytes);
}

AtomicFile::~AtomicFile() {
  discard();
}

// A nameless file vanishes with the process, however that ends.
void AtomicFile::openNameless(const std::string& folder) {
#ifdef O_TMPFILE
  fd_ = systemCalls().open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, kNewFileMode);
#else
  (void)folder;
#endif
}

// Leaves no file when the next name must be tried: a process of the same number in another container has this
// one, or the file was swept away before it was locked.
void AtomicFile::createNamed() {
  temporaryPath_ = nextTemporaryName(path_);
  fd_ = systemCalls().open(temporaryPath_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
  if (fd_ < 0) {
    temporaryPath_.clear();
    if (errno == EEXIST) return;
    fail("create");
  }
  const FileLock lock = tryLock(fd_);
  if (lock == FileLock::kUnknown || (lock == FileLock::kMine && leadsTo(temporaryPath_, fd_))) return;
  discard();
}

void AtomicFile::giveName() {
  const std::string handle = "/proc/self/fd/" + std::to_string(fd_);
  (void)tryLock(fd_);  // without a name nobody else can have it
  int result = 0;
  do {
    temporaryPath_ = nextTemporaryName(path_);
    result = ::linkat(AT_FDCWD, handle.c_str(), AT_FDCWD, temporaryPath_.c_str(), AT_SYMLINK_FOLLOW);
  } while (result != 0 && errno == EEXIST);
  if (result == 0) return;
  temporaryPath_.clear();
  fail("name");
}

void AtomicFile::write(const void* data, std::size_t bytes) {
  const auto* from = static_cast<const char*>(data);
  if (bytes < kDirectBytes && buffer_.size() + bytes <= kBufferBytes) {
    buffer_.insert(buffer_.end(), from, from + bytes);
    return;
  }
  flush();
  if (bytes >= kDirectBytes) {
    writeThrough(from, bytes);
  } else {
    buffer_.assign(from, from + bytes);
  }
}

void AtomicFile::flush() {
  writeThrough(buffer_.data(), buffer_.size());
  buffer_.clear();
}

void AtomicFile::writeThrough(const char* data, std::size_t bytes) {
  while (bytes > 0) {
    const ssize_t written = systemCalls().write(fd_, data, bytes);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail("write");
    data += written;
    bytes -= static_cast<std::size_t>(written);
  }
}

void AtomicFile::reserve(std::size_t bytes) {
  int refused = 0;
  do {
    refused = systemCalls().fallocate(fd_, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes));
  } while (refused != 0 && errno == EINTR);
  if (refused != 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG)) fail("write");
}

void AtomicFile::skip(std::size_t bytes) {
  if (bytes < kHoleBytes) {
    static constexpr char kZeros[kHoleBytes] = {};
    return write(kZeros, bytes);
  }
  flush();
  if (::lseek(fd_, static_cast<off_t>(bytes), SEEK_CUR) < 0) fail("write");
  endsInHole_ = true;
}

void AtomicFile::writeRowsAt(const char* rows, std::size_t count, std::size_t rowBytes, std::size_t stride,
                             std::size_t offset) {
  for (std::size_t done = 0; done < count * rowBytes;) {
    iovec pieces[kPieces];
    const int gathered = gatherRows(rows, count, rowBytes, stride, done, pieces);
    const ssize_t written = systemCalls().pwritev(fd_, pieces, gathered, static_cast<off_t>(offset + done));
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail("write");
    done += static_cast<std::size_t>(written);
  }
}

void AtomicFile::readAt(void* data, std::size_t bytes, std::size_t offset) {
  auto* to = static_cast<char*>(data);
  for (std::size_t done = 0; done < bytes;) {
    const ssize_t got = systemCalls().pread(fd_, to + done, bytes - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got == 0) errno = EIO;  // the file is shorter than what was written to it
    if (got <= 0) fail("read back");
    done += static_cast<std::size_t>(got);
  }
}

void AtomicFile::commit() {
  flush();
  if (endsInHole_ && ::ftruncate(fd_, ::lseek(fd_, 0, SEEK_CUR)) != 0) fail("write");
  if (durability_ == Durability::kSynced && systemCalls().fsync(fd_) != 0) fail("write");
  if (temporaryPath_.empty()) giveName();
  const Descriptor locked(::fcntl(fd_, F_DUPFD_CLOEXEC, 0));  // holds the lock until the file has its name
  // Some file systems report a full disk only here.
  if (systemCalls().close(std::exchange(fd_, -1)) != 0) fail("write");
  if (systemCalls().rename(temporaryPath_.c_str(), path_.c_str()) != 0) fail("rename");
  temporaryPath_.clear();
}

void AtomicFile::discard() noexcept {
  if (fd_ >= 0) systemCalls().close(std::exchange(fd_, -1));
  if (!temporaryPath_.empty()) ::unlink(temporaryPath_.c_str());
  temporaryPath_.clear();
}

void AtomicFile::fail(const char* doing) {
  const int error = errno;
  discard();
  throw FileError(path_, fmt::format("cannot {} the file ({})", doing, std::strerror(error)),
                  remedyFor(error), Fault::kSystem);
}

// ".NAME.PROCESS-NUMBER.part", whatever the name: earlier versions put the final one there.
bool isTemporaryName(const std::string& name) {
  constexpr std::string_view kEnd = ".part", kDigits = "0123456789";
  if (!name.starts_with('.') || !name.ends_with(kEnd)) return false;
  const std::string_view stem = std::string_view(name).substr(0, name.size() - kEnd.size());
  const std::size_t dash = stem.find_last_not_of(kDigits);
  if (dash == std::string_view::npos || dash == 0 || dash + 1 == stem.size() || stem[dash] != '-')
    return false;
  const std::size_t dot = stem.find_last_not_of(kDigits, dash - 1);
  return dot != std::string_view::npos && dot > 1 && dot + 1 < dash && stem[dot] == '.';
}

void writeTextFile(const std::string& path, std::string_view text, Durability durability) {
  AtomicFile file(path, durability);
  file.write(text);
  file.commit();
}

std::string readTextFile(const std::string& path, std::size_t limitBytes) {
  const auto source = openPlain(path);
  std::string text;
  std::vector<char> piece(kBufferBytes);
  while (const std::size_t got = source->read(piece.data(), piece.size())) {
    if (text.size() + got > limitBytes) {
      throw FileError(path, "the file is too large for a text of its kind",
                      "Check that it is the right file");
    }
    text.append(piece.data(), got);
  }
  return text;
}

}  // namespace formats
