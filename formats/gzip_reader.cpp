#include "formats/gzip_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "formats/file_error.h"
#include "formats/gzip_inflater.h"

namespace formats {
namespace {

constexpr std::size_t kMaxStepBytes = std::size_t{1} << 30U;
constexpr std::size_t kMagicBytes = 2;

}  // namespace

class GzipReader::Inflater : public MemberInflater {};

GzipReader::GzipReader(std::unique_ptr<ByteSource> compressed, std::string path, std::size_t inputBytes)
    : compressed_(std::move(compressed)),
      path_(std::move(path)),
      input_(std::max(inputBytes, kMagicBytes)),
      inflater_(std::make_unique<Inflater>()) {}

GzipReader::~GzipReader() = default;

const char* GzipReader::engineName() {
  return MemberInflater::kName;
}

std::size_t GzipReader::read(void* data, std::size_t bytes) {
  auto* to = static_cast<char*>(data);
  std::size_t done = 0;
  while (done < bytes && !ended_) {
    if (!inMember_ && !startNextMember()) break;
    done += inflateSome(to + done, std::min(bytes - done, kMaxStepBytes));
  }
  return done;
}

bool GzipReader::startNextMember() {
  while (inputEnd_ - inputFirst_ < kMagicBytes && refill()) {
  }
  const bool member = inputEnd_ - inputFirst_ >= kMagicBytes && input_[inputFirst_] == 0x1f &&
                      input_[inputFirst_ + 1] == 0x8b;
  if (!member) {
    ended_ = true;
    if (!anyMember_) throw FileError(path_, "this is no gzip file", "Check that it is the right file");
    return false;
  }
  inflater_->restart();
  inMember_ = anyMember_ = true;
  return true;
}

// Keeps what is unread and reads more behind it. False at the end of the file.
bool GzipReader::refill() {
  const std::size_t kept = inputEnd_ - inputFirst_;
  std::memmove(input_.data(), input_.data() + inputFirst_, kept);
  inputFirst_ = 0;
  const std::size_t got = compressed_->read(input_.data() + kept, input_.size() - kept);
  inputEnd_ = kept + got;
  return got > 0;
}

std::size_t GzipReader::inflateSome(char* data, std::size_t bytes) {
  const bool fileEnded = inputFirst_ == inputEnd_ && !refill();
  const InflateStep step = inflater_->step(input_.data() + inputFirst_, inputEnd_ - inputFirst_,
                                           reinterpret_cast<unsigned char*>(data), bytes);
  inputFirst_ += step.consumed;
  if (step.status == InflateStatus::kDamaged) {
    throw FileError(path_, "the compressed data are damaged", "Get the file again from its source");
  }
  if (step.status == InflateStatus::kMemberEnd) inMember_ = false;
  if (step.status == InflateStatus::kMore && fileEnded && step.produced == 0) failTruncated();
  return step.produced;
}

void GzipReader::failTruncated() const {
  throw FileError(path_, "the compressed data end too early", "Get the file again from its source");
}

}  // namespace formats
