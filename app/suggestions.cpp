#include "app/suggestions.h"

#include <fmt/core.h>

#include "request/nearest_name.h"

namespace app {
namespace {

using Names = std::vector<std::string>;

Names verbsOf(const CLI::App& program) {
  Names names;
  for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; })) {
    if (!verb->get_group().empty() && !verb->get_name().empty()) names.push_back(verb->get_name());
  }
  return names;
}

// Long names without their dashes, those of option groups too.
void addOptions(const CLI::App& command, Names& names) {
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back(name);
  }
  for (const CLI::App* inner : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (inner->get_name().empty()) addOptions(*inner, names);
  }
}

bool isLongOption(const std::string& word) {
  return word.size() > 2 && word.starts_with("--");
}

std::string optionSuggestion(const std::string& word, const CLI::App& command) {
  Names names;
  addOptions(command, names);
  const std::string nearest = study::nearestName(word.substr(2, word.find('=') - 2), names);
  return nearest.empty() ? "" : fmt::format("there is no option '{}'; did you mean '--{}'?", word, nearest);
}

}  // namespace

std::vector<std::string> suggestionsFor(const CLI::App& program) {
  const std::vector<const CLI::App*> verbs = program.get_subcommands([](const CLI::App*) { return true; });
  const CLI::App* chosen = &program;
  for (const CLI::App* verb : verbs) {
    if (verb->parsed()) chosen = verb;
  }
  Names sentences;
  bool wantsVerb = chosen == &program;
  for (const std::string& word : program.remaining(true)) {
    if (isLongOption(word)) {
      const std::string sentence = optionSuggestion(word, *chosen);
      if (!sentence.empty()) sentences.push_back(sentence);
    } else if (wantsVerb && !word.starts_with('-')) {
      wantsVerb = false;
      sentences.push_back(
          fmt::format("there is no verb '{}'{}", word, study::suggestion(word, verbsOf(program))));
    }
  }
  return sentences;
}

}  // namespace app
