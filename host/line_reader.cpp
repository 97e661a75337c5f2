#include "host/line_reader.h"

#include <istream>
#include <ostream>

namespace host {

bool StreamLines::read(const std::string& prompt, const Completer&, std::string& line) {
  out_ << prompt << std::flush;
  if (std::getline(in_, line)) {
    if (echo_) out_ << line << '\n';
    return true;
  }
  in_.clear();  // Ctrl-D in a terminal ends one line, not the session
  out_ << '\n';
  return false;
}

}  // namespace host
