// A VTC in memory, for runs that look at the same data again and again.
#ifndef TAVMAP_TAV_LOADED_VTC_H
#define TAVMAP_TAV_LOADED_VTC_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>

#include "io/vtc_header.h"

namespace tav {

// Header and values of one file. Never changes, so that any number of runs and threads share it. Floats that
// all are whole numbers of 16 bits, as most scanners write them, are kept as such, and the header says so:
// the same values in half of the memory, and a pass over them takes half of the time.
class LoadedVtc {
 public:
  // Reads the file; null, with the reason in `errors`, when it cannot be read, its header is not usable or it
  // ends early. Throws Cancelled soon after `cancel`, if there is one, was set.
  [[nodiscard]] static std::shared_ptr<const LoadedVtc> read(const std::string& path, std::ostream& errors,
                                                             const std::atomic<bool>* cancel = nullptr);
  // What its values take, and what those of a file take at most.
  [[nodiscard]] std::size_t bytes() const { return bytesOf(header_); }
  [[nodiscard]] static std::size_t bytesOf(const VTC_Header& header);

  // That of the file, but for the type of whole numbers.
  [[nodiscard]] const VTC_Header& header() const { return header_; }
  // The time courses of all voxels, one behind the other; one of the two is null.
  [[nodiscard]] const float* floats() const { return floats_.get(); }
  [[nodiscard]] const std::uint16_t* shorts() const { return shorts_.get(); }

 private:
  explicit LoadedVtc(const VTC_Header& header) : header_(header) {}
  [[nodiscard]] bool readFloats(std::FILE* file, std::size_t count, const std::atomic<bool>* cancel);
  [[nodiscard]] bool readShorts(std::FILE* file, std::size_t count, const std::atomic<bool>* cancel);

  VTC_Header header_;
  std::unique_ptr<float[]> floats_;
  std::unique_ptr<std::uint16_t[]> shorts_;
};

}  // namespace tav

#endif
