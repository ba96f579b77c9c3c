#include "spine/RegionTerms.h"

#include <algorithm>

namespace vertana {

using pelmar::Value;

namespace {

long regionOf(const Value::Dictionary& record) {
  const auto region = record.find("anatomicalRegion");
  return region == record.end() ? 0 : region->second.intValue();
}

/// Empty where the record has no list of terms.
Value::Array termsOf(const Value::Dictionary& record) {
  const auto terms = record.find("terms");
  return terms == record.end() || !terms->second.array() ? Value::Array() : *terms->second.array();
}

Value recordOf(long region, Value::Array terms) {
  return Value::Dictionary{{"anatomicalRegion", static_cast<std::int64_t>(region)}, {"terms", std::move(terms)}};
}

}  // namespace

std::vector<CustomTermRecord> bodyPartTerms() {
  return {
      {0, {"CSPINE", "HEADNECK", "NECK"}}, {1, {"BREAST", "CHEST", "TSPINE"}}, {2, {"ABDOMEN", "LSPINE", "LSSPINE"}}};
}

std::vector<CustomTermRecord> studyDescriptionTerms() {
  return {{0, {"cervical", "zervikal"}},
          {1, {"thoracic", "thorax", "dorsal", "torax"}},
          {2, {"lombaire", "lumbar", "lumbale"}}};
}

std::vector<CustomTermRecord> regionTermsFromValue(const Value& stored) {
  std::vector<CustomTermRecord> records;
  if (!stored.array()) return records;
  for (const auto& entry : *stored.array()) {
    const auto* dictionary = entry.dictionary();
    if (!dictionary) continue;
    CustomTermRecord record{regionOf(*dictionary), {}};
    for (const auto& term : termsOf(*dictionary)) {
      if (term.string()) record.terms.push_back(*term.string());
    }
    records.push_back(std::move(record));
  }
  return records;
}

Value listWithTermUnderRegion(const Value& stored, const std::string& term, long region) {
  Value::Array list;
  if (!stored.array()) return list;
  const Value filed(term);
  for (const auto& entry : *stored.array()) {
    const auto* record = entry.dictionary();
    if (!record) {
      list.push_back(entry);
      continue;
    }
    Value::Array terms;
    for (const auto& known : termsOf(*record)) {
      const bool repeated = std::find(terms.begin(), terms.end(), known) != terms.end();
      if (known != filed && !repeated) terms.push_back(known);
    }
    if (regionOf(*record) == region) terms.push_back(filed);
    list.push_back(recordOf(regionOf(*record), std::move(terms)));
  }
  return list;
}

Value valueFromRegionTerms(const std::vector<CustomTermRecord>& records) {
  Value::Array list;
  for (const auto& record : records) {
    list.push_back(recordOf(record.anatomicalRegion, Value::Array(record.terms.begin(), record.terms.end())));
  }
  return list;
}

}  // namespace vertana
