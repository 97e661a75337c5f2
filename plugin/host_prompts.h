// The host's prompts with strings in place of character buffers.
#ifndef TAVMAP_PLUGIN_HOST_PROMPTS_H
#define TAVMAP_PLUGIN_HOST_PROMPTS_H

#include <optional>
#include <string>

// Bytes that the host may write into a text or path that it hands over, with the terminating zero.
inline constexpr int kHostTextBytes = 4096;

// Empty: the user cancelled.
[[nodiscard]] std::optional<std::string> askText(const std::string& prompt);
[[nodiscard]] std::optional<std::string> askOpenFile(const std::string& title, const std::string& filter);
[[nodiscard]] std::optional<std::string> askSaveFile(const std::string& title);

// Tells the user why a choice does not hold; a fresh prompt follows.
void refuseSelection(const std::string& reason);

// The host's folder of plug-ins, without a slash at its end.
[[nodiscard]] std::string pluginsFolder();

// The text of a fixed field that the host filled; ends at its first zero or at its size.
template <std::size_t Size>
[[nodiscard]] std::string textOf(const char (&field)[Size]) {
  const std::string whole(field, Size);
  return whole.substr(0, whole.find('\0'));
}

#endif
