// Every way that a series can take through an import, against a literal loop over its values: in
// memory or through the output file, with and without a mask, from types that are smaller and larger
// than the one of the VTC.
#include "formats/series_transport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "formats/vtc_export.h"
#include "formats/vtc_import.h"
#include "io/cnvtcfile.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/nifti_bytes.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::VtcType;
using formats_test::NiftiSpec;

// Several chunks, the last of them short; 37 volumes go through the file in groups of any size.
constexpr int kX = 61, kY = 50, kZ = 31, kVolumes = 37;
constexpr std::size_t kVoxels = std::size_t{kX} * kY * kZ;
constexpr std::size_t kAll = std::size_t{1} << 30U;

double storedValue(std::size_t voxel, int volume) {
  return static_cast<double>((voxel * 7919 + static_cast<std::size_t>(volume) * 104729) % 30011 + 101);
}

bool insideMask(std::size_t voxel) {
  const std::size_t x = voxel % kX, slice = voxel / (std::size_t{kX} * kY);
  if (slice < 3 || slice == 11 || slice > 28) return false;  // large gaps, also at both ends
  return slice % 2 == 0 ? x % 3 == 0 : x > 8 && x < 50;      // single voxels and rows
}

NiftiSpec specOf(int dataType, int bits) {
  NiftiSpec spec;
  spec.dim = {4, kX, kY, kZ, kVolumes, 1, 1, 1};
  spec.dataType = dataType;
  spec.bitsPerValue = bits;
  return spec;
}

std::string writeSeries(const Scratch& folder, const NiftiSpec& spec) {
  std::vector<double> values;
  for (int t = 0; t < kVolumes; ++t) {
    for (std::size_t v = 0; v < kVoxels; ++v) values.push_back(storedValue(v, t));
  }
  folder.write("run.nii", niftiHeader(spec) + niftiData(spec, values));
  return folder.file("run.nii");
}

std::string writeMask(const Scratch& folder) {
  NiftiSpec spec;
  spec.dim = {3, kX, kY, kZ, 1, 1, 1, 1};
  std::vector<double> values;
  for (std::size_t v = 0; v < kVoxels; ++v) values.push_back(insideMask(v) ? 1 : 0);
  folder.write("mask.nii", niftiHeader(spec) + niftiData(spec, values));
  return folder.file("mask.nii");
}

template <typename Out>
std::string expectedBytes(bool masked, double slope) {
  std::vector<Out> values;
  for (std::size_t v = 0; v < kVoxels; ++v) {
    for (int t = 0; t < kVolumes; ++t) {
      const double value = !masked || insideMask(v) ? slope * storedValue(v, t) : 0;
      values.push_back(static_cast<Out>(sizeof(Out) == 2 ? std::nearbyint(value) : value));
    }
  }
  return std::string(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Out));
}

struct Stored {
  const char* name;
  int dataType, bits;
  bool bigEndian;
  double slope;
};
void PrintTo(const Stored& stored, std::ostream* out) {
  *out << stored.name;
}

class Transport : public testing::TestWithParam<std::tuple<Stored, VtcType, bool>> {};

TEST_P(Transport, GivesTheSameCoursesOnEveryWay) {
  const auto [stored, type, masked] = GetParam();
  const Scratch folder;
  NiftiSpec spec = specOf(stored.dataType, stored.bits);
  spec.bigEndian = stored.bigEndian;
  spec.slope = stored.slope;
  const std::string image = writeSeries(folder, spec);
  formats::ImportOptions options;
  options.type = type;
  options.threshold = 1;  // no shift is needed
  if (masked) options.maskPath = writeMask(folder);
  const std::string expected = type == VtcType::kFloat32 ? expectedBytes<float>(masked, stored.slope)
                                                         : expectedBytes<std::uint16_t>(masked, stored.slope);
  for (const std::size_t memory : {kAll, std::size_t{0}, std::size_t{2000000}}) {
    options.memoryBytes = memory;
    EXPECT_EQ(formats::importVtc(image, folder.file("run.vtc"), options).shift, 0);
    const std::string whole = contentOf(folder.file("run.vtc"));
    const auto header =
        static_cast<std::size_t>(formats::readVtcFileHeader(folder.file("run.vtc")).dataOffset);
    ASSERT_EQ(whole.size(), header + expected.size()) << memory;
    EXPECT_EQ(std::memcmp(whole.data() + header, expected.data(), expected.size()), 0) << memory;
  }
}
INSTANTIATE_TEST_SUITE_P(
    SeriesTransport, Transport,
    testing::Combine(testing::Values(Stored{"int16", 4, 16, false, 1}, Stored{"scaled", 4, 16, true, 1.5},
                                     Stored{"float32", 16, 32, false, 1},
                                     Stored{"float64", 64, 64, true, 0.5}),
                     testing::Values(VtcType::kFloat32, VtcType::kUint16), testing::Bool()),
    [](const auto& tested) {
      return std::string(std::get<0>(tested.param).name) +
             (std::get<1>(tested.param) == VtcType::kFloat32 ? "_to_float32" : "_to_uint16") +
             (std::get<2>(tested.param) ? "_masked" : "");
    });

TEST(SeriesTransport, KeepsItsLengthWhenTheLastSlicesAreOutsideTheMask) {
  const Scratch folder;
  formats::ImportOptions options;
  options.maskPath = writeMask(folder);
  formats::importVtc(writeSeries(folder, specOf(4, 16)), folder.file("run.vtc"), options);
  const std::string bytes = contentOf(folder.file("run.vtc"));
  const auto header = static_cast<std::size_t>(formats::readVtcFileHeader(folder.file("run.vtc")).dataOffset);
  EXPECT_EQ(bytes.size(), header + kVoxels * kVolumes * sizeof(float));
  EXPECT_EQ((bytes.find_last_not_of('\0') - header) / (kVolumes * sizeof(float) * kX * kY),
            28U);  // the last slice inside
}

TEST(SeriesTransport, TellsAValueThatDoesNotFitOnEveryWay) {
  const Scratch folder;
  NiftiSpec spec = specOf(16, 32);
  spec.slope = 3;  // up to 90,000
  formats::ImportOptions options;
  options.type = VtcType::kUint16;
  const std::string image = writeSeries(folder, spec);
  for (const std::size_t memory : {kAll, std::size_t{0}}) {
    options.memoryBytes = memory;
    EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), options); }),
              "some of its values do not fit 16 bits (0 to 65,535). Choose --type float32.");
  }
}

class FullDisk : public testing::Test {
 protected:
  void expectMessage(const std::string& message) {
    formats::ImportOptions options;
    options.memoryBytes = 0;
    EXPECT_EQ(reasonOf([&] { formats::importVtc(image_, folder_.file("run.vtc"), options); }), message);
    EXPECT_FALSE(std::filesystem::exists(folder_.file("run.vtc")));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("run.vtc.json")));
  }

  const Scratch folder_;
  const std::string image_ = writeSeries(folder_, specOf(4, 16));
  const formats_test::ScopedSystemCalls calls_;
};

TEST_F(FullDisk, IsToldBeforeTheFirstValue) {
  formats::systemCalls().fallocate = [](int, int, off_t, off_t) {
    errno = ENOSPC;
    return -1;
  };
  expectMessage("cannot write the file (No space left on device). Free some space or choose another folder.");
}

TEST_F(FullDisk, IsToldWhileVolumesWait) {
  formats::systemCalls().pwritev = [](int, const iovec*, int, off_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  expectMessage("cannot write the file (No space left on device). Free some space or choose another folder.");
}

TEST_F(FullDisk, IsToldWhenVolumesCannotBeReadBack) {
  formats::systemCalls().pread = [](int, void*, std::size_t, off_t) -> ssize_t {
    errno = EIO;
    return -1;
  };
  expectMessage("cannot read back the file (Input/output error). Check the disk and the path.");
}

}  // namespace
