// What the host must offer, and what the person is told when it does not.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>

#include "host/Value.h"
#include "plugin/VertanaFilter.h"

namespace vertana {

using pelmar::Capability;

namespace {

constexpr std::string_view hostMakerSite = "https://pelmar.example/";

struct CapabilityRequirement {
  Capability capability;
  long code;
  std::string_view failureReason;
};

// In the order in which they are checked; the first failure is the one reported.
constexpr std::array<CapabilityRequirement, 5> capabilityRequirements{{
    {Capability::Point3DKeyedArchiving, 1, "Point3D does not conforms to NSCoding protocol."},
    {Capability::DCMPixBodyPartExamined, 2, "DCMPix instances do not respond to selector -[DCMPix bodyPartExamined]."},
    {Capability::ROIDontDisplayInKeyImagesWindow, 3,
     "ROI instances do not respond to selector -[ROI dontDisplayInKeyImagesWindow]."},
    {Capability::ROIStringTags, 5, "ROI instances do not respond to selector -[ROI stringTags]."},
    {Capability::ROIResamplePoints, 6,
     "ROI class does not respond to selector +[ROI resamplePoints:number:closeROI:]."},
}};

std::vector<std::string> partsOfVersion(const std::string& version) {
  std::vector<std::string> parts(1);
  for (const char character : version) {
    if (character == '.') {
      parts.emplace_back();
    } else {
      parts.back() += character;
    }
  }
  return parts;
}

/// A text's number up to the first character that does not belong to it, after blanks; 0 when there is none. Of what is
/// beyond 32 bits the low ones.
std::int32_t integerOf(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec == std::errc::result_out_of_range) {
    number =
        text.starts_with('-') ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  }
  return static_cast<std::int32_t>(number);
}

// Major and minor digits are joined and read as one number, so "9.0" is 90 and "8.10" is 810: that is the rule, also
// where it misjudges. A version without a minor part always passes.
bool isVersionTooOld(const std::string& version) {
  const auto parts = partsOfVersion(version);
  if (parts.size() < 2) return false;
  return integerOf(parts[0] + parts[1]) <= 89;
}

}  // namespace

std::optional<RequirementsError> VertanaFilter::requirementsError() const {
  const auto& application = api().application();
  const auto error = [&](long code, std::string_view description, std::string_view reason,
                         std::string_view suggestion) {
    return RequirementsError{"VertanaFilterError", code, application.localizedString(description),
                             application.localizedString(reason), application.localizedString(suggestion)};
  };
  for (const auto& requirement : capabilityRequirements) {
    if (!api().supports(requirement.capability)) {
      return error(requirement.code, "Required API unavailable.", requirement.failureReason,
                   "Update Pelmar and this plugin to the latest versions.");
    }
  }
  if (isVersionTooOld(application.shortVersionString().value_or(""))) {
    return error(4, "This version of Pelmar is not compatible.", "Pelmar 9.0 or higher is required.",
                 "Update to Pelmar 9.0 or higher.");
  }
  return std::nullopt;
}

void VertanaFilter::alertRequirementsWithError(const std::optional<RequirementsError>& error) {
  if (!error) return;
  std::string message = error->domain + " (" + std::to_string(error->code) + ")";
  if (error->localizedFailureReason) message += "\n" + *error->localizedFailureReason;
  if (error->localizedRecoverySuggestion) message += "\n" + *error->localizedRecoverySuggestion;
  auto& application = api().application();
  api().alertPanels().runCriticalAlertPanel(error->localizedDescription.value_or(""), message,
                                            application.localizedString("OK"), "", "");
  application.openURL(hostMakerSite);
}

}  // namespace vertana
