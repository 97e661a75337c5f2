// JSON documents of this program's files: parsing and checked access, with messages that say
// where in which file something is wrong. The only header that exposes the JSON library.
#ifndef TAVMAP_FORMATS_JSON_FILE_H
#define TAVMAP_FORMATS_JSON_FILE_H

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>

namespace formats {

using Json = nlohmann::ordered_json;

// Throws FileError with line and column for what is no JSON.
[[nodiscard]] Json parseJson(const std::string& text, const std::string& path);

// One value of a document and the way to it, such as "vois[2].name".
class JsonPlace {
 public:
  JsonPlace(const Json& value, std::string path) : value_(&value), path_(std::move(path)) {}

  [[nodiscard]] const Json& value() const { return *value_; }
  [[nodiscard]] bool has(const char* key) const { return value_->is_object() && value_->contains(key); }
  // All of these throw FileError when the value is missing or of another kind.
  [[nodiscard]] JsonPlace member(const char* key) const;
  [[nodiscard]] JsonPlace element(std::size_t index) const;
  [[nodiscard]] std::size_t elements() const;  // of an array
  [[nodiscard]] std::string text() const;
  [[nodiscard]] bool boolean() const;
  [[nodiscard]] double number() const;
  [[nodiscard]] std::int32_t integer() const;
  // Refuses keys other than these: a misspelt one would otherwise be overlooked.
  void allowOnly(std::initializer_list<const char*> keys) const;
  [[noreturn]] void fail(const std::string& reason, const std::string& remedy) const;

 private:
  JsonPlace(const Json& value, std::string path, std::string where)
      : value_(&value), path_(std::move(path)), where_(std::move(where)) {}

  const Json* value_;
  std::string path_;
  std::string where_;
};

}  // namespace formats

#endif
