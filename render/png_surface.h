// Pixels as the drawing library has them, and their PNG file. For the files of this folder alone.
#ifndef TAVMAP_RENDER_PNG_SURFACE_H
#define TAVMAP_RENDER_PNG_SURFACE_H

#include <cstdint>
#include <string>
#include <vector>

namespace render {

// words: alpha, red, green, blue from the highest byte on, colours times alpha; rows from the top. Throws
// std::runtime_error.
[[nodiscard]] std::string pngOfWords(int width, int height, const std::vector<std::uint32_t>& words);

}  // namespace render

#endif
