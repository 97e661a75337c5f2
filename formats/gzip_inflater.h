// One gzip member at a time, by whichever library was configured. Private to gzip_reader.cpp.
#ifndef TAVMAP_FORMATS_GZIP_INFLATER_H
#define TAVMAP_FORMATS_GZIP_INFLATER_H

#include <cstddef>
#include <cstdint>

#ifdef TAVMAP_HAVE_ISAL
#include <isa-l/igzip_lib.h>
#else
#include <zlib.h>
#endif

namespace formats {

enum class InflateStatus { kMore, kMemberEnd, kDamaged };

struct InflateStep {
  std::size_t consumed = 0, produced = 0;
  InflateStatus status = InflateStatus::kMore;
};

// Sizes per call must fit 32 bits.
#ifdef TAVMAP_HAVE_ISAL
class MemberInflater {
 public:
  MemberInflater() { isal_inflate_init(&state_); }
  void restart() {
    isal_inflate_reset(&state_);
    state_.crc_flag = ISAL_GZIP;  // reads the header and verifies the checksum
  }
  InflateStep step(unsigned char* in, std::size_t inBytes, unsigned char* out, std::size_t outBytes) {
    state_.next_in = in;
    state_.avail_in = static_cast<std::uint32_t>(inBytes);
    state_.next_out = out;
    state_.avail_out = static_cast<std::uint32_t>(outBytes);
    const int result = isal_inflate(&state_);
    InflateStep step{inBytes - state_.avail_in, outBytes - state_.avail_out, InflateStatus::kMore};
    // Positive results only say that input or output room ran out.
    if (result < 0 || result == ISAL_NEED_DICT) step.status = InflateStatus::kDamaged;
    if (state_.block_state == ISAL_BLOCK_FINISH && result == ISAL_DECOMP_OK) step.status = InflateStatus::kMemberEnd;
    return step;
  }
  static constexpr const char* kName = "ISA-L";

 private:
  inflate_state state_{};
};
#else
class MemberInflater {
 public:
  MemberInflater() { usable_ = inflateInit2(&state_, 15 + 16) == Z_OK; }  // 32 KB window, gzip wrapper
  ~MemberInflater() { inflateEnd(&state_); }
  MemberInflater(const MemberInflater&) = delete;
  MemberInflater& operator=(const MemberInflater&) = delete;
  void restart() { inflateReset(&state_); }
  InflateStep step(unsigned char* in, std::size_t inBytes, unsigned char* out, std::size_t outBytes) {
    if (!usable_) return {0, 0, InflateStatus::kDamaged};
    state_.next_in = in;
    state_.avail_in = static_cast<uInt>(inBytes);
    state_.next_out = out;
    state_.avail_out = static_cast<uInt>(outBytes);
    const int result = inflate(&state_, Z_NO_FLUSH);
    InflateStep step{inBytes - state_.avail_in, outBytes - state_.avail_out, InflateStatus::kMore};
    if (result == Z_STREAM_END) step.status = InflateStatus::kMemberEnd;
    if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) step.status = InflateStatus::kDamaged;
    return step;
  }
  static constexpr const char* kName = "zlib";

 private:
  z_stream state_{};
  bool usable_ = false;
};
#endif

}  // namespace formats

#endif
