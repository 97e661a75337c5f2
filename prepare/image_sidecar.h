// What the JSON file beside an image says about it, as far as this method is concerned.
#ifndef TAVMAP_PREPARE_IMAGE_SIDECAR_H
#define TAVMAP_PREPARE_IMAGE_SIDECAR_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace study {

struct ImageSidecar {
  std::filesystem::path file;        // empty: there is none
  std::optional<double> trSeconds;   // RepetitionTime
  std::vector<std::string> filters;  // names of entries that speak of temporal filtering
  std::string resolution;            // Resolution, as JSON; empty: not stated
};

// "X.json" beside "X.nii.gz" or "X.nii". A file that is not JSON throws InputError; a missing one
// gives an empty record.
[[nodiscard]] ImageSidecar readImageSidecar(const std::filesystem::path& image);
// The same from the text of the sidecar `file`.
[[nodiscard]] ImageSidecar parseImageSidecar(const std::string& text, const std::filesystem::path& file);

// Throws InputError when the sidecar states another repetition time than the one that `who` gives; more than
// a millisecond apart.
void requireTimeOf(const ImageSidecar& sidecar, double seconds, const std::string& who);

// The repetition time to work with: the chosen one if there is one (> 0), else header and sidecar
// when they agree within a millisecond or only one of them knows. A header without unit or with 0
// does not know. Throws InputError naming both values when they differ, when nobody knows, and for a time
// below 0.1 s or above 20 s.
[[nodiscard]] double repetitionTime(const std::string& run, double chosenSeconds, double headerSeconds,
                                    const ImageSidecar& sidecar);

}  // namespace study

#endif
