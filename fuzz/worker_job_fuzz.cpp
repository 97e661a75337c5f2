// Job files of any text: a job or an InputError. A job that was read is written and read again the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "formats/file_error.h"
#include "request/problem.h"
#include "study/worker_job.h"
#include "tests/support/scratch.h"

namespace {

// Where the inputs of the corpus find their images.
const std::filesystem::path& jobFile() {
  static const Scratch scratch;
  static const std::filesystem::path file = scratch.write("bold.nii").parent_path() / "input.job";
  return file;
}

bool readable(const std::string& text, study::WorkerJob& job) {
  try {
    job = study::parseJob(text, jobFile());
    return true;
  } catch (const study::InputError&) {
  } catch (const formats::FileError&) {
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  study::WorkerJob job, again;
  if (!readable({reinterpret_cast<const char*>(data), size}, job)) return 0;
  const std::string text = study::jobText(job);
  if (!readable(text, again) || study::jobText(again) != text || !(again.request == job.request))
    std::abort();
  return 0;
}
