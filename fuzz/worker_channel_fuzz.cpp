// What comes from a worker, of any bytes: messages or a RunError, the same ones however they come in
// pieces.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "request/problem.h"
#include "study/worker_channel.h"

namespace {

// Everything that was understood, written down.
std::string understood(std::string_view bytes, std::size_t piece) {
  study::MessageReader reader;
  std::string all;
  try {
    while (!bytes.empty()) {
      reader.take(bytes.substr(0, piece));
      bytes.remove_prefix(std::min(piece, bytes.size()));
      while (const auto message = reader.next()) {
        all += std::to_string(static_cast<int>(message->word)) + " " + message->text + "\n";
      }
    }
  } catch (const study::RunError&) {
    all += "no message";
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string whole = understood(bytes, bytes.size());
  if (understood(bytes, 1) != whole || understood(bytes, 7) != whole) std::abort();
  return 0;
}
