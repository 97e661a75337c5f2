// The words by which a request names confounds: presets and column names.
#ifndef TAVMAP_REQUEST_CONFOUND_TERMS_H
#define TAVMAP_REQUEST_CONFOUND_TERMS_H

#include <string>
#include <string_view>
#include <vector>

namespace study {

// Translations and rotations, as preprocessing names their columns.
const std::vector<std::string>& motionColumns();

// Terms are presets or column names, joined by "+" or given one by one:
//   6motion      translations and rotations
//   24motion     those, their derivatives and the squares of both (Friston et al. 1996)
//   wmcsf        white matter and cerebrospinal fluid signals
//   gs           global signal
//   9p, 36p      6motion + wmcsf + gs; those with derivatives and squares (Satterthwaite et al. 2013)
//   acompcorN    the first N anatomical components (Behzadi et al. 2007)
//   tcompcorN    the first N temporal components
//   cosine       all cosine columns: a high-pass filter, which callers should warn about
//   outliers     all motion_outlier columns
//   name*        all columns that begin so
// Returns names of `columns`, those of the table in `file`, without duplicates. Throws InputError with
// the nearest known name.
[[nodiscard]] std::vector<std::string> expandConfoundTerms(const std::vector<std::string>& terms,
                                                           const std::vector<std::string>& columns,
                                                           const std::string& file);

// What is wrong with a term before any table is known; empty when nothing is.
[[nodiscard]] std::string confoundTermProblem(const std::string& term);

// The columns that begin so, in their order.
[[nodiscard]] std::vector<std::string> columnsBeginningWith(const std::vector<std::string>& columns,
                                                            std::string_view begin);

}  // namespace study

#endif
