// Which region a study shows, from what it says of itself and what earlier runs have taught.
#include "plugin/VertanaFilter.h"
#include "spine/RegionTerms.h"

namespace vertana {

using pelmar::Value;

namespace {

constexpr std::string_view customTermsKey = "kVertanaCustomStudyDescriptionSearchTerms";

/// The region of the first term, records and terms in order, for which the test holds; -1 when it never does.
template <class Test>
long firstMatch(const std::vector<CustomTermRecord>& records, const Test& matches) {
  for (const auto& record : records) {
    for (const auto& term : record.terms) {
      if (matches(term)) return record.anatomicalRegion;
    }
  }
  return AnatomicalRegionNone;
}

}  // namespace

long VertanaFilter::guessedAnatomicalRegion() const {
  const auto description = study_->studyName();
  const auto image = viewerController()->imageView()->curDCM();
  auto& text = api().textServices();

  if (image->supports(pelmar::Capability::DCMPixBodyPartExamined)) {
    if (const auto bodyPart = image->bodyPartExamined()) {
      const auto upper = text.uppercaseString(*bodyPart);
      const long region = firstMatch(bodyPartTerms(), [&](const auto& term) { return upper == term; });
      if (region != AnatomicalRegionNone) return region;
    }
  }

  // Searching a missing description reports a hit on the first term: such a study counts as cervical.
  if (!description) return studyDescriptionTerms().front().anatomicalRegion;
  const auto lower = text.lowercaseString(*description);
  const long builtIn = firstMatch(studyDescriptionTerms(), [&](const auto& term) {
    return text.containsIgnoringCaseDiacriticsAndWidth(lower, text.lowercaseString(term));
  });
  if (builtIn != AnatomicalRegionNone) return builtIn;

  return firstMatch(regionTermsFromValue(customTerms()), [&](const auto& term) {
    const auto lowerTerm = text.lowercaseString(term);
    return !lowerTerm.empty() && lower.find(lowerTerm) != std::string::npos;
  });
}

Value VertanaFilter::customTerms() const {
  auto stored = api().standardUserDefaults().objectForKey(customTermsKey);
  if (!stored.isNil()) return stored;
  return valueFromRegionTerms(
      {{AnatomicalRegionCervical, {}}, {AnatomicalRegionThoracic, {}}, {AnatomicalRegionLumbar, {}}});
}

void VertanaFilter::setCustomTerm(const std::optional<std::string>& term, long forAnatomicalRegion) {
  if (!term) return;
  api().standardUserDefaults().setObject(listWithTermUnderRegion(customTerms(), *term, forAnatomicalRegion),
                                         customTermsKey);
}

void VertanaFilter::setStudyDescriptionAsCustomTermForCurrentRegion() {
  setCustomTerm(study_->studyName(), anatomicalRegion());
}

}  // namespace vertana
