// Values as TOML spells them.
#ifndef TAVMAP_REQUEST_TOML_TEXT_H
#define TAVMAP_REQUEST_TOML_TEXT_H

#include <fmt/core.h>

#include <string>
#include <string_view>

namespace study {

// In quotes, with what TOML forbids in a text of one line escaped. Precondition: UTF-8.
[[nodiscard]] std::string tomlText(std::string_view text);
// The shortest digits that read back exactly. Precondition: finite.
[[nodiscard]] std::string tomlNumber(double value);

// "[a, b]" of anything that `spell` turns into a TOML value.
template <typename Items, typename Spell>
std::string tomlList(const Items& items, Spell spell) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + std::string(spell(item));
  return fmt::format("[{}]", text);
}

}  // namespace study

#endif
