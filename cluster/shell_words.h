// Words as a shell reads them back: whatever is in a path or a name, it stays one word on one line.
#ifndef TAVMAP_CLUSTER_SHELL_WORDS_H
#define TAVMAP_CLUSTER_SHELL_WORDS_H

#include <string>
#include <string_view>
#include <vector>

namespace cluster {

using Command = std::vector<std::string>;  // a program and its arguments

// For bash: as it is where nothing in it means anything to a shell, else in quotes; with control characters
// as $'...', so that no word has more than one line. Precondition: no NUL.
[[nodiscard]] std::string quotedWord(std::string_view word);

// All words of a command, with blanks between them.
[[nodiscard]] std::string shellLine(const Command& command);

}  // namespace cluster

#endif
