#include "workstation/dicom/Attributes.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <charconv>
#include <cmath>

#include "workstation/dicom/CharacterSets.h"

namespace workstation {
namespace {

constexpr Uint32 longestValue = 65536;

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks(" \0\t\r\n", 5);
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const std::size_t end = text.find('\\');
    parts.push_back(trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return parts;
}

DcmElement* elementOf(DcmItem& item, const DcmTagKey& tag) {
  DcmElement* element = nullptr;
  return item.findAndGetElement(tag, element).good() ? element : nullptr;
}

/// The value as text: of a string as it stands, of raw bytes as a string, of numbers as decimals.
std::string valueOf(DcmElement& element) {
  if (element.getLength() == 0 || element.getLength() > longestValue) return {};
  if (element.isaString()) {
    char* string = nullptr;
    Uint32 length = 0;
    if (element.getString(string, length).bad() || string == nullptr) return {};
    return std::string(string, length);
  }
  const DcmEVR representation = element.ident();
  if (representation == EVR_UN || representation == EVR_OB || representation == EVR_OW) {
    Uint8* bytes = nullptr;
    if (element.getUint8Array(bytes).bad() || bytes == nullptr) return {};
    return std::string(reinterpret_cast<const char*>(bytes), element.getLength());
  }
  OFString text;
  if (!element.isLeaf() || element.getOFStringArray(text).bad()) return {};
  return std::string(text.c_str(), text.size());
}

}  // namespace

std::optional<double> numberIn(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const std::from_chars_result end = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

bool Attributes::has(const DcmTagKey& tag) const { return elementOf(item_, tag) != nullptr; }

std::optional<std::string> Attributes::bytes(const DcmTagKey& tag) const {
  DcmElement* element = elementOf(item_, tag);
  if (element == nullptr) return std::nullopt;
  return std::string(trimmed(valueOf(*element)));
}

std::string Attributes::code(const DcmTagKey& tag) const { return toUtf8(bytes(tag).value_or(""), ""); }

std::optional<std::string> Attributes::text(const DcmTagKey& tag) const {
  const std::optional<std::string> value = bytes(tag);
  if (!value) return std::nullopt;
  return toUtf8(*value, bytes(DCM_SpecificCharacterSet).value_or(""));
}

std::vector<std::string> Attributes::codes(const DcmTagKey& tag) const {
  std::vector<std::string> values;
  const std::string all = code(tag);
  for (const std::string_view part : split(all)) values.emplace_back(part);
  return values;
}

std::optional<std::vector<double>> Attributes::numbers(const DcmTagKey& tag) const {
  DcmElement* element = elementOf(item_, tag);
  if (element == nullptr) return std::nullopt;
  std::vector<double> values;
  const std::string all = valueOf(*element);
  for (const std::string_view part : split(trimmed(all))) {
    const std::optional<double> value = numberIn(part);
    if (!value) return std::nullopt;
    values.push_back(*value);
  }
  if (values.empty()) return std::nullopt;
  return values;
}

std::optional<double> Attributes::number(const DcmTagKey& tag) const {
  const std::string all = bytes(tag).value_or("");
  return numberIn(all.substr(0, all.find('\\')));
}

std::optional<int> Attributes::integer(const DcmTagKey& tag) const {
  const std::optional<double> value = number(tag);
  if (!value || !(std::abs(*value) <= 2147483647.0) || std::floor(*value) != *value) return std::nullopt;
  return static_cast<int>(*value);
}

}  // namespace workstation
