#include "report/html.h"

#include <gtest/gtest.h>

namespace {

using namespace report;

TEST(HtmlText, HasEntitiesForMarkup) {
  EXPECT_EQ(text("<b a=\"1\">&'x'</b>"), "&lt;b a=&quot;1&quot;&gt;&amp;&#39;x&#39;&lt;/b&gt;");
}

TEST(HtmlText, KeepsLettersOfAnyLanguage) {
  EXPECT_EQ(text("\xC3\xA4 \xE6\x97\xA5 \xF0\x9F\xA7\xA0"), "\xC3\xA4 \xE6\x97\xA5 \xF0\x9F\xA7\xA0");
}

std::string encoded(unsigned code) {
  const auto part = [code](unsigned shift, unsigned lead, unsigned mask) {
    return static_cast<char>(lead | ((code >> shift) & mask));
  };
  if (code < 0x800) return {part(6, 0xC0, 0x1F), part(0, 0x80, 0x3F)};
  if (code < 0x10000) return {part(12, 0xE0, 0x0F), part(6, 0x80, 0x3F), part(0, 0x80, 0x3F)};
  return {part(18, 0xF0, 0x07), part(12, 0x80, 0x3F), part(6, 0x80, 0x3F), part(0, 0x80, 0x3F)};
}

TEST(HtmlText, KeepsEveryCharacterBeyondAscii) {
  std::string all;
  for (unsigned code = 0x80; code <= 0x10FFFF; ++code)
    if (code < 0xD800 || code > 0xDFFF) all += encoded(code);
  EXPECT_TRUE(text(all) == all);
}

// Those whose first or last byte is next to one that is allowed.
TEST(HtmlText, ReplacesWhatIsJustBeyond) {
  const std::string replacement = "\xEF\xBF\xBD";
  for (const std::string wrong : {"\xC1\xBF", "\xC2\x7E", "\xC2\xC0", "\xE0\x9F\xBF", "\xED\xBF\xBF",
                                  "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"})
    EXPECT_TRUE(text(wrong).starts_with(replacement)) << wrong;
}

// Stray, cut, overlong and forbidden sequences, and control characters.
TEST(HtmlText, ReplacesWhatIsNoText) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(text("a\xFF"
                 "b"),
            "a" + replacement + "b");
  EXPECT_EQ(text("\xC3"), replacement);
  EXPECT_EQ(text("\xC0\xBC"), replacement + replacement);  // an overlong "<"
  EXPECT_EQ(text("\xE0\x80\xBC"), replacement + replacement + replacement);
  EXPECT_EQ(text("\xED\xA0\x80"), replacement + replacement + replacement);  // half of a pair
  EXPECT_EQ(text(std::string_view("\0\x1B\x7F", 3)), replacement + replacement + replacement);
}

TEST(HtmlText, KeepsTabsAndLines) {
  EXPECT_EQ(text("a\tb\nc"), "a\tb\nc");
}

TEST(HtmlName, IsIsolatedFromTheSentenceAroundIt) {
  EXPECT_EQ(name("\xE2\x80\xAE<"), "<bdi>\xE2\x80\xAE&lt;</bdi>");
}

TEST(HtmlElement, HasItsAttributesAsText) {
  EXPECT_EQ(element("p", {{"id", "a\"b"}, {"hidden", ""}}, "x"), "<p id=\"a&quot;b\" hidden>x</p>");
  EXPECT_EQ(single("img", {{"alt", "<"}}), "<img alt=\"&lt;\">");
}

}  // namespace
