// What was learnt from study descriptions: listed and forgotten.
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/LearntTerms.h"
#include "cli/PersonDefaults.h"
#include "cli/PlainText.h"

namespace cli {

using nlohmann::ordered_json;

namespace {

std::string titleOfRegion(int region) {
  const auto name = regionName(region);
  return name == "none" ? "region " + std::to_string(region) : name;
}

void printTerms(std::ostream& out, const std::vector<LearntTerm>& terms) {
  if (terms.empty()) out << "Nothing was learnt from study descriptions yet.\n";
  for (const auto& term : terms) out << padded(titleOfRegion(term.region), 10) << listedTerm(term.text) << '\n';
}

void printTermsAsJson(std::ostream& out, const std::vector<LearntTerm>& terms) {
  auto list = ordered_json::array();
  for (const auto& term : terms) list.push_back({{"term", term.text}, {"anatomicalRegion", term.region}});
  out << ordered_json{{"terms", list}}.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

int forgetTerm(PersonDefaults& defaults, const std::string& asked) {
  const auto stored = defaults.learntTerms();
  const auto term = findTerm(termsIn(stored), asked);
  if (!term) {
    return fail({ExitNotAllowed, "'" + asked + "' is no learnt term: give one exactly as vertana terms lists it."});
  }
  if (!defaults.saveLearntTerms(withoutTerm(stored, *term))) return ExitNotAllowed;
  std::cout << "Forgotten: " << listedTerm(*term) << '\n';
  return ExitDone;
}

int forgetAllTerms(PersonDefaults& defaults) {
  const auto count = termsIn(defaults.learntTerms()).size();
  if (!defaults.saveLearntTerms(std::nullopt)) return ExitNotAllowed;
  std::cout << "Forgotten: " << counted(count, "term", "terms") << '\n';
  return ExitDone;
}

}  // namespace

int runTerms(const TermsArguments& arguments) {
  PersonDefaults defaults;
  defaults.load();
  if (!defaults.readable()) return ExitUnreadable;  // which has been said
  if (arguments.forget) return forgetTerm(defaults, *arguments.forget);
  if (arguments.forgetAll) return forgetAllTerms(defaults);
  const auto terms = termsIn(defaults.learntTerms());
  arguments.json ? printTermsAsJson(std::cout, terms) : printTerms(std::cout, terms);
  return ExitDone;
}

}  // namespace cli
