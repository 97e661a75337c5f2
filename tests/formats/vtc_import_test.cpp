#include "formats/vtc_import.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "formats/nifti.h"
#include "formats/nifti_stream.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_export.h"
#include "formats/vtc_sidecar.h"
#include "io/cnvtcfile.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/nifti_bytes.h"
#include "tests/formats/scoped_system_calls.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::ImportOptions;
using formats::ImportReport;
using formats_test::NiftiSpec;

constexpr int kX = 5, kY = 4, kZ = 3, kVolumes = 6, kVoxels = kX * kY * kZ;

NiftiSpec seriesSpec() {
  NiftiSpec spec;
  spec.dim = {4, kX, kY, kZ, kVolumes, 1, 1, 1};
  spec.dataType = 4;
  spec.bitsPerValue = 16;
  return spec;
}

double storedValue(int voxel, int volume) {
  return voxel * 10 + volume * volume - 40;
}

std::string writeSeries(const Scratch& folder, const NiftiSpec& spec) {
  std::vector<double> values;
  for (int t = 0; t < static_cast<int>(spec.dim[4]); ++t) {
    for (int v = 0; v < kVoxels; ++v) values.push_back(storedValue(v, t));
  }
  fakes::writeBytes(folder.file("run.nii.gz"),
                    formats_test::gzipped(niftiHeader(spec) + niftiData(spec, values)));
  return folder.file("run.nii.gz");
}

// Every third voxel, whatever the sign; voxel 0 has the smallest first value of them.
std::string writeMask(const Scratch& folder) {
  NiftiSpec spec;
  spec.dim = {3, kX, kY, kZ, 1, 1, 1, 1};
  std::vector<double> values(kVoxels, 0);
  for (std::size_t v = 0; v < values.size(); v += 3) values[v] = v % 2 == 0 ? 1 : -1;
  folder.write("mask.nii", niftiHeader(spec) + niftiData(spec, values));
  return folder.file("mask.nii");
}

template <typename T>
std::vector<T> dataOf(const std::string& vtcPath) {
  const VTC_Header header = formats::readVtcFileHeader(vtcPath);
  const std::string bytes = contentOf(vtcPath);
  std::vector<T> values((bytes.size() - static_cast<std::size_t>(header.dataOffset)) / sizeof(T));
  std::memcpy(values.data(), bytes.data() + header.dataOffset, values.size() * sizeof(T));
  return values;
}

TEST(VtcImport, PutsEveryValueInItsPlace) {
  const Scratch folder;
  const auto report = formats::importVtc(writeSeries(folder, seriesSpec()), folder.file("run.vtc"), {});
  const auto values = dataOf<float>(folder.file("run.vtc"));
  ASSERT_EQ(values.size(), static_cast<std::size_t>(kVoxels * kVolumes));
  for (int v = 0; v < kVoxels; ++v) {
    for (int t = 0; t < kVolumes; ++t) {
      ASSERT_EQ(values[static_cast<std::size_t>(v * kVolumes + t)], static_cast<float>(storedValue(v, t)));
    }
  }
  EXPECT_EQ(report.shift, 0);
  EXPECT_EQ(report.voxelsIncluded, 45U);  // 10 v - 40 > 100
}

TEST(VtcImport, WritesTheHeaderOfTheImageGrid) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.pixdim[4] = 1.3504;
  formats::importVtc(writeSeries(folder, spec), folder.file("run.vtc"), {});
  const VTC_Header header = formats::readVtcFileHeader(folder.file("run.vtc"));
  EXPECT_EQ(header.nrOfVolumes, kVolumes);
  EXPECT_EQ(header.tr, 1350);
  EXPECT_EQ(header.resolution, 1);
  EXPECT_EQ(header.xStart, 0);
  EXPECT_EQ(gridOf(header), (io::GridSize{kX, kY, kZ}));
  EXPECT_EQ(header.dataType, kVtcFloatData);
  EXPECT_STREQ(header.sourceFileName, "run.nii.gz");
  EXPECT_EQ(header.nrOfLinkedProtocols, 0);
}

TEST(VtcImport, MakesTheInclusionThresholdSelectExactlyTheMask) {
  const Scratch folder;
  ImportOptions options;
  options.maskPath = writeMask(folder);
  for (const auto type : {formats::VtcType::kFloat32, formats::VtcType::kUint16}) {
    options.type = type;
    const auto report =
        formats::importVtc(writeSeries(folder, seriesSpec()), folder.file("run.vtc"), options);
    EXPECT_EQ(report.shift, 141);  // the first value of voxel 0 is -40
    EXPECT_EQ(report.voxelsInMask, 20U);
    EXPECT_EQ(report.voxelsIncluded, 20U);
    std::vector<float> values;
    if (type == formats::VtcType::kFloat32) values = dataOf<float>(folder.file("run.vtc"));
    for (const auto word : dataOf<std::uint16_t>(folder.file("run.vtc"))) {
      if (type == formats::VtcType::kUint16) values.push_back(word);
    }
    for (std::size_t v = 0; v < kVoxels; ++v) {
      EXPECT_EQ(values[v * kVolumes] > 100, v % 3 == 0) << v;
      for (std::size_t t = 0; t < kVolumes; ++t) {
        const double expected = v % 3 == 0 ? storedValue(static_cast<int>(v), static_cast<int>(t)) + 141 : 0;
        ASSERT_EQ(values[v * kVolumes + t], static_cast<float>(expected)) << v << ' ' << t;
      }
    }
  }
}

TEST(VtcImport, RecordsWhatItDid) {
  const Scratch folder;
  ImportOptions options;
  options.maskPath = writeMask(folder);
  formats::importVtc(writeSeries(folder, seriesSpec()), folder.file("run.vtc"), options);
  const auto sidecar = formats::readVtcSidecar(folder.file("run.vtc"));
  ASSERT_TRUE(sidecar.has_value());
  EXPECT_EQ(sidecar->source, "run.nii.gz");
  EXPECT_EQ(sidecar->mask, "mask.nii");
  EXPECT_EQ(sidecar->shift, 141);
  EXPECT_EQ(sidecar->threshold, 100);
  EXPECT_EQ(sidecar->trMs, 2000);
  EXPECT_EQ(sidecar->spaceCode, 1);
  EXPECT_EQ(sidecar->affine.at(2, 3), -30);
}

TEST(VtcImport, GivesTheSameFileThroughMemoryAndThroughAFile) {
  const Scratch folder;
  ImportOptions options;
  options.maskPath = writeMask(folder);
  const std::string image = writeSeries(folder, seriesSpec());
  formats::importVtc(image, folder.file("a.vtc"), options);
  for (const std::size_t memory : {std::size_t{0}, std::size_t{200}, std::size_t{719}}) {
    options.memoryBytes = memory;
    formats::importVtc(image, folder.file("b.vtc"), options);
    EXPECT_EQ(contentOf(folder.file("a.vtc")), contentOf(folder.file("b.vtc"))) << memory;
  }
}

TEST(VtcImport, AppliesSlopeAndByteOrder) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.bigEndian = true;
  spec.slope = 4;
  spec.intercept = 1;
  formats::importVtc(writeSeries(folder, spec), folder.file("run.vtc"), {});
  EXPECT_EQ(dataOf<float>(folder.file("run.vtc"))[7 * kVolumes + 2],
            static_cast<float>(4 * storedValue(7, 2) + 1));
}

TEST(VtcImport, LeavesOutVolumesAtTheStart) {
  const Scratch folder;
  ImportOptions options;
  options.skipVolumes = 2;
  const auto report = formats::importVtc(writeSeries(folder, seriesSpec()), folder.file("run.vtc"), options);
  EXPECT_EQ(report.volumes, 4);
  EXPECT_EQ(dataOf<float>(folder.file("run.vtc"))[0], static_cast<float>(storedValue(0, 2)));
  options.skipVolumes = 5;
  EXPECT_EQ(reasonOf([&] { formats::importVtc(folder.file("run.nii.gz"), folder.file("b.vtc"), options); }),
            "it has 6 volumes, of which 1 would be used. Give a series of at least two volumes.");
}

TEST(VtcImport, AsksForATrWhenTheHeaderHasNone) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.pixdim[4] = 0;
  const std::string image = writeSeries(folder, spec);
  EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), {}); }),
            "its header gives no repetition time. Give it in milliseconds with --tr.");
  ImportOptions options;
  options.trMs = 1500;
  EXPECT_EQ(formats::importVtc(image, folder.file("run.vtc"), options).trMs, 1500);
}

TEST(VtcImport, RefusesAnImplausibleTr) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.pixdim[4] = 2000;  // milliseconds under the unit of seconds
  const std::string image = writeSeries(folder, spec);
  EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), {}); }),
            "its header gives an implausible repetition time of 2000000 ms. "
            "Give the right one in milliseconds with --tr.");
}

TEST(VtcImport, RefusesATrOfLessThanTwentyMilliseconds) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.pixdim[4] = 0.0125;
  EXPECT_EQ(reasonOf([&] { formats::importVtc(writeSeries(folder, spec), folder.file("run.vtc"), {}); }),
            "its header gives an implausible repetition time of 12.5 ms. "
            "Give the right one in milliseconds with --tr.");
}

TEST(VtcImport, RecordsTheThresholdAndTheSpaceOfTheFormInUse) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.sformCode = 0;
  spec.qformCode = 4;
  ImportOptions options;
  options.maskPath.clear();
  options.threshold = 137;
  formats::importVtc(writeSeries(folder, spec), folder.file("run.vtc"), options);
  const auto sidecar = formats::readVtcSidecar(folder.file("run.vtc"));
  ASSERT_TRUE(sidecar.has_value());
  EXPECT_EQ(sidecar->threshold, 137);
  EXPECT_EQ(sidecar->spaceCode, 4);
}

TEST(VtcImport, RefusesSixteenBitsForValuesBelowZero) {
  const Scratch folder;
  ImportOptions options;
  options.type = formats::VtcType::kUint16;
  const std::string image = writeSeries(folder, seriesSpec());
  EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), options); }),
            "some of its values do not fit 16 bits (0 to 65,535). Choose --type float32.");
  EXPECT_FALSE(std::filesystem::exists(folder.file("run.vtc")));
  EXPECT_FALSE(std::filesystem::exists(folder.file("run.vtc.json")));
}

TEST(VtcImport, RefusesAMaskThatIsEmptyOrElsewhere) {
  const Scratch folder;
  const std::string image = writeSeries(folder, seriesSpec());
  NiftiSpec spec;
  spec.dim = {3, kX, kY, kZ, 1, 1, 1, 1};
  ImportOptions options;
  options.maskPath = folder.file("m.nii");
  fakes::writeBytes(options.maskPath, niftiHeader(spec) + niftiData(spec, std::vector<double>(kVoxels, 0)));
  EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), options); }),
            "the mask is empty. Give a mask with voxels other than 0.");
  spec.sform[3] += 5;
  fakes::writeBytes(options.maskPath, niftiHeader(spec) + niftiData(spec, std::vector<double>(kVoxels, 1)));
  EXPECT_EQ(reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), options); }),
            "its voxels do not lie where those of " + image +
                " lie (the affines differ). Resample one of them to the grid of the other.");
}

TEST(VtcImport, WarnsOfVoxelsThatNoMapCanHold) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.dataType = 16;
  spec.bitsPerValue = 32;
  std::vector<double> values(kVoxels * kVolumes, 5);
  values[3] = std::nan("");
  folder.write("run.nii", niftiHeader(spec) + niftiData(spec, values));
  const auto report = formats::importVtc(folder.file("run.nii"), folder.file("run.vtc"), {});
  EXPECT_EQ(report.warnings,
            (std::vector<std::string>{
                "1 voxels have no finite first value and will be left out of every map",
                "no voxel exceeds the inclusion threshold at the first volume, so every map will be empty: "
                "give a mask with --mask"}));
}

TEST(VtcImport, WarnsWhenTheShiftRoundsTheValues) {
  const Scratch folder;
  NiftiSpec spec = seriesSpec();
  spec.dataType = 16;
  spec.bitsPerValue = 32;
  const auto warningsFor = [&](double scale) {
    std::vector<double> values;
    for (int i = 0; i < kVoxels * kVolumes; ++i) values.push_back(scale * (i % 7));
    folder.write("run.nii", niftiHeader(spec) + niftiData(spec, values));
    ImportOptions options;
    options.maskPath = writeMask(folder);
    return formats::importVtc(folder.file("run.nii"), folder.file("run.vtc"), options).warnings;
  };
  EXPECT_TRUE(warningsFor(1).empty());
  EXPECT_EQ(warningsFor(1e-4),
            (std::vector<std::string>{
                "its values change so little from volume to volume that adding the constant rounds them: "
                "multiply the image by a large number first"}));
}

TEST(VtcImport, RefusesMoreVolumesThanAVtcHolds) {
  const Scratch folder;
  NiftiSpec spec;
  spec.version = 2;
  spec.dim = {4, 1, 1, 1, 40000, 1, 1, 1};
  spec.dataType = 2;
  spec.bitsPerValue = 8;
  folder.write("run.nii", niftiHeader(spec) + std::string(40000, 'x'));
  EXPECT_EQ(reasonOf([&] { formats::importVtc(folder.file("run.nii"), folder.file("run.vtc"), {}); }),
            "a VTC cannot hold 1 x 1 x 1 voxels x 40000 volumes. Crop the image or split the run.");
}

TEST(VtcImport, LeavesNothingWhenTheDiskIsFull) {
  for (const std::size_t memory : {std::size_t{0}, std::size_t{1} << 20U}) {
    const Scratch folder;
    const std::string image = writeSeries(folder, seriesSpec());
    ImportOptions options;
    options.memoryBytes = memory;
    const formats_test::ScopedSystemCalls calls;
    formats::systemCalls().write = [](int, const void*, std::size_t) -> ssize_t {
      errno = ENOSPC;
      return -1;
    };
    EXPECT_NE(
        reasonOf([&] { formats::importVtc(image, folder.file("run.vtc"), options); }).find("No space left"),
        std::string::npos);
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path())) ++files;
    EXPECT_EQ(files, 1U);  // the image
  }
}

TEST(VtcExport, TakesTheShiftOffAgain) {
  const Scratch folder;
  ImportOptions options;
  options.maskPath = writeMask(folder);
  formats::importVtc(writeSeries(folder, seriesSpec()), folder.file("run.vtc"), options);
  for (const std::size_t memory : {std::size_t{0}, std::size_t{1} << 20U}) {
    formats::exportVtc(folder.file("run.vtc"), folder.file("back.nii.gz"), memory);
    formats::NiftiStream stream(folder.file("back.nii.gz"));
    EXPECT_EQ(stream.header().trMs, 2000);
    EXPECT_EQ(stream.header().affine, formats::readImageHeader(folder.file("run.nii.gz")).affine);
    EXPECT_EQ(stream.header().sformCode, 1);
    std::vector<float> values(kVoxels * kVolumes);
    stream.readValues(values.data(), values.size());
    for (int t = 0; t < kVolumes; ++t) {
      for (int v = 0; v < kVoxels; ++v) {
        const double expected = v % 3 == 0 ? storedValue(v, t) : 0;
        ASSERT_EQ(values[static_cast<std::size_t>(t * kVoxels + v)], static_cast<float>(expected))
            << v << ' ' << t;
      }
    }
  }
}

TEST(VtcExport, KeepsSixteenBitDataAndPlacesThemInTalairachSpace) {
  const Scratch folder;
  fakes::VtcSpec spec;
  spec.nrOfVolumes = 4;
  std::vector<float> values(spec.nrOfVoxels() * 4);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<float>(i);
  fakes::writeVtc(folder.file("old.vtc"), spec, values);
  formats::exportVtc(folder.file("old.vtc"), folder.file("old.nii"));
  const auto image = formats::readVolume(folder.file("old.nii"), 3);
  EXPECT_EQ(image.header.dataType, formats::DataType::kUint16);
  EXPECT_EQ(image.values[5], 23.0F);
  EXPECT_EQ(image.header.sformCode, 3);
  EXPECT_EQ(formats::apply(image.header.affine, {0, 0, 0}), (formats::Point{128 - 59, 128 - 57, 128 - 52}));
}

TEST(VtcExport, KeepsFractionsOfTheRepetitionTime) {
  const Scratch folder;
  for (const std::int16_t version : {std::int16_t{2}, std::int16_t{3}}) {
    fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 3);
    spec.version = version;
    spec.tr = 1234.5F;
    fakes::writeVtc(folder.file("a.vtc"), spec, std::vector<float>(24, 1));
    formats::exportVtc(folder.file("a.vtc"), folder.file("a.nii"));
    EXPECT_EQ(formats::readImageHeader(folder.file("a.nii")).trMs, 1234.5) << version;
  }
}

TEST(VtcFileHeader, RefusesForeignAndShortFiles) {
  const Scratch folder;
  folder.write("a.vtc", "no VTC at all");
  EXPECT_EQ(
      reasonOf([&] { (void)formats::readVtcFileHeader(folder.file("a.vtc")); }),
      "it is no VTC file of version 2 or later, or its header is damaged. Make it anew with tavmap convert.");
  const fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 3);
  folder.write("b.vtc", fakes::vtcHeaderBytes(spec) + std::string(47, 'x'));
  EXPECT_EQ(reasonOf([&] { (void)formats::readVtcFileHeader(folder.file("b.vtc")); }),
            "the file ends before its last value. Get the file again from its source.");
}

TEST(VtcSidecar, RefusesMistakes) {
  const Scratch folder;
  EXPECT_FALSE(formats::readVtcSidecar(folder.file("a.vtc")).has_value());
  formats::writeVtcSidecar(folder.file("a.vtc"), {});
  const std::string good = contentOf(folder.file("a.vtc.json"));
  const auto messageWith = [&](const std::string& from, const std::string& to) {
    std::string text = good;
    text.replace(text.find(from), from.size(), to);
    folder.write("a.vtc.json", text);
    return reasonOf([&] { (void)formats::readVtcSidecar(folder.file("a.vtc")); });
  };
  EXPECT_EQ(messageWith("\"shift\"", "\"shoft\""), "\"shift\" is missing. Add \"shift\".");
  EXPECT_EQ(messageWith("1.0,", "0.0,"), "affine: the transform has no inverse. Correct the matrix.");
  EXPECT_EQ(messageWith("1.0,\n", ""), "affine[0]: four numbers are expected. Write a 4 x 4 matrix.");
}

}  // namespace
