#include "formats/gzip_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "formats/gzip_writer.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/nifti_bytes.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats_test::gzipped;

// Gives what it was made of, at most `most` bytes per call.
class TextSource : public formats::ByteSource {
 public:
  explicit TextSource(std::string text) : text_(std::move(text)) {}
  std::size_t read(void* data, std::size_t bytes) override {
    const std::size_t now = std::min(bytes, text_.size() - at_);
    std::memcpy(data, text_.data() + at_, now);
    at_ += now;
    return now;
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

std::string unzip(const std::string& bytes, std::size_t inputBytes = 1000, std::size_t outputBytes = 777) {
  formats::GzipReader reader(std::make_unique<TextSource>(bytes), "file.gz", inputBytes);
  std::string result, piece(outputBytes, '\0');
  while (const std::size_t got = reader.read(piece.data(), piece.size())) result.append(piece, 0, got);
  return result;
}

std::string sampleText(std::size_t size) {
  std::mt19937 random(3);
  std::string text(size, '\0');
  for (char& c : text) c = static_cast<char>('a' + random() % 7);
  return text;
}

TEST(GzipReader, ReadsWithAnyBufferSize) {
  const std::string text = sampleText(100000);
  for (const std::size_t input : {std::size_t{2}, std::size_t{3}, std::size_t{17}, std::size_t{65536}}) {
    for (const std::size_t output : {std::size_t{1}, std::size_t{333}, std::size_t{1} << 20U}) {
      EXPECT_EQ(unzip(gzipped(text), input, output), text) << input << ' ' << output;
    }
  }
}

TEST(GzipReader, ReadsAMemberWithNameCommentAndExtraField) {
  const std::string plain = gzipped("abc");
  std::string named = plain.substr(0, 10);
  named[3] = 4 + 8 + 16;  // extra field, name, comment
  named +=
      std::string("\x03\0xyz", 5) + std::string("name\0", 5) + std::string("comment\0", 8) + plain.substr(10);
  for (std::size_t input = 2; input < 2 * named.size(); ++input)
    EXPECT_EQ(unzip(named + named, input), "abcabc");
}

TEST(GzipReader, ReadsMembersOneAfterTheOther) {
  const std::string first = sampleText(5000), third = "the end";
  const std::string all = gzipped(first) + gzipped("") + gzipped(third);
  for (const std::size_t input : {std::size_t{2}, std::size_t{5}, std::size_t{100000}}) {
    EXPECT_EQ(unzip(all, input), first + third) << input;
  }
}

TEST(GzipReader, PassesOverPaddingBehindTheLastMember) {
  EXPECT_EQ(unzip(gzipped("abc") + std::string(512, '\0')), "abc");
}

TEST(GzipReader, NoticesEveryPlaceWhereAFileIsCut) {
  const std::string whole = gzipped(sampleText(300));
  for (std::size_t size = 2; size < whole.size(); ++size) {
    EXPECT_EQ(reasonOf([&] { unzip(whole.substr(0, size)); }),
              "the compressed data end too early. Get the file again from its source.")
        << size;
  }
}

TEST(GzipReader, NoticesDamage) {
  std::string whole = gzipped(sampleText(3000));
  for (std::size_t i = 60; i < 90; ++i) whole[i] = static_cast<char>(~whole[i]);
  EXPECT_EQ(reasonOf([&] { unzip(whole); }),
            "the compressed data are damaged. Get the file again from its source.");
}

// The same tests run on both libraries; this says on which one.
TEST(GzipReader, UsesTheConfiguredLibrary) {
  EXPECT_STREQ(formats::GzipReader::engineName(), GZIP_TEST_ENGINE);
}

TEST(GzipReader, RefusesWhatIsNoGzip) {
  EXPECT_EQ(reasonOf([&] { unzip("plain text"); }), "this is no gzip file. Check that it is the right file.");
}

TEST(GzipReader, ReadsWhatTheWriterWrites) {
  const Scratch folder;
  const std::string text = sampleText(1000000);
  formats::AtomicFile file(folder.file("t.gz"));
  formats::GzipWriter writer(file);
  writer.write(text.data(), 10);
  writer.write(text.data() + 10, text.size() - 10);
  writer.finish();
  file.commit();
  EXPECT_EQ(unzip(contentOf(folder.file("t.gz"))), text);
}

}  // namespace
