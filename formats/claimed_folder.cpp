#include "formats/claimed_folder.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/lock_owner.h"

namespace formats {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBegin = ".tavmap-";
constexpr const char* kLockEnd = ".lock";
constexpr mode_t kLockMode = 0666;  // less the user's umask

std::string lockOf(const fs::path& folder) {
  return folder.string() + kLockEnd;
}

struct Claim {
  FileLock state = FileLock::kUnknown;
  Descriptor lock;
};

// A lock file that its owner removes while it is being locked here is made anew.
Claim claim(const fs::path& folder) {
  const std::string path = lockOf(folder);
  while (true) {
    Claim claim{FileLock::kUnknown,
                Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kLockMode))};
    if (claim.lock.get() < 0) return claim;
    claim.state = tryLock(claim.lock.get());
    if (claim.state != FileLock::kMine || leadsTo(path, claim.lock.get())) return claim;
  }
}

// The lock goes last: until then nobody else may use the name.
void removeClaimed(const fs::path& folder) noexcept {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
  ::unlink(lockOf(folder).c_str());
}

[[noreturn]] void failTaken(const fs::path& folder, int lock) {
  const std::string owner = readLockOwner(lock);
  throw FileError(folder.parent_path().string(),
                  fmt::format("another process is at work here under the same names{}{}",
                              owner.empty() ? "" : ": ", owner),
                  "Wait until it is done, or choose another output folder", Fault::kSystem);
}

[[noreturn]] void failMaking(const fs::path& folder, const std::string& why) {
  throw FileError(folder.string(), fmt::format("cannot make the folder ({})", why),
                  "Check the disk and that you may write there", Fault::kSystem);
}

void makeEmpty(const fs::path& folder) {
  std::error_code error;
  fs::remove_all(folder, error);
  fs::create_directories(folder, error);
  if (error) failMaking(folder, error.message());
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Claimed folders by name, whether the folder, its lock or both are there; and unfinished files.
struct Leftovers {
  std::set<std::string> folders, files;
};

Leftovers leftoversIn(const fs::path& folder) {
  Leftovers found;
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; entry != end; entry.increment(ignored)) {
    std::string name = entry->path().filename().string();
    if (isTemporaryName(name)) {
      found.files.insert(name);
    } else if (name.rfind(kBegin, 0) == 0) {
      if (endsWith(name, kLockEnd)) name.resize(name.size() - std::strlen(kLockEnd));
      found.folders.insert(name);
    }
  }
  return found;
}

void removeAbandonedFile(const fs::path& file) {
  const Descriptor open(::open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
  const bool mine = open.get() >= 0 && tryLock(open.get()) == FileLock::kMine;
  if (mine && leadsTo(file.string(), open.get())) ::unlink(file.c_str());
}

}  // namespace

ClaimedFolder::ClaimedFolder(fs::path path, Descriptor lock)
    : path_(std::move(path)), lock_(std::move(lock)) {
  makeEmpty(path_);
}

ClaimedFolder::ClaimedFolder(const fs::path& parent, const std::string& name)
    : path_(parent / (kBegin + name)) {
  Claim claimed = claim(path_);
  if (claimed.lock.get() < 0) failMaking(path_, std::strerror(errno));
  if (claimed.state == FileLock::kTaken) failTaken(path_, claimed.lock.get());
  writeLockOwner(claimed.lock.get());
  lock_ = std::move(claimed.lock);
  makeEmpty(path_);
}

ClaimedFolder::~ClaimedFolder() {
  if (lock_.get() >= 0) removeClaimed(path_);
}

ClaimedFolder ClaimedFolder::anew(const fs::path& parent, const std::string& name) {
  const std::string begin = fmt::format("{}{}-{}", kBegin, name, ::getpid());
  for (int number = 1;; ++number) {
    const fs::path path = parent / (begin + (number > 1 ? "-" + std::to_string(number) : ""));
    Claim claimed = claim(path);
    if (claimed.lock.get() < 0) failMaking(path, std::strerror(errno));
    if (claimed.state != FileLock::kTaken) return {path, std::move(claimed.lock)};
  }
}

void removeAbandoned(const fs::path& folder) noexcept {
  try {
    const Leftovers found = leftoversIn(folder);
    for (const std::string& name : found.files) removeAbandonedFile(folder / name);
    for (const std::string& name : found.folders) {
      if (const Claim claimed = claim(folder / name); claimed.state == FileLock::kMine)
        removeClaimed(folder / name);
    }
  } catch (const std::exception&) {
    // No memory for the names: the next run sweeps.
  }
}

}  // namespace formats
