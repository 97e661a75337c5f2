// Room for a text that the host writes without being told how much fits.
#ifndef TAVMAP_PLUGIN_TEXT_BUFFER_H
#define TAVMAP_PLUGIN_TEXT_BUFFER_H

#include <array>
#include <string>

// Holds the longest path that Linux has (4096 bytes with its terminating zero); zero-filled.
class TextBuffer {
 public:
  [[nodiscard]] char* data() { return bytes_.data(); }
  [[nodiscard]] std::string text() const { return bytes_.data(); }

 private:
  std::array<char, 4096> bytes_{};
};

#endif
