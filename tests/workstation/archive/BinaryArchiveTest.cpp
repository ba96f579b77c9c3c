// What other writers of the form do differently, and single things that are wrong, in binary property lists.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "ArchiveTesting.h"

namespace {

using archive_testing::ListMaker;
using archive_testing::read;
using pelmar::Bytes;
using pelmar::Value;

/// The archive of one object that is a plain entry.
Bytes plain(const std::function<ListMaker::Index(ListMaker&)>& root) {
  ListMaker maker;
  return maker.archive({maker.text("$null"), root(maker)});
}

Bytes rawRoot(const Bytes& object) {
  return plain([&](ListMaker& maker) { return maker.raw(object); });
}

struct Accepted {
  const char* what;
  Bytes archive;
  Value expected;
};

struct Refused {
  const char* what;
  Bytes archive;
  const char* reason;
};

void expectAccepted(const std::vector<Accepted>& rows) {
  for (const Accepted& row : rows) {
    SCOPED_TRACE(row.what);
    const auto value = read(row.archive);
    ASSERT_TRUE(value) << value.problem;
    EXPECT_TRUE(archive_testing::sameContent(*value, row.expected));
  }
}

void expectRefused(const std::vector<Refused>& rows) {
  for (const Refused& row : rows) {
    SCOPED_TRACE(row.what);
    const auto value = read(row.archive);
    EXPECT_FALSE(value);
    EXPECT_NE(value.problem.find(row.reason), std::string::npos) << value.problem;
  }
}

TEST(BinaryArchive, scalars_of_every_size_are_read) {
  const std::string text(300, 'x');
  Bytes longText{0x5F, 0x11, 0x01, 0x2C};
  longText.insert(longText.end(), text.begin(), text.end());
  expectAccepted({
      {"1 byte, unsigned", rawRoot({0x10, 0xFF}), std::int64_t{255}},
      {"2 bytes, unsigned", rawRoot({0x11, 0xFF, 0xFE}), std::int64_t{65534}},
      {"4 bytes, unsigned", rawRoot({0x12, 0xFF, 0xFF, 0xFF, 0xFF}), std::int64_t{4294967295}},
      {"8 bytes, signed", rawRoot({0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF9}), std::int64_t{-7}},
      {"16 bytes", rawRoot({0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0}), std::int64_t{256}},
      {"16 bytes, negative",
       rawRoot({0x14, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 254}),
       std::int64_t{-2}},
      {"real of 4 bytes", rawRoot({0x22, 0x3F, 0xC0, 0, 0}), 1.5},
      {"real of 8 bytes", rawRoot({0x23, 0xC0, 0x04, 0, 0, 0, 0, 0, 0}), -2.5},
      {"false", rawRoot({0x08}), false},
      {"true", rawRoot({0x09}), true},
      {"UTF-16", rawRoot({0x62, 0x20, 0xAC, 0, 0x41}),
       "\xE2\x82\xAC"
       "A"},
      {"length in an integer", rawRoot(longText), text},
      {"empty text", rawRoot({0x50}), ""},
  });
}

TEST(BinaryArchive, damaged_objects_are_refused) {
  expectRefused({
      {"integer of 32 bytes", rawRoot({0x15, 0, 0}), "damaged"},
      {"real of 2 bytes", rawRoot({0x21, 0, 0}), "damaged"},
      {"integer beyond 64 bits", rawRoot({0x14, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}), "something else"},
      {"unsigned beyond 63 bits", rawRoot({0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0, 0, 0, 0, 0, 0}), "something else"},
      {"text longer than the file", rawRoot({0x5F, 0x12, 0x7F, 0xFF, 0xFF, 0xFF}), "damaged"},
      {"text of 2^64 - 1 characters", rawRoot({0x5F, 0x13, 255, 255, 255, 255, 255, 255, 255, 255}), "damaged"},
      {"UTF-16 of 2^63 - 1 units", rawRoot({0x6F, 0x13, 0x7F, 255, 255, 255, 255, 255, 255, 255}), "damaged"},
      {"array of 2^62 elements", rawRoot({0xAF, 0x13, 0x40, 0, 0, 0, 0, 0, 0, 0}), "damaged"},
      {"length that is no integer", rawRoot({0x5F, 0x50}), "damaged"},
      {"text with a byte beyond ASCII", rawRoot({0x51, 0xE9}), "characters are damaged"},
      {"lone surrogate", rawRoot({0x61, 0xD8, 0}), "characters are damaged"},
      {"null object", rawRoot({0x00}), "something else"},
      {"data", rawRoot({0x41, 0}), "something else"},
      {"date", rawRoot({0x33, 0, 0, 0, 0, 0, 0, 0, 0}), "something else"},
      {"set", rawRoot({0xC0}), "something else"},
      {"property list array", rawRoot({0xA0}), "something else"},
      {"reference as an object", rawRoot({0x80, 0}), "something else"},
      {"property list dictionary", rawRoot({0xD0}), "\"$class\" is missing"},
      {"infinite number", rawRoot({0x22, 0x7F, 0x80, 0, 0}), "not finite"},
      {"not a number", rawRoot({0x23, 0x7F, 0xF8, 0, 0, 0, 0, 0, 0}), "not finite"},
  });
}

/// An archive of a root dictionary {"k": object 4} whose class is object 3; `change` may replace any part.
struct DictionaryArchive {
  ListMaker maker;
  std::vector<std::uint32_t> keys{2};
  std::vector<std::uint32_t> values{4};
  std::string keyText = "k";
  ListMaker::Index classEntry = maker.classEntry("NSDictionary");
  ListMaker::Index value = maker.integer(1);

  Bytes bytes() {
    return maker.archive(
        {maker.text("$null"), maker.archivedDictionary(keys, values, 3), maker.text(keyText), classEntry, value});
  }
};

Bytes dictionaryArchive(const std::function<void(DictionaryArchive&)>& change) {
  DictionaryArchive archive;
  change(archive);
  return archive.bytes();
}

TEST(BinaryArchive, dictionaries_are_read_however_they_were_written) {
  const Value expected = Value::Dictionary{{"k", 1}};
  const auto withClass = [](const ListMaker::Entries& more, const std::string& name) {
    return dictionaryArchive([&](DictionaryArchive& archive) {
      ListMaker::Entries entries = more;
      entries.emplace_back(archive.maker.text("$classname"), archive.maker.text(name));
      archive.classEntry = archive.maker.dictionary(entries);
    });
  };
  const auto withHints = [](const std::vector<std::string>& hints) {
    return dictionaryArchive([&](DictionaryArchive& archive) {
      std::vector<ListMaker::Index> names;
      for (const std::string& hint : hints) names.push_back(archive.maker.text(hint));
      archive.classEntry = archive.maker.dictionary({{archive.maker.text("$classhints"), archive.maker.array(names)},
                                                     {archive.maker.text("$classname"), archive.maker.text("Own")}});
    });
  };
  expectAccepted({
      {"as it is", dictionaryArchive([](DictionaryArchive&) {}), expected},
      {"mutable twin", withClass({}, "NSMutableDictionary"), expected},
      {"hint", withHints({"NSDictionary"}), expected},
      {"second hint", withHints({"Other", "NSMutableDictionary"}), expected},
  });
  expectRefused({{"unknown class with unknown hints", withHints({"Other"}), "class"},
                 {"unknown class", withClass({}, "NSOrderedSet"), "class"}});
}

TEST(BinaryArchive, wrong_dictionaries_are_refused) {
  expectRefused({
      {"reference out of range", dictionaryArchive([](DictionaryArchive& archive) { archive.values = {5}; }),
       "object 5 of 5"},
      {"key out of range", dictionaryArchive([](DictionaryArchive& archive) { archive.keys = {4000000000u}; }),
       "object 4000000000 of 5"},
      {"nil value", dictionaryArchive([](DictionaryArchive& archive) { archive.values = {0}; }), "nothing"},
      {"nil key", dictionaryArchive([](DictionaryArchive& archive) { archive.keys = {0}; }), "nothing"},
      {"key that is a number", dictionaryArchive([](DictionaryArchive& archive) { archive.keys = {4}; }),
       "a key that is not a text"},
      {"the same key twice", dictionaryArchive([](DictionaryArchive& archive) {
         archive.keys = {2, 2};
         archive.values = {4, 4};
       }),
       "two entries"},
      {"more keys than values", dictionaryArchive([](DictionaryArchive& archive) {
         archive.keys = {2, 2};
       }),
       "2 keys but 1 values"},
      {"its own value", dictionaryArchive([](DictionaryArchive& archive) { archive.values = {1}; }), "itself"},
      {"its own key", dictionaryArchive([](DictionaryArchive& archive) { archive.keys = {1}; }), "itself"},
      {"class that is a text",
       dictionaryArchive([](DictionaryArchive& archive) { archive.classEntry = archive.value; }), "\"$classname\""},
      {"region 3", dictionaryArchive([](DictionaryArchive& archive) {
         archive.keyText = "VertanaAnatomicalRegion";
         archive.value = archive.maker.integer(3);
       }),
       "region"},
      {"region with a fraction", dictionaryArchive([](DictionaryArchive& archive) {
         archive.keyText = "VertanaAnatomicalRegion";
         archive.value = archive.maker.real(0.5);
       }),
       "region"},
  });
  for (const int region : {-1, 0, 1, 2}) {
    const auto value = read(dictionaryArchive([&](DictionaryArchive& archive) {
      archive.keyText = "VertanaAnatomicalRegion";
      archive.value = archive.maker.integer(region);
    }));
    ASSERT_TRUE(value) << value.problem;
    EXPECT_EQ(*value, Value(Value::Dictionary{{"VertanaAnatomicalRegion", region}}));
  }
}

Bytes pointArchive(const std::function<ListMaker::Index(ListMaker&)>& x) {
  ListMaker maker;
  const auto zero = maker.integer(0);
  return maker.archive(
      {maker.text("$null"), maker.archivedPoint(x(maker), zero, zero, 2), maker.classEntry("Point3D")});
}

TEST(BinaryArchive, coordinates_are_finite_numbers_in_single_precision) {
  archive_testing::DoublePointClass points;
  const auto real = [](double number) { return pointArchive([=](ListMaker& maker) { return maker.real(number); }); };
  const auto raw = [](const Bytes& object) {
    return pointArchive([=](ListMaker& maker) { return maker.raw(object); });
  };
  expectAccepted({
      {"8 bytes", real(0.1), points.pointWithX(0.1, 0, 0)},
      {"4 bytes", raw({0x22, 0x3F, 0x80, 0, 0}), points.pointWithX(1, 0, 0)},
      {"integer", raw({0x10, 7}), points.pointWithX(7, 0, 0)},
      {"largest", real(std::numeric_limits<float>::max()), points.pointWithX(std::numeric_limits<float>::max(), 0, 0)},
  });
  const char* reason = "the coordinate \"x\" is not a finite number in single precision";
  expectRefused({
      {"infinite", real(std::numeric_limits<double>::infinity()), reason},
      {"not a number", real(std::numeric_limits<double>::quiet_NaN()), reason},
      {"infinite in 4 bytes", raw({0x22, 0xFF, 0x80, 0, 0}), reason},
      {"beyond single precision", real(-1e39), reason},
      {"text", raw({0x51, '1'}), reason},
      {"boolean", raw({0x09}), reason},
      {"reference", raw({0x80, 0}), reason},
  });
}

TEST(BinaryArchive, string_objects_are_texts) {
  for (const char* name : {"NSString", "NSMutableString"}) {
    ListMaker maker;
    const auto string =
        maker.dictionary({{maker.text("NS.string"), maker.text("$null")}, {maker.text("$class"), maker.uid(2)}});
    const auto value = read(maker.archive({maker.text("$null"), string, maker.classEntry(name)}));
    ASSERT_TRUE(value) << value.problem;
    EXPECT_EQ(*value, Value("$null"));
  }
}

TEST(BinaryArchive, references_are_uids_or_dictionaries_of_one_integer) {
  const auto archive = [](const std::function<ListMaker::Index(ListMaker&)>& reference) {
    ListMaker maker;
    const auto list = maker.dictionary(
        {{maker.text("NS.objects"), maker.array({reference(maker)})}, {maker.text("$class"), maker.uid(3)}});
    return maker.archive({maker.text("$null"), list, maker.text("it"), maker.classEntry("NSArray")});
  };
  const auto dictionaryOf = [&](std::int64_t number) {
    return archive([=](ListMaker& maker) { return maker.dictionary({{maker.text("CF$UID"), maker.integer(number)}}); });
  };
  const auto raw = [&](const Bytes& object) { return archive([=](ListMaker& maker) { return maker.raw(object); }); };
  const Value expected = Value::Array{"it"};
  expectAccepted({{"dictionary", dictionaryOf(2), expected},
                  {"1 byte", raw({0x80, 2}), expected},
                  {"16 bytes", raw({0x8F, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}), expected}});
  expectRefused({
      {"negative", dictionaryOf(-1), "object -1 of 4"},
      {"too large", dictionaryOf(4), "object 4 of 4"},
      {"largest", dictionaryOf(std::numeric_limits<std::int64_t>::max()), "object 9223372036854775807 of 4"},
      {"16 bytes, too large", raw({0x8F, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}), "of 4"},
      {"integer", raw({0x10, 2}), "where a reference must stand"},
      {"text", raw({0x51, '2'}), "where a reference must stand"},
      {"dictionary with another key", archive([](ListMaker& maker) {
         return maker.dictionary({{maker.text("UID"), maker.integer(2)}});
       }),
       "where a reference must stand"},
      {"dictionary with a text", archive([](ListMaker& maker) {
         return maker.dictionary({{maker.text("CF$UID"), maker.text("2")}});
       }),
       "where a reference must stand"},
  });
}

TEST(BinaryArchive, the_top_dictionary_must_be_that_of_an_archive) {
  const auto top = [](const std::function<void(ListMaker&, ListMaker::Entries&)>& change) {
    ListMaker maker;
    const auto objects = maker.array({maker.text("$null"), maker.text("it")});
    ListMaker::Entries entries{{maker.text("$objects"), objects},
                               {maker.text("$top"), maker.dictionary({{maker.text("root"), maker.uid(1)}})},
                               {maker.text("$version"), maker.integer(100000)},
                               {maker.text("$archiver"), maker.text("NSKeyedArchiver")}};
    change(maker, entries);
    return maker.list(maker.dictionary(entries));
  };
  expectAccepted({{"any order", top([](ListMaker&, ListMaker::Entries&) {}), "it"},
                  {"more keys", top([](ListMaker& maker, ListMaker::Entries& entries) {
                     entries.emplace_back(maker.text("other"), maker.integer(1));
                   }),
                   "it"}});
  expectRefused({
      {"no $archiver", top([](ListMaker&, ListMaker::Entries& entries) { entries.pop_back(); }),
       "\"$archiver\" is missing"},
      {"no $objects", top([](ListMaker&, ListMaker::Entries& entries) { entries.erase(entries.begin()); }),
       "\"$objects\" is missing"},
      {"$objects that is a text",
       top([](ListMaker& maker, ListMaker::Entries& entries) { entries[0].second = maker.text("x"); }),
       "\"$objects\" is not an array"},
      {"$top without root",
       top([](ListMaker& maker, ListMaker::Entries& entries) { entries[1].second = maker.dictionary({}); }), "no root"},
      {"$top that is an array",
       top([](ListMaker& maker, ListMaker::Entries& entries) { entries[1].second = maker.array({}); }),
       "something else"},
      {"$version as text",
       top([](ListMaker& maker, ListMaker::Entries& entries) { entries[2].second = maker.text("100000"); }), "version"},
      {"$version twice", top([](ListMaker& maker, ListMaker::Entries& entries) {
         entries.emplace_back(maker.text("$version"), maker.integer(1));
       }),
       "two entries under \"$version\""},
      {"root nil", top([](ListMaker& maker, ListMaker::Entries& entries) {
         entries[1].second = maker.dictionary({{maker.text("root"), maker.uid(0)}});
       }),
       "nothing"},
      {"key out of the table", top([](ListMaker&, ListMaker::Entries& entries) { entries.emplace_back(60000, 60000); }),
       "60000"},
  });
}

}  // namespace
