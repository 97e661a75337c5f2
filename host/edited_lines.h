// Lines typed at a terminal with editing, a history of the session and completion by the Tab key. The only
// file that knows the editing library, libedit; what the person has set in ~/.editrc holds here too.
#ifndef TAVMAP_HOST_EDITED_LINES_H
#define TAVMAP_HOST_EDITED_LINES_H

#include <memory>

#include "host/line_reader.h"

namespace host {

class EditedLines : public LineReader {
 public:
  // Standard input and output are a terminal that can move its cursor. Elsewhere lines are read plainly.
  [[nodiscard]] static bool arePossible();

  EditedLines();  // throws std::runtime_error when the library refuses the terminal
  ~EditedLines() override;
  EditedLines(const EditedLines&) = delete;
  EditedLines& operator=(const EditedLines&) = delete;
  [[nodiscard]] bool read(const std::string& prompt, const Completer& completer, std::string& line) override;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace host

#endif
