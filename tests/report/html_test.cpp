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
