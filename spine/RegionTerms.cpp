#include "spine/RegionTerms.h"

namespace vertana {

using pelmar::Value;

std::vector<RegionTerms> bodyPartTerms() {
  return {
      {0, {"CSPINE", "HEADNECK", "NECK"}}, {1, {"BREAST", "CHEST", "TSPINE"}}, {2, {"ABDOMEN", "LSPINE", "LSSPINE"}}};
}

std::vector<RegionTerms> studyDescriptionTerms() {
  return {{0, {"cervical", "zervikal"}},
          {1, {"thoracic", "thorax", "dorsal", "torax"}},
          {2, {"lombaire", "lumbar", "lumbale"}}};
}

std::vector<RegionTerms> regionTermsFromValue(const Value& stored) {
  std::vector<RegionTerms> records;
  if (!stored.array()) return records;
  for (const auto& entry : *stored.array()) {
    const auto* dictionary = entry.dictionary();
    if (!dictionary) continue;
    RegionTerms record;
    const auto region = dictionary->find("anatomicalRegion");
    record.region = region == dictionary->end() ? 0 : region->second.intValue();
    const auto terms = dictionary->find("terms");
    if (terms != dictionary->end() && terms->second.array()) {
      for (const auto& term : *terms->second.array()) {
        if (term.string()) record.terms.push_back(*term.string());
      }
    }
    records.push_back(std::move(record));
  }
  return records;
}

Value valueFromRegionTerms(const std::vector<RegionTerms>& records) {
  Value::Array list;
  for (const auto& record : records) {
    Value::Array terms(record.terms.begin(), record.terms.end());
    list.push_back(
        Value::Dictionary{{"anatomicalRegion", static_cast<std::int64_t>(record.region)}, {"terms", std::move(terms)}});
  }
  return list;
}

}  // namespace vertana
