#pragma once
// Makes binary property lists. The same calls give the same bytes.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/Database.h"

namespace workstation {

/// Objects are added one by one and named by their index. Equal scalars are stored once.
class PropertyListWriter {
 public:
  using Index = std::uint32_t;
  using Entries = std::vector<std::pair<Index, Index>>;  ///< key, value

  Index boolean(bool value);
  /// In the fewest bytes: 1, 2 or 4 unsigned, or 8 signed.
  Index integer(std::int64_t value);
  /// Always in 8 bytes.
  Index real(double value);
  /// `utf8` must be valid. ASCII stays as it is, anything else becomes UTF-16.
  Index text(std::string_view utf8);
  Index uid(std::uint32_t value);
  Index array(std::vector<Index> elements);
  /// The entries in this order.
  Index dictionary(const Entries& entries);
  /// Gives the entries of a dictionary that was added without them.
  void fill(Index dictionary, const Entries& entries);

  std::size_t count() const { return objects_.size(); }
  /// The property list, with an even number of bytes. A byte added behind the trailer would hide it from most readers,
  /// so where one is needed it stands between the objects and the offset table.
  pelmar::Bytes bytes(Index top) const;

 private:
  /// A scalar has its bytes ready. A container has a marker, and references that are written when their size is known.
  struct Object {
    pelmar::Bytes scalar;
    std::uint8_t marker = 0;
    std::size_t count = 0;
    std::vector<Index> references;
  };
  Index addScalar(pelmar::Bytes scalar);
  Index addObject(Object object);
  void write(const Object& object, std::size_t referenceSize, pelmar::Bytes& bytes) const;

  std::vector<Object> objects_;
  std::map<pelmar::Bytes, Index> scalars_;
};

}  // namespace workstation
