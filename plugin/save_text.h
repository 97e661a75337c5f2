// Writing a text file whole or not at all.
#ifndef TAVMAP_PLUGIN_SAVE_TEXT_H
#define TAVMAP_PLUGIN_SAVE_TEXT_H

#include <string>

// Replaces the file at `path` by `text`: a temporary file beside it takes the text and is renamed.
// Empty on success; otherwise the system's reason, and the old file, if any, is untouched.
[[nodiscard]] std::string saveTextWhole(const std::string& path, const std::string& text);

#endif
