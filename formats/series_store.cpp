#include "formats/series_store.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

#include "formats/file_error.h"
#include "formats/system_calls.h"

namespace formats {
namespace {

int openNameless(const std::string& nearPath) {
  const auto parent = std::filesystem::path(nearPath).parent_path().string();
  const std::string folder = parent.empty() ? "." : parent;
#ifdef O_TMPFILE
  const int fd = ::open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0600);
  if (fd >= 0) return fd;
#endif
  std::string name = folder + "/.tavmap-series-XXXXXX";
  const int named = ::mkostemp(name.data(), O_CLOEXEC);
  if (named >= 0) ::unlink(name.c_str());
  return named;
}

}  // namespace

SeriesStore::SeriesStore(NiftiStream& stream, int volumes, std::size_t memoryBytes, const std::string& nearPath)
    : volumes_(static_cast<std::size_t>(volumes)),
      volumeBytes_(stream.volumeBytes()),
      valueBytes_(volumeBytes_ / stream.header().size.voxels()),
      slabVoxels_(stream.header().size.voxels()),
      path_(nearPath) {
  if (volumes_ * volumeBytes_ <= memoryBytes) {
    allocate(volumes_ * volumeBytes_);
    stream.readStored(bytes_.get(), volumes_ * volumeBytes_);
    return;
  }
  spill(stream, nearPath);
  slabVoxels_ = std::clamp<std::size_t>(memoryBytes / 4 / (volumes_ * valueBytes_), 1, slabVoxels_);
  allocate(slabVoxels_ * volumes_ * valueBytes_);
}

SeriesStore::~SeriesStore() {
  if (fd_ >= 0) ::close(fd_);
}

// Not cleared: every byte is written before it is read. Large pages, where the system has them, save
// a third of the time that filling the memory takes.
void SeriesStore::allocate(std::size_t bytes) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20U;
  const std::size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
  bytes_.reset(static_cast<char*>(std::aligned_alloc(kLargePage, whole)));
  if (bytes_ == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  (void)::madvise(bytes_.get(), whole, MADV_HUGEPAGE);  // advice: a refusal changes nothing
#endif
}

void SeriesStore::spill(NiftiStream& stream, const std::string& nearPath) {
  fd_ = openNameless(nearPath);
  if (fd_ < 0) fail("create");
  std::vector<char> volume(volumeBytes_);
  for (std::size_t t = 0; t < volumes_; ++t) {
    stream.readStored(volume.data(), volume.size());
    writeToFile(volume);
  }
}

void SeriesStore::writeToFile(const std::vector<char>& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t now = systemCalls().write(fd_, bytes.data() + done, bytes.size() - done);
    if (now < 0 && errno == EINTR) continue;
    if (now < 0) fail("write");
    done += static_cast<std::size_t>(now);
  }
}

void SeriesStore::readFromFile(char* to, std::size_t bytes, std::size_t offset) {
  for (std::size_t done = 0; done < bytes;) {
    const ssize_t now = ::pread(fd_, to + done, bytes - done, static_cast<off_t>(offset + done));
    if (now < 0 && errno == EINTR) continue;
    if (now <= 0) fail("read");
    done += static_cast<std::size_t>(now);
  }
}

void SeriesStore::copyVolume(std::size_t volume, char* to) {
  if (fd_ >= 0) return readFromFile(to, volumeBytes_, volume * volumeBytes_);
  std::memcpy(to, bytes_.get() + volume * volumeBytes_, volumeBytes_);
}

SeriesSlab SeriesStore::slab(std::size_t firstVoxel, std::size_t count) {
  const std::size_t offset = firstVoxel * valueBytes_;
  if (fd_ < 0) return {bytes_.get() + offset, volumeBytes_};
  const std::size_t bytes = count * valueBytes_;
  for (std::size_t t = 0; t < volumes_; ++t) readFromFile(bytes_.get() + t * bytes, bytes, t * volumeBytes_ + offset);
  return {bytes_.get(), bytes};
}

void SeriesStore::fail(const char* doing) const {
  throw FileError(path_, std::string("cannot ") + doing + " a temporary file beside it (" + std::strerror(errno) + ")",
                  "Free some space in that folder", Fault::kSystem);
}

}  // namespace formats
