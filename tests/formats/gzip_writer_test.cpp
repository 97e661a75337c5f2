#include "formats/gzip_writer.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cerrno>
#include <filesystem>
#include <random>

#include "tests/fakes/vtc_file.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

constexpr std::size_t kPiece = std::size_t{256} << 10U;

// Floats of which most are 0, as maps are.
std::string sampleMap(std::size_t bytes) {
  std::mt19937 random(5);
  std::normal_distribution<float> noise;
  std::string map;
  for (std::size_t i = 0; map.size() < bytes; ++i) {
    const float value = i / 50 % 3 == 0 ? noise(random) : 0.0F;
    map.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  map.resize(bytes);
  return map;
}

// The file after writes of `step` bytes each.
std::string zipped(const std::string& data, std::size_t step) {
  const Scratch folder;
  formats::AtomicFile file(folder.file("t.gz"));
  formats::GzipWriter writer(file);
  for (std::size_t i = 0; i < data.size(); i += step)
    writer.write(data.data() + i, std::min(step, data.size() - i));
  writer.finish();
  file.commit();
  return contentOf(folder.file("t.gz"));
}

// By zlib, whatever compressed it; checks length and checksum, and that nothing follows.
std::string unzipped(std::string bytes) {
  z_stream state{};
  EXPECT_EQ(inflateInit2(&state, 15 + 16), Z_OK);
  state.next_in = reinterpret_cast<Bytef*>(bytes.data());
  state.avail_in = static_cast<uInt>(bytes.size());
  std::string data, piece(100000, '\0');
  int result = Z_OK;
  while (result == Z_OK) {
    state.next_out = reinterpret_cast<Bytef*>(piece.data());
    state.avail_out = static_cast<uInt>(piece.size());
    result = inflate(&state, Z_NO_FLUSH);
    data.append(piece, 0, piece.size() - state.avail_out);
  }
  EXPECT_EQ(result, Z_STREAM_END);
  EXPECT_EQ(state.avail_in, 0U);
  inflateEnd(&state);
  return data;
}

TEST(GzipWriter, WritesWhatZlibReads) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{1000}, kPiece - 1, kPiece,
                                 kPiece + 1, 4 * kPiece, 5 * kPiece + 12345}) {
    const std::string data = sampleMap(size);
    EXPECT_EQ(unzipped(zipped(data, 300000)), data) << size;
  }
}

TEST(GzipWriter, WritesWhatCannotBeCompressed) {
  std::mt19937 random(8);
  std::string data(3 * kPiece + 17, '\0');
  for (char& byte : data) byte = static_cast<char>(random());
  const std::string file = zipped(data, data.size());
  EXPECT_EQ(unzipped(file), data);
  EXPECT_LT(file.size(), data.size() + data.size() / 500);
}

TEST(GzipWriter, MakesMapsSmall) {
  const std::string data = sampleMap(1000000);
  EXPECT_LT(zipped(data, data.size()).size(), data.size() * 2 / 5);
}

TEST(GzipWriter, GivesEqualFilesHoweverTheDataAreCut) {
  const std::string data = sampleMap(3 * kPiece + 4321);
  const std::string whole = zipped(data, data.size());
  for (const std::size_t step : {std::size_t{999}, kPiece - 1, kPiece, kPiece + 1, 2 * kPiece}) {
    EXPECT_EQ(zipped(data, step), whole) << step;
  }
}

TEST(GzipWriter, TellsNeitherNameNorTime) {
  const std::string file = zipped("some text", 9);
  EXPECT_EQ(file.substr(0, 4), std::string("\x1f\x8b\x08\x00", 4));  // gzip, deflate, no optional fields
  EXPECT_EQ(file.substr(4, 4), std::string(4, '\0'));                // no time
}

TEST(GzipWriter, ReportsAFullDisk) {
  const Scratch folder;
  const formats_test::ScopedSystemCalls calls;
  formats::systemCalls().write = [](int, const void*, std::size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  const std::string data = sampleMap(4000000);
  EXPECT_EQ(reasonOf([&] {
              formats::AtomicFile file(folder.file("t.gz"));
              formats::GzipWriter writer(file);
              writer.write(data.data(), data.size());
            }),
            "cannot write the file (No space left on device). Free some space or choose another folder.");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

// The same tests run on both libraries; this says on which one.
TEST(GzipWriter, UsesTheConfiguredLibrary) {
  EXPECT_STREQ(formats::GzipWriter::engineName(), GZIP_TEST_ENGINE);
}

}  // namespace
