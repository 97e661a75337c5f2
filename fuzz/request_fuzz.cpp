// Request files and configurations for BIDS data sets of any text: a request or an InputError. A request
// that was read is written and read again the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "request/problem.h"
#include "request/request_file.h"
#include "request/request_text.h"
#include "tests/support/scratch.h"

namespace {

// The files that the inputs of the corpus name.
const std::filesystem::path& dataFolder() {
  static const Scratch scratch;
  static const bool written = [] {
    for (const char* name : {"bold.nii", "mask.nii", "events.tsv", "confounds.tsv"}) scratch.write(name);
    return true;
  }();
  (void)written;
  return scratch.folder();
}

void checkRequest(const std::string& text) {
  study::Request request;
  try {
    request = study::withoutLines(study::parseRequest(text, "input", dataFolder()));
  } catch (const study::InputError&) {
    return;
  }
  const std::string written = study::requestText(request);
  if (!(study::withoutLines(study::parseRequest(written, "again", dataFolder())) == request)) std::abort();
}

void checkTemplate(const std::string& text) {
  try {
    (void)study::parseRequestTemplate(text, "input", dataFolder());
  } catch (const study::InputError&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  checkRequest(text);
  checkTemplate(text);
  return 0;
}
