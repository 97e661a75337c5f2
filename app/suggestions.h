// What may have been meant by words of the command line that are no verb or option.
#ifndef TAVMAP_APP_SUGGESTIONS_H
#define TAVMAP_APP_SUGGESTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace app {

// One sentence per word that the last parse of the program left over and whose nearest name is near enough;
// for a word in the place of the verb, the verbs there are when none is near. Internal verbs are not told.
[[nodiscard]] std::vector<std::string> suggestionsFor(const CLI::App& program);

}  // namespace app

#endif
