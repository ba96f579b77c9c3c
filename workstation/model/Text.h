#pragma once

#include "host/Services.h"

namespace workstation {

/// Unicode text operations. Text that is not valid UTF-8 is treated byte by byte, ASCII letters alone having cases.
class Text final : public pelmar::TextServices {
 public:
  std::string lowercaseString(std::string_view text) const override;
  std::string uppercaseString(std::string_view text) const override;
  bool containsIgnoringCaseDiacriticsAndWidth(std::string_view text, std::string_view needle) const override;
};

}  // namespace workstation
