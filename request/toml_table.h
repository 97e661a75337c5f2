// Strict reading of TOML tables: every key must be known, every value of the right type and range,
// and every complaint names file, line and the nearest known name.
#ifndef TAVMAP_REQUEST_TOML_TABLE_H
#define TAVMAP_REQUEST_TOML_TABLE_H

#include <toml++/toml.h>

#include <string>
#include <string_view>
#include <vector>

namespace study {

class TomlTable {
 public:
  // Borrows the table. `where` is how messages name it, "[settings]". Keys other than `known` throw
  // InputError at once.
  TomlTable(const toml::table& table, std::string file, std::string where, std::vector<std::string> known);

  [[nodiscard]] bool has(std::string_view key) const { return table_.contains(key); }
  int line() const;                      // of the table, 0 when it has none
  int line(std::string_view key) const;  // of the key's value

  // Each returns the fallback when the key is absent and throws InputError for a wrong type or a
  // value outside [least, most].
  [[nodiscard]] std::string text(std::string_view key, std::string fallback = "") const;
  [[nodiscard]] bool flag(std::string_view key, bool fallback) const;
  [[nodiscard]] int integer(std::string_view key, int fallback, int least, int most) const;
  [[nodiscard]] double number(std::string_view key, double fallback, double least, double most) const;
  // A text or a list of texts. Integers count as texts when allowed ("labels = [3, 4]").
  [[nodiscard]] std::vector<std::string> texts(std::string_view key, bool integersToo = false) const;
  [[nodiscard]] std::vector<double> numbers(std::string_view key) const;
  const toml::array* array(std::string_view key) const;
  const toml::table* subtable(std::string_view key) const;

  [[noreturn]] void fail(std::string_view key, const std::string& message) const;
  [[nodiscard]] const std::string& file() const { return file_; }

 private:
  const toml::table& table_;
  std::string file_, where_;
};

// "FILE:LINE: message" as an InputError; without the line when it is 0.
[[noreturn]] void failAt(const std::string& file, int line, const std::string& message);

}  // namespace study

#endif
