#include "host/html_text.h"

#include <gtest/gtest.h>

#include "host/text_layout.h"

namespace {

using host::dialogText;
using host::logText;
using host::wrapped;

TEST(DialogText, BreaksLinesAtBrAndDropsEmphasis) {
  EXPECT_EQ(dialogText("<b>Select VOIs</b><br>Each <i>TAV</i><br><br>0. <i>Stop selecting</i><br>"),
            "Select VOIs\nEach TAV\n\n0. Stop selecting");
}

TEST(DialogText, CollapsesWhiteSpaceAsABrowserDoes) {
  EXPECT_EQ(dialogText("VOI-definitions.\n Make  sure\tnow <br> next"),
            "VOI-definitions. Make sure now\nnext");
}

TEST(DialogText, ShowsALinksTargetBehindIt) {
  EXPECT_EQ(dialogText("See The <b><a href=\"TAV_Help/main.html\">TAV Help Pages</a></b> for more...<br>"),
            "See The TAV Help Pages (TAV_Help/main.html) for more...");
  EXPECT_EQ(dialogText("<a href='x.html'>one</a> <a name=\"y\">two</a>"), "one (x.html) two");
}

TEST(DialogText, KeepsWhatIsNoTag) {
  EXPECT_EQ(dialogText("a < b, <none>, x<"), "a < b, <none>, x<");
  EXPECT_EQ(dialogText("<"), "<");
  EXPECT_EQ(dialogText("</>"), "</>");
  EXPECT_EQ(dialogText(""), "");
}

TEST(DialogText, DecodesEntities) {
  EXPECT_EQ(dialogText("1 &lt; 2 &amp;&amp; &quot;x&quot; &y;"), "1 < 2 && \"x\" &y;");
}

TEST(DialogText, StartsBlocksAndItemsOnTheirOwnLines) {
  EXPECT_EQ(dialogText("<h1>Title</h1>text<ul><li>one<li>two</ul>end"), "Title\ntext\n- one\n- two\nend");
}

TEST(LogText, DropsTagsAndKeepsWhiteSpace) {
  EXPECT_EQ(logText("\n//  <b>TAV</b> -  CNZQ Plugin\n\t5\t-\t100  "),
            "\n//  TAV -  CNZQ Plugin\n\t5\t-\t100  ");
  EXPECT_EQ(logText("one<br>two"), "one\ntwo");
}

TEST(Wrapped, BreaksAtBlanksAndKeepsLongWordsWhole) {
  EXPECT_EQ(wrapped("aa bb cc", 5), "aa bb\ncc");
  EXPECT_EQ(wrapped("a /long/path/name b", 6), "a\n/long/path/name\nb");
  EXPECT_EQ(wrapped("one\n\ntwo", 40), "one\n\ntwo");
  EXPECT_EQ(wrapped("", 10), "");
}

TEST(Wrapped, CountsCharactersNotBytes) {
  EXPECT_EQ(wrapped("éé éé éé", 5), "éé éé\néé");
}

}  // namespace
