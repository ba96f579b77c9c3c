#include "cli/PersonDefaults.h"

#include "cli/Console.h"

namespace cli {

using pelmar::Value;

namespace {

constexpr const char* learntTermsKey = "kVertanaCustomStudyDescriptionSearchTerms";

}  // namespace

PersonDefaults::PersonDefaults() : file_(workstation::personDefaultsFile()) {}

Value::Dictionary PersonDefaults::load() {
  const auto defaults = file_.read();
  readable_ = defaults.has_value();
  if (!readable_) {
    printMessage(file_.path().string() +
                 " is not a JSON object, so your defaults are not used: mend or remove the file.");
    return {};
  }
  const auto learnt = defaults->find(learntTermsKey);
  if (learnt != defaults->end()) learnt_ = learnt->second;
  return *defaults;
}

void PersonDefaults::save(const Value::Dictionary& defaults) {
  const auto learnt = defaults.find(learntTermsKey);
  if (!file_.path().empty() && readable_ && learnt != defaults.end()) saveLearntTerms(learnt->second);
}

bool PersonDefaults::saveLearntTerms(const std::optional<Value>& terms) {
  if (terms == learnt_) return true;
  // A nil value takes the key away.
  if (file_.set({{learntTermsKey, terms.value_or(Value())}})) {
    learnt_ = terms;
    return true;
  }
  printMessage("The terms learnt from study descriptions could not be written to " + file_.path().string() +
               ": check that it is a JSON object and that its folder can be written to.");
  return false;
}

}  // namespace cli
