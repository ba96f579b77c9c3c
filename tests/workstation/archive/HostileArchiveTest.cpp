// Archives made to fill the memory, the stack or the time of their reader.

#include <gtest/gtest.h>

#include "ArchiveTesting.h"
#include "workstation/archive/ArchiveBounds.h"

namespace {

using archive_testing::bytesOfText;
using archive_testing::ListMaker;
using archive_testing::read;
using pelmar::Bytes;

void expectRefused(const Bytes& archive, const std::string& reason) {
  const auto value = read(archive);
  EXPECT_FALSE(value);
  EXPECT_NE(value.problem.find(reason), std::string::npos) << value.problem;
}

/// Each archived array holds the next one `width` times; the last is empty.
Bytes sharingArchive(std::uint32_t levels, std::size_t width) {
  ListMaker maker;
  std::vector<ListMaker::Index> objects{maker.text("$null")};
  for (std::uint32_t i = 0; i < levels; ++i)
    objects.push_back(maker.archivedArray(std::vector<std::uint32_t>(i + 1 < levels ? width : 0, i + 2), levels + 1));
  objects.push_back(maker.classEntry("NSArray"));
  return maker.archive(objects);
}

TEST(HostileArchive, shared_archived_objects_do_not_multiply) {
  // 2^40 and 64^20 values.
  expectRefused(sharingArchive(41, 2), "more than 10000 values");
  expectRefused(sharingArchive(21, 64), "more than 10000 values");
}

TEST(HostileArchive, sharing_within_the_bounds_is_no_crime) {
  // 1 + 2 + ... + 2^12 = 8191 values.
  EXPECT_TRUE(read(sharingArchive(13, 2)));
  expectRefused(sharingArchive(14, 2), "more than 10000 values");
}

TEST(HostileArchive, shared_texts_do_not_multiply) {
  ListMaker maker;
  const Bytes archive = maker.archive({maker.text("$null"), maker.archivedArray(std::vector<std::uint32_t>(9000, 2), 3),
                                       maker.text(std::string(16000, 'a')), maker.classEntry("NSArray")});
  expectRefused(archive, "the texts become longer than 131072 bytes");
}

/// 33 objects of a property list; each array but the last holds the next one twice.
Bytes sharedPropertyListArrays() {
  Bytes bytes = bytesOfText("bplist00");
  Bytes offsets;
  for (std::uint8_t i = 0; i < 33; ++i) {
    offsets.push_back(static_cast<std::uint8_t>(bytes.size()));
    const std::uint8_t count = i < 32 ? 2 : 0;
    bytes.push_back(static_cast<std::uint8_t>(0xA0 | count));
    bytes.insert(bytes.end(), count, static_cast<std::uint8_t>(i + 1));
  }
  const auto table = static_cast<std::uint8_t>(bytes.size());
  bytes.insert(bytes.end(), offsets.begin(), offsets.end());
  const Bytes trailer{0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 33,
                      0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, table};
  bytes.insert(bytes.end(), trailer.begin(), trailer.end());
  return bytes;
}

TEST(HostileArchive, shared_containers_of_the_property_list_are_never_copied) {
  const Bytes file = sharedPropertyListArrays();
  EXPECT_LT(file.size(), 217u);
  expectRefused(file, "something else where an object with \"$archiver\" must stand");

  // The same among the objects of an archive that is otherwise whole.
  ListMaker maker;
  std::vector<ListMaker::Index> objects{maker.text("$null"), maker.text("root"), maker.array({})};
  for (int i = 0; i < 60; ++i) objects.push_back(maker.array({objects.back(), objects.back()}));
  const auto value = read(maker.archive(objects));
  ASSERT_TRUE(value) << value.problem;
  EXPECT_EQ(*value, pelmar::Value("root"));
}

TEST(HostileArchive, a_container_of_the_property_list_may_hold_itself) {
  // An array whose only element it is itself, as top.
  Bytes file = bytesOfText("bplist00");
  const Bytes rest{0xA1, 0, 8, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0,
                   1,    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10};
  file.insert(file.end(), rest.begin(), rest.end());
  expectRefused(file, "something else where an object with \"$archiver\" must stand");

  // A list of references that is its own element.
  ListMaker maker;
  const auto self = maker.array({0});
  ASSERT_EQ(self, 0u);
  const auto root = maker.dictionary({{maker.text("NS.objects"), self}, {maker.text("$class"), maker.uid(2)}});
  expectRefused(maker.archive({maker.text("$null"), root, maker.classEntry("NSArray")}), "a reference must stand");
}

/// Archived arrays inside each other, the innermost empty.
Bytes nestedArchive(std::uint32_t levels) { return sharingArchive(levels, 1); }

TEST(HostileArchive, nesting_ends_at_the_bound) {
  EXPECT_TRUE(read(nestedArchive(64)));
  expectRefused(nestedArchive(65), "more than 64 deep");
  expectRefused(nestedArchive(10000), "more than 64 deep");
}

TEST(HostileArchive, hundred_thousand_levels_are_refused) {
  // More objects than a property list may have, each an array that holds the next.
  constexpr std::uint32_t levels = 100000;
  Bytes bytes = bytesOfText("bplist00");
  const auto append = [&](std::uint64_t value, int size) {
    for (int i = size; i-- > 0;) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  };
  for (std::uint32_t i = 0; i < levels; ++i) {
    append(0xA1, 1);
    append((i + 1) % levels, 3);
  }
  const std::size_t table = bytes.size();
  for (std::uint32_t i = 0; i < levels; ++i) append(8 + 4 * i, 3);
  append(0, 6);
  append(3, 1);
  append(3, 1);
  append(levels, 8);
  append(0, 8);
  append(table, 8);
  expectRefused(bytes, "at most 65536 objects");
}

TEST(HostileArchive, cycles_are_refused) {
  {
    ListMaker maker;  // Two arrays that hold each other.
    expectRefused(maker.archive({maker.text("$null"), maker.archivedArray({2}, 3), maker.archivedArray({1}, 3),
                                 maker.classEntry("NSArray")}),
                  "in object 2 there is a reference to object 1, which it is itself a part of");
  }
  {
    ListMaker maker;  // A class that is its own class.
    const auto root = maker.dictionary({{maker.text("$class"), maker.uid(1)}});
    expectRefused(maker.archive({maker.text("$null"), root}), "\"$classname\" is missing");
  }
}

TEST(HostileArchive, objects_with_thousands_of_keys_are_refused) {
  ListMaker maker;
  ListMaker::Entries entries;
  const auto one = maker.integer(1);
  for (int i = 0; i < 65; ++i) entries.emplace_back(maker.text("k" + std::to_string(i)), one);
  expectRefused(maker.archive({maker.text("$null"), maker.dictionary(entries)}), "more than 64 keys");
}

TEST(HostileArchive, arrays_longer_than_the_values_that_may_come_are_refused_at_once) {
  ListMaker maker;
  const auto root = maker.dictionary({{maker.text("NS.objects"), maker.array(std::vector<ListMaker::Index>(60000, 0))},
                                      {maker.text("$class"), maker.uid(2)}});
  expectRefused(maker.archive({maker.text("$null"), root, maker.classEntry("NSArray")}), "more than 10000 values");
}

TEST(HostileArchive, trailers_that_lie_are_refused) {
  const Bytes good = *workstation::writeArchive("it");
  const std::size_t trailer = good.size() - 32;
  struct Row {
    const char* what;
    std::size_t position;
    std::uint8_t byte;
  };
  for (const Row& row :
       {Row{"offsets of no bytes", 6, 0}, Row{"offsets of 9 bytes", 6, 9}, Row{"offsets of 255 bytes", 6, 255},
        Row{"references of no bytes", 7, 0}, Row{"references of 9 bytes", 7, 9}, Row{"2^63 objects", 8, 0x80},
        Row{"no objects", 15, 0}, Row{"more objects than offsets", 15, 200}, Row{"2^16 more objects", 13, 1},
        Row{"top out of range", 23, 200}, Row{"huge top", 16, 1}, Row{"table far behind", 24, 0x7F},
        Row{"table in the signature", 31, 3}}) {
    SCOPED_TRACE(row.what);
    Bytes bytes = good;
    bytes[trailer + row.position] = row.byte;
    expectRefused(bytes, "the last 32 bytes do not describe");
  }
}

TEST(HostileArchive, offsets_that_lead_out_of_the_objects_are_refused) {
  for (const std::uint8_t offset : Bytes{0, 7, 10, 255}) {
    SCOPED_TRACE(static_cast<int>(offset));
    ListMaker maker;
    Bytes bytes = maker.list(maker.raw({0x51, 'a'}));  // one object at bytes 8 and 9, its offset right behind
    bytes[13] = offset;
    expectRefused(bytes, "entry 0 of the property list is damaged or missing");
  }
}

TEST(HostileArchive, a_container_whose_references_reach_into_the_offset_table_is_refused) {
  for (const Bytes& object : {Bytes{0xA2, 0, 0}, Bytes{0xD1, 0, 0}, Bytes{0xD1, 0, 0, 0}}) {
    ListMaker maker;  // a reference takes two bytes
    expectRefused(maker.list(maker.raw(object)), "entry 0 of the property list is damaged or missing");
  }
}

TEST(HostileArchive, too_many_bytes_are_refused) {
  Bytes bytes = *workstation::writeArchive("it");
  bytes.insert(bytes.begin() + 8, workstation::archive_bounds::bytes, 0);
  expectRefused(bytes, "longer than 1048576 bytes");
}

}  // namespace
