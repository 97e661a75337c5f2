// Label tables of any text: a table of distinct, named regions or a FileError.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "formats/file_error.h"
#include "formats/label_table.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void requirePromises(const formats::LabelTable& table) {
  for (const formats::Label& label : table.labels) {
    require(label.index != 0 && !label.name.empty());
    require(table.find(label.index) == &label && table.nameOf(label.index) == label.name);
    require(!label.color || *label.color <= 0xFFFFFFU);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    requirePromises(formats::parseLabelTable({reinterpret_cast<const char*>(data), size}, "input"));
  } catch (const formats::FileError&) {
  }
  return 0;
}
