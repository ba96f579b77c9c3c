#include "cli/LearntTerms.h"

#include <algorithm>

#include "cli/PlainText.h"
#include "cli/PluginFacts.h"

namespace cli {

using pelmar::Value;

std::vector<LearntTerm> termsIn(const Value& stored) {
  std::vector<LearntTerm> terms;
  if (!stored.array()) return terms;
  for (const auto& record : *stored.array()) {
    const auto texts = entry(record, "terms");
    if (!texts.array()) continue;
    const int region = entry(record, "anatomicalRegion").intValue();
    for (const auto& text : *texts.array()) {
      if (text.string()) terms.push_back({region, *text.string()});
    }
  }
  return terms;
}

std::string listedTerm(const std::string& text) { return text.empty() ? "\"\"" : printable(text); }

std::optional<std::string> findTerm(const std::vector<LearntTerm>& terms, const std::string& asked) {
  for (const auto& term : terms) {
    if (term.text == asked) return term.text;
  }
  for (const auto& term : terms) {
    if (listedTerm(term.text) == asked) return term.text;
  }
  return std::nullopt;
}

Value withoutTerm(const Value& stored, const std::string& text) {
  if (!stored.array()) return stored;
  Value::Array records = *stored.array();
  for (auto& record : records) {
    const auto texts = entry(record, "terms");
    if (!texts.array()) continue;
    Value::Array kept = *texts.array();
    std::erase(kept, Value(text));
    auto fields = *record.dictionary();
    fields.insert_or_assign("terms", Value(std::move(kept)));
    record = Value(std::move(fields));
  }
  return Value(std::move(records));
}

}  // namespace cli
