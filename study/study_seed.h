// The seed of a request that names none: drawn once and kept beside the imported runs, so that repeating an
// interrupted command goes on with it.
#ifndef TAVMAP_STUDY_STUDY_SEED_H
#define TAVMAP_STUDY_STUDY_SEED_H

#include <cstdint>
#include <optional>

#include "request/request.h"

namespace study {

// The one that was drawn before, unset when none was.
[[nodiscard]] std::optional<std::uint32_t> keptSeed(const Request& request);
// That, or one that is drawn and kept now. Throws formats::FileError.
[[nodiscard]] std::uint32_t drawnSeed(const Request& request);

}  // namespace study

#endif
