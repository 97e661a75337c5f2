// Answer scripts of any text: answers in the order of their lines, or the end of the run.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "host/run_ended.h"
#include "host/script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto script = host::parseScript({reinterpret_cast<const char*>(data), size}, "input");
    int line = 0;
    for (const host::Answer& answer : script.answers) {
      if (answer.line <= line || answer.value.find('\n') != std::string::npos) std::abort();
      if (host::tagOf(answer.kind).empty()) std::abort();
      line = answer.line;
    }
  } catch (const host::RunEnded& end) {
    if (end.exitCode != host::kExitBadInput || end.message.empty()) std::abort();
  }
  return 0;
}
