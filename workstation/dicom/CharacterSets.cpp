#include "workstation/dicom/CharacterSets.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <vector>

#include "workstation/dicom/Padding.h"

namespace workstation {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";
constexpr char escape = '\x1b';

/// How the bytes of one graphic set are spelt in an encoding that the C library can convert.
struct GraphicSet {
  const char* encoding;
  std::size_t bytesPerCharacter = 1;
  const char* prefix = "";  ///< put before each character
  bool highBits = true;     ///< whether the encoding wants the bytes with bit 7 set
};

constexpr GraphicSet ascii{"ISO-8859-1", 1, "", false};
constexpr GraphicSet japaneseRoman = ascii;  // backslash and tilde stand for yen and overline: kept as they are
constexpr GraphicSet katakana{"EUC-JP", 1, "\x8E", true};
constexpr GraphicSet kanji{"EUC-JP", 2, "", true};
constexpr GraphicSet supplementaryKanji{"EUC-JP", 2, "\x8F", true};
constexpr GraphicSet korean{"EUC-KR", 2, "", true};
constexpr GraphicSet chinese{"GB2312", 2, "", true};

/// The escape sequences of PS3.3 C.12.1.1.2; `left` says that bytes below 128 are meant.
struct Designation {
  std::string_view sequence;
  bool left;
  GraphicSet set;
};
constexpr std::array<Designation, 19> designations = {{
    {"(B", true, ascii},           {"(J", true, japaneseRoman},   {")I", false, katakana},
    {"$B", true, kanji},           {"$@", true, kanji},           {"$(D", true, supplementaryKanji},
    {"$)C", false, korean},        {"$)A", false, chinese},       {"-A", false, {"ISO-8859-1"}},
    {"-B", false, {"ISO-8859-2"}}, {"-C", false, {"ISO-8859-3"}}, {"-D", false, {"ISO-8859-4"}},
    {"-L", false, {"ISO-8859-5"}}, {"-G", false, {"ISO-8859-6"}}, {"-F", false, {"ISO-8859-7"}},
    {"-H", false, {"ISO-8859-8"}}, {"-M", false, {"ISO-8859-9"}}, {"-b", false, {"ISO-8859-15"}},
    {"-T", false, {"TIS-620"}},
}};

/// The set for bytes above 127 that the number in "ISO_IR n" or "ISO 2022 IR n" selects at the start of a value.
struct NumberedSet {
  std::string_view number;
  GraphicSet set;
};
constexpr std::array<NumberedSet, 14> numberedSets = {{
    {"100", {"ISO-8859-1"}},
    {"101", {"ISO-8859-2"}},
    {"109", {"ISO-8859-3"}},
    {"110", {"ISO-8859-4"}},
    {"144", {"ISO-8859-5"}},
    {"127", {"ISO-8859-6"}},
    {"126", {"ISO-8859-7"}},
    {"138", {"ISO-8859-8"}},
    {"148", {"ISO-8859-9"}},
    {"203", {"ISO-8859-15"}},
    {"166", {"TIS-620"}},
    {"13", katakana},
    {"149", korean},
    {"58", chinese},
}};

/// Converts with the C library; what it refuses becomes U+FFFD, byte by byte.
std::string converted(std::string_view bytes, const char* encoding) {
  std::string result;
  iconv_t conversion = iconv_open("UTF-8", encoding);
  if (conversion == reinterpret_cast<iconv_t>(-1)) {
    for (std::size_t i = 0; i < bytes.size(); ++i) result += replacement;
    return result;
  }
  std::string input(bytes);
  char* from = input.data();
  std::size_t left = input.size();
  while (left > 0) {
    std::array<char, 256> output{};
    char* to = output.data();
    std::size_t room = output.size();
    const std::size_t before = left;
    const std::size_t outcome = iconv(conversion, &from, &left, &to, &room);
    result.append(output.data(), to);
    const bool stuck = outcome == static_cast<std::size_t>(-1) && room > 16;
    if (stuck || (before == left && to == output.data())) {
      result += replacement;
      ++from;
      --left;
      iconv(conversion, nullptr, nullptr, nullptr, nullptr);
    }
  }
  iconv_close(conversion);
  return result;
}

bool isUtf8(std::string_view bytes) { return converted(bytes, "UTF-8") == bytes; }

/// Reads a value whose graphic sets are switched by escape sequences. The sets of the start are back after each
/// delimiter (PS3.5 6.1.2.5.3).
class Iso2022 {
 public:
  explicit Iso2022(const GraphicSet& right) : startRight_(right), right_(right) {}

  std::string read(std::string_view bytes) {
    while (!bytes.empty()) bytes.remove_prefix(step(bytes));
    flush();
    return std::move(result_);
  }

 private:
  std::size_t step(std::string_view bytes) {
    if (bytes.front() == escape) return designate(bytes);
    const bool high = static_cast<unsigned char>(bytes.front()) >= 0x80;
    const GraphicSet& set = high ? right_ : left_;
    const bool control = !high && static_cast<unsigned char>(bytes.front()) <= 0x20;
    if (control || (!high && set.bytesPerCharacter == 1)) return single(bytes.front());
    if (set.bytesPerCharacter > bytes.size()) return unreadable();
    if (set.encoding != pendingEncoding_) flush();
    pendingEncoding_ = set.encoding;
    pending_ += set.prefix;
    for (const char byte : bytes.substr(0, set.bytesPerCharacter))
      pending_ += set.highBits ? static_cast<char>(static_cast<unsigned char>(byte) | 0x80U) : byte;
    return set.bytesPerCharacter;
  }

  std::size_t designate(std::string_view bytes) {
    for (const Designation& designation : designations) {
      if (!bytes.substr(1).starts_with(designation.sequence)) continue;
      (designation.left ? left_ : right_) = designation.set;
      return 1 + designation.sequence.size();
    }
    return unreadable();
  }

  /// A character of the roman set, or a control: both are themselves.
  std::size_t single(char byte) {
    flush();
    result_ += byte;
    if (std::string_view("^=\\\r\n\t\f").find(byte) != std::string_view::npos) {
      left_ = ascii;
      right_ = startRight_;
    }
    return 1;
  }

  std::size_t unreadable() {
    flush();
    result_ += replacement;
    return 1;
  }

  void flush() {
    if (!pending_.empty()) result_ += converted(pending_, pendingEncoding_.data());
    pending_.clear();
  }

  GraphicSet startRight_;
  GraphicSet left_ = ascii;
  GraphicSet right_;
  std::string_view pendingEncoding_;
  std::string pending_;
  std::string result_;
};

const GraphicSet* numberedSet(std::string_view term) {
  for (const std::string_view scheme : {"ISO_IR ", "ISO 2022 IR "})
    if (term.starts_with(scheme))
      for (const NumberedSet& candidate : numberedSets)
        if (candidate.number == term.substr(scheme.size())) return &candidate.set;
  return nullptr;
}

}  // namespace

std::string toUtf8(std::string_view bytes, std::string_view characterSet) {
  const bool isPlain = std::all_of(bytes.begin(), bytes.end(),
                                   [](char byte) { return static_cast<unsigned char>(byte) < 0x80 && byte != escape; });
  if (isPlain) return std::string(bytes);
  const std::string_view first = withoutPadding(characterSet.substr(0, characterSet.find('\\')));
  if (first == "ISO_IR 192") return converted(bytes, "UTF-8");
  if (first == "GB18030" || first == "GBK") return converted(bytes, "GB18030");
  const GraphicSet* right = numberedSet(first);
  const bool hasEscapes = bytes.find(escape) != std::string_view::npos;
  if (right == nullptr && !hasEscapes) return converted(bytes, isUtf8(bytes) ? "UTF-8" : "ISO-8859-1");
  return Iso2022(right != nullptr ? *right : GraphicSet{"ISO-8859-1"}).read(bytes);
}

}  // namespace workstation
