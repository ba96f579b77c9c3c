#pragma once
// A property list as its readers see it: nodes with an index, fetched one at a time. Nothing is copied out of a
// container, so a node that many others share costs no more than one that stands alone.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace workstation {

/// What one node is. Containers and texts stay where they are; PropertyList gives access to them.
struct PlistNode {
  /// Uid: a reference to an archived object. Other: data, a date, a set, an integer beyond 64 bits.
  enum class Kind : std::uint8_t { Boolean, Integer, Real, Text, Uid, Array, Dictionary, Other };
  Kind kind = Kind::Other;
  bool isUtf16 = false;      ///< a text in UTF-16 (big-endian) instead of UTF-8
  std::uint32_t count = 0;   ///< entries of a container, code units of a text
  std::size_t position = 0;  ///< where the property list keeps the content
  std::int64_t integer = 0;  ///< Boolean (0, 1), Integer, Uid (never negative; too large ones are cut to the largest)
  double real = 0;
};

class PropertyList {
 public:
  using Index = std::uint32_t;
  virtual ~PropertyList() = default;

  virtual Index top() const = 0;
  /// Nothing when there is no such node or it is damaged.
  virtual std::optional<PlistNode> node(Index index) const = 0;
  /// The index in a slot of a container: an array has `count` slots, a dictionary 2 * `count`, its keys first.
  /// `slot` must be in that range.
  virtual Index reference(const PlistNode& container, std::uint32_t slot) const = 0;
  /// A text as UTF-8; nothing when it is not valid in its encoding.
  virtual std::optional<std::string> text(const PlistNode& node) const = 0;
  /// Whether the node is this text (ASCII). Cheaper than fetching it.
  virtual bool isText(const PlistNode& node, std::string_view ascii) const = 0;
};

}  // namespace workstation
