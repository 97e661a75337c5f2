// A file that appears whole or not at all: written without a name (or, where the file system
// cannot do that, under a temporary one) in its own folder, then flushed, synchronised and renamed.
// Every output of this program is written through it. While a temporary file has a name it is
// locked, so that removeAbandoned() (claimed_folder.h) knows it from one that a killed process left.
#ifndef TAVMAP_FORMATS_ATOMIC_FILE_H
#define TAVMAP_FORMATS_ATOMIC_FILE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

// Whether commit() waits until the data are on the medium. Without it a process may be killed at
// any time, yet after a power failure the file may be empty: for files that can be made again.
enum class Durability { kSynced, kCached };

class AtomicFile {
 public:
  // Creates the temporary file; the folder must exist. Throws FileError, as do write and commit.
  explicit AtomicFile(std::string path, Durability durability = Durability::kSynced);
  ~AtomicFile();  // without commit(): removes the temporary file, an older file stays as it was
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Appends. Small pieces are gathered in a buffer of 256 KB.
  void write(const void* data, std::size_t bytes);
  void write(std::string_view text) { write(text.data(), text.size()); }
  // Takes the space for so many bytes in one piece, where the file system can do that: writing is
  // then faster, and a disk that has not so much left is reported now.
  void reserve(std::size_t bytes);
  // Appends zeros; large stretches become holes, which take neither time nor space on the disk.
  // Precondition: nothing was written there with writeRowsAt().
  void skip(std::size_t bytes);

  // Beside the appending, which goes on where it was. `count` rows of `rowBytes` that lie `stride`
  // bytes apart in memory, one behind the other from `offset` of the file on.
  void writeRowsAt(const char* rows, std::size_t count, std::size_t rowBytes, std::size_t stride,
                   std::size_t offset);
  // Precondition: the bytes were written with writeRowsAt().
  void readAt(void* data, std::size_t bytes, std::size_t offset);

  // Makes the file visible under its name, replacing an older one. Nothing may follow.
  void commit();

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  void flush();
  void writeThrough(const char* data, std::size_t bytes);
  void discard() noexcept;
  void openNameless(const std::string& folder);
  void createNamed();
  void giveName();
  [[noreturn]] void fail(const char* doing);

  std::string path_;
  std::string temporaryPath_;  // empty while the file has no name
  Durability durability_;
  int fd_ = -1;
  bool endsInHole_ = false;
  std::vector<char> buffer_;
};

// Whether a file name is one that AtomicFile gives until the file is whole.
[[nodiscard]] bool isTemporaryName(const std::string& name);

// Writes a whole text file in one go.
void writeTextFile(const std::string& path, std::string_view text,
                   Durability durability = Durability::kSynced);

// A whole text file, at most `limitBytes` of it: a longer one is a FileError.
[[nodiscard]] std::string readTextFile(const std::string& path,
                                       std::size_t limitBytes = std::size_t{64} << 20U);

}  // namespace formats

#endif
