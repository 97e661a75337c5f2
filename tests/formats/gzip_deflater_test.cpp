#include "formats/gzip_deflater.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <memory>
#include <random>
#include <set>
#include <string>

#include "formats/nifti_header.h"

namespace {

// The bytes of a small map of codes: half of its voxels outside the brain.
std::string sampleCodes() {
  formats::ImageHeader header;
  header.size = {12, 10, 8};
  header.dataType = formats::DataType::kUint8;
  std::string bytes = formats::encodeNifti1Header(header);
  std::mt19937 random(3);
  for (std::size_t i = 0; i < header.size.voxels(); ++i) {
    const bool inside = i % 10 >= 5 && random() % 100 >= 60;
    bytes += static_cast<char>(inside ? random() % 6 : 0);
  }
  return bytes;
}

// A deflater in pages that the system was asked to place anywhere.
class PlacedDeflater {
 public:
  explicit PlacedDeflater(std::mt19937_64& random) {
    constexpr std::uint64_t kFirst = std::uint64_t{1} << 40U, kSpan = std::uint64_t{100} << 40U, kPage = 4096;
    void* wish = reinterpret_cast<void*>((kFirst + random() % kSpan) / kPage * kPage);  // NOLINT: an address
    pages_ = mmap(wish, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages_ == MAP_FAILED) throw std::bad_alloc();
    deflater_ = new (pages_) formats::MemberDeflater();
  }
  ~PlacedDeflater() {
    std::destroy_at(deflater_);
    munmap(pages_, kBytes);
  }
  PlacedDeflater(const PlacedDeflater&) = delete;
  PlacedDeflater& operator=(const PlacedDeflater&) = delete;

  std::string compress(const std::string& data) {
    std::string out(data.size() + 1000, '\0');
    deflater_->give(reinterpret_cast<const unsigned char*>(data.data()), data.size(), true);
    out.resize(deflater_->take(reinterpret_cast<unsigned char*>(out.data()), out.size()));
    return out;
  }

 private:
  static constexpr std::size_t kBytes = sizeof(formats::MemberDeflater);
  void* pages_ = nullptr;
  formats::MemberDeflater* deflater_ = nullptr;
};

TEST(MemberDeflater, GivesEqualBytesWhereverItsMemoryLies) {
  std::mt19937_64 random(1);
  const std::string codes = sampleCodes();
  std::set<std::string> found;
  for (int i = 0; i < 20000; ++i) found.insert(PlacedDeflater(random).compress(codes));
  EXPECT_EQ(found.size(), 1U);
}

}  // namespace
