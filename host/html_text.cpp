#include "host/html_text.h"

#include <fmt/core.h>

#include <array>
#include <cctype>
#include <optional>
#include <utility>

namespace host {
namespace {

struct Tag {
  std::string name;  // in lower case
  bool closing = false;
  std::string target;  // of a link
  std::size_t length = 0;
};

constexpr std::array<std::string_view, 19> kTags = {"b",  "i",  "u",   "em",     "strong", "font", "span",
                                                    "p",  "br", "div", "ul",     "ol",     "li",   "a",
                                                    "h1", "h2", "h3",  "center", "tt"};

bool known(std::string_view name) {
  for (std::string_view tag : kTags)
    if (tag == name) return true;
  return false;
}

// The value of href="..." (or with single quotes) within a tag's text.
std::string linkTarget(std::string_view tag) {
  const std::size_t key = tag.find("href=");
  if (key == std::string_view::npos || key + 6 > tag.size()) return {};
  const char quote = tag[key + 5];
  const std::size_t end = tag.find(quote, key + 6);
  if ((quote != '"' && quote != '\'') || end == std::string_view::npos) return {};
  return std::string(tag.substr(key + 6, end - key - 6));
}

// The tag at the start of `text`, which begins with '<'; none when that '<' is plain text.
std::optional<Tag> tagAt(std::string_view text) {
  const std::size_t end = text.find('>');
  if (end == std::string_view::npos) return std::nullopt;
  Tag tag;
  tag.length = end + 1;
  tag.closing = text[1] == '/';
  for (std::size_t i = tag.closing ? 2 : 1; i < end && std::isalnum(static_cast<unsigned char>(text[i])) != 0;
       ++i)
    tag.name += static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
  if (!known(tag.name)) return std::nullopt;
  if (tag.name == "a") tag.target = linkTarget(text.substr(0, end));
  return tag;
}

struct Entity {
  std::string_view name;
  char character;
};
constexpr std::array<Entity, 5> kEntities = {
    {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&nbsp;", ' '}}};

const Entity* entityAt(std::string_view text) {
  for (const Entity& entity : kEntities)
    if (text.substr(0, entity.name.size()) == entity.name) return &entity;
  return nullptr;
}

// Walks a fragment and hands its pieces to a writer with character(char), literal(char) (an
// entity: never white space to be collapsed) and tag(const Tag&).
template <typename Writer>
void walk(std::string_view html, Writer& writer) {
  while (!html.empty()) {
    if (html.front() == '<') {
      if (const std::optional<Tag> tag = tagAt(html)) {
        writer.tag(*tag);
        html.remove_prefix(tag->length);
        continue;
      }
    }
    if (const Entity* entity = html.front() == '&' ? entityAt(html) : nullptr) {
      writer.literal(entity->character);
      html.remove_prefix(entity->name.size());
      continue;
    }
    writer.character(html.front());
    html.remove_prefix(1);
  }
}

class LogWriter {
 public:
  void character(char c) { text_ += c; }
  void literal(char c) { text_ += c; }
  void tag(const Tag& tag) {
    if (tag.name == "br") text_ += '\n';
  }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

class DialogWriter {
 public:
  void character(char c) {
    if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      blankPending_ = true;
      return;
    }
    literal(c);
  }

  void literal(char c) {
    if (blankPending_ && !text_.empty() && text_.back() != '\n') text_ += ' ';
    blankPending_ = false;
    text_ += c;
  }

  void tag(const Tag& tag) {
    if (tag.name == "br") breakLine();
    if (tag.name == "li" && !tag.closing) startItem();
    if (tag.name == "a") link(tag);
    if (isBlock(tag.name) && !text_.empty() && text_.back() != '\n') breakLine();
  }

  std::string take() {
    while (!text_.empty() && text_.back() == '\n') text_.pop_back();
    const std::size_t first = text_.find_first_not_of('\n');
    return first == std::string::npos ? std::string() : text_.substr(first);
  }

 private:
  static bool isBlock(std::string_view name) {
    return name == "p" || name == "div" || name == "ul" || name == "ol" || name == "center" ||
           (name.size() == 2 && name[0] == 'h');
  }

  void breakLine() {
    text_ += '\n';
    blankPending_ = false;
  }

  void startItem() {
    if (!text_.empty() && text_.back() != '\n') breakLine();
    text_ += "- ";
    blankPending_ = false;
  }

  void link(const Tag& tag) {
    if (!tag.closing) target_ = tag.target;
    if (tag.closing && !target_.empty()) text_ += fmt::format(" ({})", std::exchange(target_, {}));
  }

  std::string text_;
  std::string target_;
  bool blankPending_ = false;
};

}  // namespace

std::string dialogText(std::string_view html) {
  DialogWriter writer;
  walk(html, writer);
  return writer.take();
}

std::string logText(std::string_view html) {
  LogWriter writer;
  walk(html, writer);
  return writer.take();
}

}  // namespace host
