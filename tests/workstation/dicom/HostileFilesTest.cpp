// Files that are made to hurt: none may crash, hang or take memory out of proportion.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <string>

#include "DicomFixtures.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

void append(Bytes& bytes, const std::string& text) { bytes.insert(bytes.end(), text.begin(), text.end()); }

void append(Bytes& bytes, std::uint32_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void appendTag(Bytes& bytes, std::uint32_t tag) {
  append(bytes, tag >> 16, 2);
  append(bytes, tag & 0xffff, 2);
}

/// Preamble, mark and a file meta information that names the transfer syntax.
Bytes fileHeader(std::string syntax) {
  Bytes bytes(128, 0);
  append(bytes, "DICM");
  if (syntax.size() % 2 != 0) syntax += '\0';
  appendTag(bytes, 0x00020000);
  append(bytes, "UL");
  append(bytes, 4, 2);
  append(bytes, static_cast<std::uint32_t>(8 + syntax.size()), 4);
  appendTag(bytes, 0x00020010);
  append(bytes, "UI");
  append(bytes, static_cast<std::uint32_t>(syntax.size()), 2);
  append(bytes, syntax);
  return bytes;
}

constexpr const char* implicitSyntax = "1.2.840.10008.1.2";
constexpr const char* explicitSyntax = "1.2.840.10008.1.2.1";

Bytes nested(int depth, bool isExplicit, std::uint32_t length) {
  Bytes bytes = fileHeader(isExplicit ? explicitSyntax : implicitSyntax);
  for (int level = 0; level < depth; ++level) {
    appendTag(bytes, 0x00081140);
    if (isExplicit) append(bytes, std::string("SQ\0\0", 4));
    append(bytes, length, 4);
    appendTag(bytes, 0xfffee000);
    append(bytes, length, 4);
  }
  for (int level = 0; level < depth && length == 0xffffffff; ++level) {
    appendTag(bytes, 0xfffee00d);
    append(bytes, 0, 4);
    appendTag(bytes, 0xfffee0dd);
    append(bytes, 0, 4);
  }
  return bytes;
}

class HostileFiles : public testing::Test {
 protected:
  /// Reads the file, and its pixels where it has any.
  std::string read(const Bytes& bytes) {
    writeBytes(folder_.file("hostile.dcm"), bytes);
    const ReadResult result = readImages(folder_.path());
    PixelReader reader;
    std::string problem;
    for (const ImageRecord& image : result.images) reader.pixels(image, problem);
    return reasonFor(folder_.file("hostile.dcm"), result) + problem;
  }
  TemporaryFolder folder_;
};

TEST_F(HostileFiles, TenThousandNestedSequencesAreRefused) {
  for (const bool isExplicit : {false, true})
    EXPECT_NE(read(nested(10000, isExplicit, 0xffffffff)).find("nested too deeply"), std::string::npos);
}

TEST_F(HostileFiles, AMillionNestedSequencesAreRefused) {
  EXPECT_NE(read(nested(1000000, true, 0xffffffff)).find("nested too deeply"), std::string::npos);
}

TEST_F(HostileFiles, NestedSequencesOfStatedLengthAreRefused) {
  EXPECT_FALSE(read(nested(10000, false, 0x7fffffff)).empty());
}

TEST_F(HostileFiles, AHundredNestedSequencesAreRead) {
  EXPECT_EQ(read(nested(100, true, 0xffffffff)).find("nested"), std::string::npos);
}

TEST_F(HostileFiles, LengthsBeyondTheEndOfTheFileTakeNoMemory) {
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  for (const std::uint32_t tag : {0x00081030U, 0x00100010U, 0x00280010U, 0x7fe00010U}) {
    for (const std::string representation : {"UN", "OB", "UT", "OW"}) {
      Bytes bytes = fileHeader(explicitSyntax);
      appendTag(bytes, tag);
      append(bytes, representation + std::string(2, '\0'));
      append(bytes, 0xfffffff0, 4);
      append(bytes, "few bytes");
      EXPECT_FALSE(read(bytes).empty()) << std::hex << tag << " " << representation;
    }
  }
  rusage after{};
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 200 * 1024) << "kilobytes more at the peak";
}

TEST_F(HostileFiles, ElementsInReverseOrderDoNotTakeForever) {
  Bytes bytes = fileHeader(explicitSyntax);
  for (std::uint32_t element = 60000; element > 0x1010; --element) {
    appendTag(bytes, 0x00090000 + element);
    append(bytes, std::string("CS\0\0", 4));
  }
  read(bytes);  // sorted or refused: that it comes back at all is the test
}

TEST_F(HostileFiles, AnyCutOfAnImageIsRefusedOrReadWhole) {
  write(sagittalImage(), folder_.file("hostile.dcm"));
  const Bytes whole = bytesOf(folder_.file("hostile.dcm"));
  for (std::size_t length = 1; length < whole.size(); ++length) {
    writeBytes(folder_.file("hostile.dcm"), Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    const ReadResult result = readImages(folder_.path());
    ASSERT_TRUE(result.images.empty()) << length;
    ASSERT_EQ(result.unreadable.size() + result.otherObjects.size(), 1U) << length;
  }
}

TEST_F(HostileFiles, ChangedBytesNeverCrash) {
  write(sagittalImage(), folder_.file("hostile.dcm"));
  const Bytes whole = bytesOf(folder_.file("hostile.dcm"));
  std::uint32_t state = 7;
  for (int round = 0; round < 3000; ++round) {
    Bytes bytes = whole;
    for (int change = 0; change < 4; ++change) {
      state = state * 1664525U + 1013904223U;
      bytes[128 + (state >> 8) % (bytes.size() - 128)] = static_cast<std::uint8_t>(state >> 3);
    }
    read(bytes);
  }
}

TEST_F(HostileFiles, AHugeFrameOfFewBytesTakesNoMemory) {
  ImageToWrite image = sagittalImage();
  write(image, folder_.file("hostile.dcm"));
  Bytes bytes = bytesOf(folder_.file("hostile.dcm"));
  const Bytes rows = {0x28, 0x00, 0x10, 0x00, 'U', 'S', 2, 0, 6, 0};
  const auto found = std::search(bytes.begin(), bytes.end(), rows.begin(), rows.end());
  ASSERT_NE(found, bytes.end());
  *(found + 8) = 0xff;
  *(found + 9) = 0xff;
  EXPECT_NE(read(bytes).find("truncated"), std::string::npos);
}

}  // namespace
}  // namespace workstation::test
