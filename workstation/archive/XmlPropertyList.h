#pragma once
// Property lists in XML. A small parser for exactly that: no entities but the five of XML and character references, no
// internal subset, UTF-8 only. It goes through the text once, keeps a stack of its own and stops at the bounds.

#include <vector>

#include "workstation/archive/PropertyList.h"
#include "workstation/model/Outcome.h"

namespace workstation {

class XmlPropertyList final : public PropertyList {
 public:
  /// `xml` is not needed any more afterwards.
  static Result<XmlPropertyList> parse(std::string_view xml);

  Index top() const override { return top_; }
  std::optional<PlistNode> node(Index index) const override;
  Index reference(const PlistNode& container, std::uint32_t slot) const override;
  std::optional<std::string> text(const PlistNode& node) const override;
  bool isText(const PlistNode& node, std::string_view ascii) const override;

 private:
  friend class XmlPropertyListParser;
  XmlPropertyList() = default;

  std::vector<PlistNode> nodes_;
  std::vector<Index> references_;  // those of one container together; a node's position is its first
  std::string texts_;              // likewise
  Index top_ = 0;
};

}  // namespace workstation
