#pragma once
// Binary property lists ("bplist00"), read in place.
//
//   signature                  8 bytes
//   objects                    a marker byte each: kind and, where it fits, length; then the content
//   offset table               for each object, by index, the byte at which it begins
//   trailer                    32 bytes: sizes of an offset and of a reference, number of objects, top, table
//
// All numbers are big-endian.

#include <span>

#include "workstation/archive/PropertyList.h"
#include "workstation/model/Outcome.h"

namespace workstation {

class BinaryPropertyList final : public PropertyList {
 public:
  static constexpr std::string_view signature = "bplist00";

  /// Checks the signature and the trailer; objects are checked as they are fetched. `bytes` must outlive the list.
  static Result<BinaryPropertyList> open(std::span<const std::uint8_t> bytes);

  Index top() const override { return top_; }
  std::optional<PlistNode> node(Index index) const override;
  Index reference(const PlistNode& container, std::uint32_t slot) const override;
  std::optional<std::string> text(const PlistNode& node) const override;
  bool isText(const PlistNode& node, std::string_view ascii) const override;

 private:
  BinaryPropertyList() = default;
  bool readTrailer();
  std::uint64_t number(std::size_t position, std::size_t size) const;
  bool holds(std::size_t position, std::uint64_t count, std::size_t unitSize) const;
  std::optional<PlistNode> integer(std::size_t position, unsigned sizeExponent) const;
  std::optional<PlistNode> real(std::size_t position, unsigned sizeExponent) const;
  std::optional<PlistNode> uid(std::size_t position, std::size_t size) const;
  std::optional<PlistNode> sequence(std::size_t position, std::uint8_t marker) const;

  std::span<const std::uint8_t> bytes_;
  std::size_t tablePosition_ = 0;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  Index count_ = 0;
  Index top_ = 0;
};

}  // namespace workstation
