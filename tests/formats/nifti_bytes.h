// NIfTI files byte by byte, written without the code under test, so that a test can have any
// version, byte order, data type and scaling, and wrong ones as well.
#ifndef TAVMAP_TESTS_FORMATS_NIFTI_BYTES_H
#define TAVMAP_TESTS_FORMATS_NIFTI_BYTES_H

#include <cstdint>
#include <string>
#include <vector>

namespace formats_test {

struct NiftiSpec {
  int version = 1;
  bool bigEndian = false;
  std::vector<std::int64_t> dim{3, 4, 3, 2, 1, 1, 1, 1};
  int dataType = 16, bitsPerValue = 32;
  std::vector<double> pixdim{1, 2, 3, 4, 2, 0, 0, 0};
  double slope = 0, intercept = 0;
  int unitCode = 10;  // mm, seconds
  int qformCode = 0, sformCode = 1;
  std::vector<double> quaternion{0, 0, 0, 0, 0, 0};  // b, c, d, offsets
  std::vector<double> sform{2, 0, 0, -10, 0, 3, 0, -20, 0, 0, 4, -30};
  double dataOffset = -1;  // -1: right behind header and extensions
  std::string magic;       // empty: the right one
  int intentCode = 0;
  std::string extensions;  // bytes behind the four extender bytes
};

// The header up to the first data value.
[[nodiscard]] std::string niftiHeader(const NiftiSpec& spec);

// Values converted to the data type and byte order of the spec.
[[nodiscard]] std::string niftiData(const NiftiSpec& spec, const std::vector<double>& stored);

[[nodiscard]] std::string gzipped(const std::string& bytes);

}  // namespace formats_test

#endif
