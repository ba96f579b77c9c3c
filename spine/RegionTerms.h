#pragma once
// Words that tell the spine region: the built-in tables, and the shape in which learnt terms are kept.

#include <string>
#include <vector>

#include "host/Value.h"

namespace vertana {

/// Terms of one region (AnatomicalRegion), without duplicates. Learnt ones are in no particular order, built-in ones in
/// that in which they are looked for.
struct CustomTermRecord {
  long anatomicalRegion = -1;
  std::vector<std::string> terms;
};

/// Body Part Examined defined terms (PS3.16 Annex L), compared whole.
std::vector<CustomTermRecord> bodyPartTerms();

/// Words of study descriptions in several languages, searched anywhere in the text.
std::vector<CustomTermRecord> studyDescriptionTerms();

/// The records of a stored list; entries of another shape are passed over.
std::vector<CustomTermRecord> regionTermsFromValue(const pelmar::Value& stored);

/// The stored list with the term filed under the region's records and under no other, each record's terms without
/// duplicates. Records keep their number and order; terms that are no texts, and entries that are no records, stay.
pelmar::Value listWithTermUnderRegion(const pelmar::Value& stored, const std::string& term, long region);

pelmar::Value valueFromRegionTerms(const std::vector<CustomTermRecord>& records);

}  // namespace vertana
