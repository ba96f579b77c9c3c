#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class DcmItem;
class DcmTagKey;

namespace workstation {

/// Reads attribute values leniently: blanks around them do not count, a value of the wrong representation is read where
/// its bytes make sense, numbers are the same in every locale. Only the item itself is looked at, not what is nested in
/// it. Internal to this folder.
class Attributes {
 public:
  explicit Attributes(DcmItem& item) : item_(item) {}

  /// Whether the attribute is there, with or without a value.
  bool has(const DcmTagKey& tag) const;
  /// The value's bytes without blanks at the ends; absent when the attribute is. A value over 64 KB reads as empty.
  std::optional<std::string> bytes(const DcmTagKey& tag) const;
  /// The same, an absent one reading as empty: for values in the default repertoire (codes, identifiers, dates).
  std::string code(const DcmTagKey& tag) const;
  /// Text as UTF-8, by the item's Specific Character Set.
  std::optional<std::string> text(const DcmTagKey& tag) const;
  /// The parts between backslashes, each without blanks.
  std::vector<std::string> codes(const DcmTagKey& tag) const;
  /// All numbers of the value; absent when the attribute is missing, has no value or holds anything but numbers.
  std::optional<std::vector<double>> numbers(const DcmTagKey& tag) const;
  /// The first number, absent when there is none.
  std::optional<double> number(const DcmTagKey& tag) const;
  /// The first number when it is whole and fits.
  std::optional<int> integer(const DcmTagKey& tag) const;

 private:
  DcmItem& item_;
};

/// A number as DICOM writes it, blanks around it allowed; absent when it is not one. May be infinite or not a number
/// where the text says so.
std::optional<double> numberIn(std::string_view text);

}  // namespace workstation
