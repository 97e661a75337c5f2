// The files as an independent reader sees them: nibabel, from the distribution's Python.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "formats/map_set.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_export.h"
#include "formats/vtc_import.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/sample_map_set.h"
#include "tests/support/scratch.h"

namespace {

constexpr const char* kPython = "/usr/bin/python3";

bool hasNibabel() {
  static const bool found =
      std::system((std::string(kPython) + " -c 'import nibabel, numpy' >/dev/null 2>&1").c_str()) == 0;
  return found;
}

#define SKIP_WITHOUT_NIBABEL() \
  if (!hasNibabel()) GTEST_SKIP() << "nibabel is not installed (Debian: python3-nibabel)"

// Runs Python lines with every warning as an error; `image` is the loaded file, `np` numpy.
// Gives what they print.
std::string python(const Scratch& folder, const std::string& path, const std::string& lines) {
  const std::string script = folder.file("check.py");
  fakes::writeBytes(script,
                    "import logging, warnings\nwarnings.simplefilter('error')\n"
                    "import nibabel as nib, numpy as np\n"
                    "nib.imageglobals.logger.addHandler(logging.StreamHandler())\n"
                    "nib.imageglobals.error_level = 30\n"
                    "image = nib.Nifti1Image.from_filename(r'" +
                        path + "')\n" + lines);
  const std::string command =
      std::string(kPython) + " -W ignore -c \"exec(open('" + script + "').read())\" 2>&1";
  std::FILE* pipe = ::popen(command.c_str(), "r");
  std::string out;
  char piece[512];
  while (const std::size_t got = std::fread(piece, 1, sizeof piece, pipe)) out.append(piece, got);
  EXPECT_EQ(::pclose(pipe), 0) << out;
  return out;
}

TEST(Nibabel, OpensAMapSetWithoutWarnings) {
  SKIP_WITHOUT_NIBABEL();
  const Scratch folder;
  formats::saveMapSet(folder.file("a.nii"), formats_test::sampleMapSet());
  const std::string out = python(folder, folder.file("a.nii"), R"(
import json
data = image.get_fdata()
print(image.shape, image.get_data_dtype(), image.header['sform_code'], image.header['qform_code'])
print(data[1, 0, 0, 0].round(4), data[1, 0, 0, 1], data[1, 0, 1, 0].round(4), np.isnan(data[0, 1, 0, 1]))
print(np.array_equal(image.affine, [[0, 0, -3, 69], [-3, 0, 0, 71], [0, -3, 0, 76], [0, 0, 0, 1]]))
print(np.allclose(image.get_qform(), image.get_sform(), atol=1e-4))
extension = image.header.extensions[0]
print(len(image.header.extensions), extension.get_code(),
      json.loads(extension.get_content().rstrip(b'\0'))['maps'][0]['name'])
)");
  EXPECT_EQ(out,
            "(3, 2, 2, 2) float32 3 3\n"
            "0.05 -0.5 0.3 True\n"
            "True\n"
            "True\n"
            "1 6 faces: Ref2Vox\n");
}

TEST(Nibabel, SeesTheSameSeriesAfterImportAndExport) {
  SKIP_WITHOUT_NIBABEL();
  const Scratch folder;
  const std::string example = FORMATS_TEST_EXAMPLES "/oneback-small/";
  formats::ImportOptions options;
  options.maskPath = example + "mask_small.nii.gz";
  formats::importVtc(example + "bold_small.nii.gz", folder.file("run.vtc"), options);
  formats::exportVtc(folder.file("run.vtc"), folder.file("back.nii.gz"));
  const std::string out = python(folder, folder.file("back.nii.gz"), R"(
before = nib.load(r')" + example + R"(bold_small.nii.gz')
mask = np.asarray(nib.load(r')" + example + R"(mask_small.nii.gz').dataobj) != 0
after, data = image.get_fdata(), before.get_fdata()
print(np.array_equal(after[mask], data[mask]), np.abs(after[~mask]).max())
print(np.allclose(image.affine, before.affine, atol=1e-6), image.header.get_zooms()[3], image.header.get_xyzt_units())
)");
  EXPECT_EQ(out, "True 0.0\nTrue 2.0 ('mm', 'sec')\n");
}

TEST(Nibabel, AgreesOnEveryTypeThatIsWritten) {
  SKIP_WITHOUT_NIBABEL();
  using formats::DataType;
  for (const auto type :
       {DataType::kUint8, DataType::kInt16, DataType::kUint16, DataType::kInt32, DataType::kFloat32}) {
    const Scratch folder;
    formats::Image3D image;
    image.header.size = {2, 3, 1};
    image.header.dataType = type;
    image.header.affine = image.header.qform = {{0, -2, 0, 1, 2, 0, 0, 2, 0, 0, 3, 4, 0, 0, 0, 1}};
    image.header.qformCode = 2;
    image.header.intentCode = formats::kLabelIntent;
    image.values = {0, 1, 2, 3, 4, 127};
    formats::writeImage(folder.file("i.nii"), image);
    EXPECT_EQ(python(folder, folder.file("i.nii"), R"(
print(image.get_data_dtype(), image.get_fdata().ravel(order='F'), image.header.get_intent(code_repr='code')[0])
print(np.allclose(image.affine, [[0, -2, 0, 1], [2, 0, 0, 2], [0, 0, 3, 4], [0, 0, 0, 1]], atol=1e-6))
)"),
              std::string(formats::nameOf(type)) + " [  0.   1.   2.   3.   4. 127.] 1002\nTrue\n");
  }
}

}  // namespace
