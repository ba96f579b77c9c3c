#include <gtest/gtest.h>

#include "ArchiveTesting.h"

namespace {

using archive_testing::bytesOfText;
using archive_testing::read;
using pelmar::Value;

/// An archive whose root is that element.
std::string archiveOf(const std::string& element) {
  return "<plist version=\"1.0\"><dict>"
         "<key>$archiver</key><string>NSKeyedArchiver</string><key>$version</key><integer>100000</integer>"
         "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
         "<key>$objects</key><array><string>$null</string>" +
         element + "</array></dict></plist>";
}

TEST(XmlArchive, elements_are_read) {
  struct Row {
    const char* what;
    std::string element;
    Value expected;
  };
  const std::vector<Row> rows{
      {"true", "<true/>", true},
      {"false with a closing tag", "<false></false>", false},
      {"integer", "<integer>-12</integer>", -12},
      {"integer with a sign and blanks", "<integer> +12\n</integer>", 12},
      {"largest integer", "<integer>9223372036854775807</integer>", std::int64_t{9223372036854775807}},
      {"real", "<real>-9.799999999999999</real>", -9.799999999999999},
      {"real with an exponent", "<real>1.5e-3</real>", 0.0015},
      {"real without a fraction", "<real>0</real>", 0.0},
      {"text", "<string>L4-L5</string>", "L4-L5"},
      {"empty text", "<string/>", ""},
      {"blanks in a text", "<string> a\tb </string>", " a\tb "},
      {"entities", "<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&#x1D538;</string>",
       "<>&\"'A\xE2\x82\xAC\xF0\x9D\x94\xB8"},
      {"CDATA", "<string>a<![CDATA[<b>&amp;]]>c</string>", "a<b>&amp;c"},
      {"comments", "<!-- x --><string>a<!-- <b> -->c</string>", "ac"},
      {"ends of lines", "<string>a\r\nb\rc\nd</string>", "a\nb\nc\nd"},
      {"UTF-8", "<string>\xC3\xA9</string>", "\xC3\xA9"},
      {"data that nothing refers to", "<string>a</string><data>AAAA</data><date>2001-01-01T00:00:01Z</date>", "a"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const auto value = read(bytesOfText(archiveOf(row.element)));
    ASSERT_TRUE(value) << value.problem;
    EXPECT_TRUE(archive_testing::sameContent(*value, row.expected));
  }
}

TEST(XmlArchive, what_stands_around_the_list_is_passed_over) {
  const std::string archive = archiveOf("<string>a</string>");
  for (const std::string& text :
       {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?>" + archive, " \n" + archive,
        "<?xml version=\"1.0\" encoding=\"US-ASCII\"?><!-- x -->" + archive + "<!-- y -->\n",
        "<?xml version=\"1.0\"?>\n<!DOCTYPE plist SYSTEM \"file://localhost/x.dtd\">" + archive + " \n",
        "<?other thing?>" + archive}) {
    const auto value = read(bytesOfText(text));
    ASSERT_TRUE(value) << value.problem << '\n' << text;
    EXPECT_EQ(*value, Value("a"));
  }
}

TEST(XmlArchive, wrong_elements_are_refused_with_their_line) {
  struct Row {
    const char* element;
    const char* reason;
  };
  for (const Row& row : {
           Row{"\n\n<integer>1.5</integer>", "line 3: <integer> holds no number"},
           Row{"<integer/>", "<integer> holds no number"},
           Row{"<integer>+-1</integer>", "<integer> holds no number"},
           Row{"<integer>0x1F</integer>", "<integer> holds no number"},
           Row{"<real>one</real>", "<real> holds no number"},
           Row{"<real>nan</real>", "not finite"},
           Row{"<real>inf</real>", "not finite"},
           Row{"<real>1e999</real>", "not finite"},
           Row{"<integer>9223372036854775808</integer>", "something else"},
           Row{"<data>AAAA</data>", "something else"},
           Row{"<true>x</true>", "<true> holds a text"},
           Row{"<text>a</text>", "<text> is not an element of property lists"},
           Row{"<string>a<true/></string>", "<string> holds another element"},
           Row{"<string>a</real>", "<string> holds another element"},
           Row{"<string>&nbsp;</string>", "an entity is not known"},
           Row{"<string>&#0;</string>", "an entity is not known"},
           Row{"<string>&#xD800;</string>", "an entity is not known"},
           Row{"<string>&#x110000;</string>", "an entity is not known"},
           Row{"<string>&#99999999999;</string>", "an entity"},
           Row{"<string>&lt</string>", "an entity"},
           Row{"<string>\x01</string>", "control character"},
           Row{"<string>\xC3</string>", "UTF-8"},
           Row{"text", "text where a tag must stand"},
           Row{"<key>a</key>", "a key stands where a value must stand"},
           Row{"<dict><key>a</key></dict>", "a key has no value"},
           Row{"<dict><string>a</string></dict>", "a value in <dict> has no key"},
           Row{"<dict></array>", "<dict> does not end"},
           Row{"<>", "a tag is damaged"},
           Row{"<string", "a tag is damaged"},
           Row{"<![CDATA[a]]>", "is not an element"},
       }) {
    SCOPED_TRACE(row.element);
    const auto value = read(bytesOfText(archiveOf(row.element)));
    EXPECT_FALSE(value);
    EXPECT_NE(value.problem.find(row.reason), std::string::npos) << value.problem;
  }
}

TEST(XmlArchive, what_is_no_property_list_is_refused) {
  struct Row {
    std::string text;
    const char* reason;
  };
  const std::string archive = archiveOf("<string>a</string>");
  for (const Row& row : {
           Row{"", "empty"},
           Row{"hello", "neither"},
           Row{" ", "<plist> is missing"},
           Row{"<html></html>", "<plist> is missing"},
           Row{"<plist></plist>", "exactly one element"},
           Row{"<plist><true/><true/></plist>", "exactly one element"},
           Row{"<plist><string>$archiver</string></plist>", "something else"},
           Row{archive + archive, "more behind </plist>"},
           Row{archive + "x", "text where a tag must stand"},
           Row{"<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + archive, "not UTF-8"},
           Row{"<!DOCTYPE plist [<!ENTITY a \"aaaa\">]>" + archive, "definitions of its own"},
           Row{"<!DOCTYPE plist [", "does not end"},
           Row{"<!-- ", "a comment does not end"},
           Row{"<?xml ", "does not end"},
       }) {
    SCOPED_TRACE(row.text);
    const auto value = read(bytesOfText(row.text));
    EXPECT_FALSE(value);
    EXPECT_NE(value.problem.find(row.reason), std::string::npos) << value.problem;
  }
}

TEST(XmlArchive, nesting_and_number_of_elements_are_bounded) {
  std::string opening;
  for (int i = 0; i < 100000; ++i) opening += "<array>";
  EXPECT_NE(read(bytesOfText("<plist>" + opening)).problem.find("more than 64 deep"), std::string::npos);

  // The dictionary and the array of objects stand around them.
  const auto nested = [](int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += "<array>";
    for (int i = 0; i < levels; ++i) text += "</array>";
    return archiveOf("<string>a</string>" + text);
  };
  EXPECT_TRUE(read(bytesOfText(nested(62))));
  EXPECT_FALSE(read(bytesOfText(nested(63))));

  std::string many;
  for (int i = 0; i < 70000; ++i) many += "<true/>";
  EXPECT_NE(read(bytesOfText(archiveOf(many))).problem.find("more than 65536 elements"), std::string::npos);
}

}  // namespace
