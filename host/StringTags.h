#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/Ref.h"

namespace pelmar {

/// The mutable set of an annotation's string tags; lives as long as the annotation.
class StringTags : public HostObject {
 public:
  /// Exact, case-sensitive. Nil: false.
  virtual bool containsObject(std::string_view) const { return false; }
  /// A tag that is there already is not added again. Nil: nothing.
  virtual void addObject(std::string_view) {}
  /// Every tag, in no particular order. Nil: empty.
  virtual std::vector<std::string> allObjects() const { return {}; }
};

}  // namespace pelmar
