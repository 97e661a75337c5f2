// Answer scripts: what a person would answer, one dialog per line, in the order of the dialogs.
//
//   integer 3            text faces           float 0.5
//   open run1.vtc        save out/maps        yes      no      cancel
//   message You have already selected        a message box whose text contains this
//
// Blank lines are ignored, and so is what follows a '#': at the start of a line any, elsewhere one
// between blanks, so that "text run #2" stays whole. A '#' between blanks that belongs to the answer is
// written with a backslash before it, and so are backslashes before such a '#'.
#ifndef TAVMAP_HOST_SCRIPT_H
#define TAVMAP_HOST_SCRIPT_H

#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class AnswerKind { kInteger, kText, kFloat, kOpen, kSave, kYes, kNo, kCancel, kMessage };

struct Answer {
  AnswerKind kind;
  std::string value;
  int line;  // from 1
};

struct Script {
  std::string path;    // as it is named in messages
  std::string folder;  // where relative paths start
  std::vector<Answer> answers;
};

// "integer", "text", ...: the tag of a kind.
[[nodiscard]] std::string_view tagOf(AnswerKind kind);

// The line of a script that gives this answer, without its end. A value has no line ends, and no blanks at
// its ends.
[[nodiscard]] std::string scriptLine(AnswerKind kind, const std::string& value);

// A script from its text. Throws RunEnded (bad input), naming path, line and the known tags.
[[nodiscard]] Script parseScript(std::string_view text, const std::string& path);

// A script from its file. Throws RunEnded (bad input) when it cannot be read.
[[nodiscard]] Script readScript(const std::string& path);

}  // namespace host

#endif
