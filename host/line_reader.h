// Where a person's lines come from: a stream read as it stands, or a terminal with line editing
// (edited_lines.h).
#ifndef TAVMAP_HOST_LINE_READER_H
#define TAVMAP_HOST_LINE_READER_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace host {

// Every whole line that `typed`, the line so far, may be meant to become. Empty function: no completion.
using Completer = std::function<std::vector<std::string>(const std::string& typed)>;

class LineReader {
 public:
  virtual ~LineReader() = default;
  // Shows the prompt and takes a line, without its end. False: the input has ended; the next call may find
  // more.
  [[nodiscard]] virtual bool read(const std::string& prompt, const Completer& completer,
                                  std::string& line) = 0;
};

class StreamLines : public LineReader {
 public:
  // Both streams must outlive the reader. With `echo` every line read is written as well: for input that
  // comes from a pipe or file, so that what is shown reads as it would at a terminal.
  StreamLines(std::istream& in, std::ostream& out, bool echo) : in_(in), out_(out), echo_(echo) {}
  [[nodiscard]] bool read(const std::string& prompt, const Completer& completer, std::string& line) override;

 private:
  std::istream& in_;
  std::ostream& out_;
  bool echo_;
};

}  // namespace host

#endif
