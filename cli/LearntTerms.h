#pragma once
// The list of terms that the plug-in learns from study descriptions, as it keeps it in the user defaults: an array of
// {"anatomicalRegion": 0..2, "terms": [text, ...]}. The plug-in takes a list of any other shape as it is, so what is
// not understood here is passed over, and kept.

#include <optional>
#include <string>
#include <vector>

#include "host/Value.h"

namespace cli {

struct LearntTerm {
  int region = -1;
  std::string text;
};

/// In stored order; none for nil.
std::vector<LearntTerm> termsIn(const pelmar::Value& stored);

/// How a term is listed: printable, and two quotation marks for the empty one.
std::string listedTerm(const std::string& text);

/// The stored text that a person means: the same, or else one that is listed so.
std::optional<std::string> findTerm(const std::vector<LearntTerm>& terms, const std::string& asked);

/// The list without this text, in whatever region; every record stays.
pelmar::Value withoutTerm(const pelmar::Value& stored, const std::string& text);

}  // namespace cli
