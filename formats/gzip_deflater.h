// One gzip member, by whichever library was configured. Private to gzip_writer.cpp.
#ifndef TAVMAP_FORMATS_GZIP_DEFLATER_H
#define TAVMAP_FORMATS_GZIP_DEFLATER_H

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#ifdef TAVMAP_HAVE_ISAL
#include <isa-l/igzip_lib.h>
#else
#include <zlib.h>
#endif

namespace formats {

// What comes out depends on the data alone. Of ISA-L's levels that is not true of 1 and 2: up to version 2.30
// at least, some addresses of the state (1 in 2,000) let them choose other matches in short data. Level 3
// costs half a millisecond more for a map of 100,000 voxels.
//
// give(), then take() until it gives less than asked for, and again. Sizes must fit 32 bits.
#ifdef TAVMAP_HAVE_ISAL
class MemberDeflater {
 public:
  MemberDeflater() : tables_(ISAL_DEF_LVL3_DEFAULT) {
    isal_deflate_init(&state_);
    state_.level = 3;
    state_.level_buf = tables_.data();
    state_.level_buf_size = static_cast<std::uint32_t>(tables_.size());
    state_.gzip_flag = IGZIP_GZIP;
  }
  MemberDeflater(const MemberDeflater&) = delete;
  MemberDeflater& operator=(const MemberDeflater&) = delete;
  void give(const unsigned char* in, std::size_t bytes, bool last) {
    state_.next_in = const_cast<unsigned char*>(in);  // only read
    state_.avail_in = static_cast<std::uint32_t>(bytes);
    state_.end_of_stream = last ? 1 : 0;
  }
  std::size_t take(unsigned char* out, std::size_t bytes) {
    state_.next_out = out;
    state_.avail_out = static_cast<std::uint32_t>(bytes);
    isal_deflate(&state_);  // fails for wrong settings only
    return bytes - state_.avail_out;
  }
  static constexpr const char* kName = "ISA-L";

 private:
  isal_zstream state_{};
  std::vector<std::uint8_t> tables_;
};
#else
class MemberDeflater {
 public:
  MemberDeflater() {
    constexpr int kLevel = 4, kGzipWindowBits = 15 + 16, kMemoryLevel = 8;  // 32 KB window; zlib's default
    if (deflateInit2(&state_, kLevel, Z_DEFLATED, kGzipWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~MemberDeflater() { deflateEnd(&state_); }
  MemberDeflater(const MemberDeflater&) = delete;
  MemberDeflater& operator=(const MemberDeflater&) = delete;
  void give(const unsigned char* in, std::size_t bytes, bool last) {
    state_.next_in = const_cast<unsigned char*>(in);  // only read
    state_.avail_in = static_cast<uInt>(bytes);
    flush_ = last ? Z_FINISH : Z_NO_FLUSH;
  }
  std::size_t take(unsigned char* out, std::size_t bytes) {
    state_.next_out = out;
    state_.avail_out = static_cast<uInt>(bytes);
    deflate(&state_, flush_);  // fails for wrong settings only
    return bytes - state_.avail_out;
  }
  static constexpr const char* kName = "zlib";

 private:
  z_stream state_{};
  int flush_ = Z_NO_FLUSH;
};
#endif

}  // namespace formats

#endif
