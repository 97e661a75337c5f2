// What explains an output folder as a whole to people and to validators.
#ifndef TAVMAP_RESULTS_OUTPUT_FOLDER_H
#define TAVMAP_RESULTS_OUTPUT_FOLDER_H

#include <filesystem>
#include <string>

namespace study {

// Writes the file unless one is there that is not this program's. Throws formats::FileError.
void writeUnlessForeign(const std::filesystem::path& file, const std::string& text);

// README and .bidsignore.
void explainOutputFolder(const std::filesystem::path& folder);

}  // namespace study

#endif
