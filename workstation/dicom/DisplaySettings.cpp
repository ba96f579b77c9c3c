#include "workstation/dicom/DisplaySettings.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/CharacterSets.h"
#include "workstation/dicom/LookupTable.h"

namespace workstation {
namespace {

/// More windows or tables than a person could choose from are not read.
constexpr std::size_t mostSettings = 64;

std::string textOf(DcmItem& item, DcmItem& dataset, const DcmTagKey& tag) {
  return toUtf8(Attributes(item).bytes(tag).value_or(""),
                Attributes(dataset).bytes(DCM_SpecificCharacterSet).value_or(""));
}

/// The part with this index between backslashes, without blanks at its ends.
std::string partOf(const std::string& all, std::size_t index) {
  std::size_t start = 0;
  for (; index > 0; --index) {
    start = all.find('\\', start);
    if (start == std::string::npos) return {};
    ++start;
  }
  std::string part = all.substr(start, all.find('\\', start) - start);
  part.erase(0, std::min(part.find_first_not_of(' '), part.size()));
  part.erase(part.find_last_not_of(' ') + 1);
  return part;
}

std::vector<WindowSetting> readWindows(DcmItem& item, DcmItem& dataset) {
  const auto centres = Attributes(item).numbers(DCM_WindowCenter).value_or(std::vector<double>());
  const auto widths = Attributes(item).numbers(DCM_WindowWidth).value_or(std::vector<double>());
  const std::string explanations = textOf(item, dataset, DCM_WindowCenterWidthExplanation);
  std::vector<WindowSetting> windows;
  const std::size_t count = std::min({centres.size(), widths.size(), mostSettings});
  for (std::size_t index = 0; index < count; ++index) {
    if (!std::isfinite(centres[index]) || !std::isfinite(widths[index]) || !(widths[index] > 0)) continue;
    windows.push_back({centres[index], widths[index], partOf(explanations, index)});
  }
  return windows;
}

WindowFunction readFunction(DcmItem& item) {
  const std::string name = Attributes(item).code(DCM_VOILUTFunction);
  if (name == "LINEAR_EXACT") return WindowFunction::linearExact;
  return name == "SIGMOID" ? WindowFunction::sigmoid : WindowFunction::linear;
}

std::vector<VoiLut> readTables(DcmItem& item, DcmItem& dataset, bool negativeInput) {
  std::vector<VoiLut> luts;
  DcmSequenceOfItems* sequence = nullptr;
  if (item.findAndGetSequence(DCM_VOILUTSequence, sequence).bad() || sequence == nullptr) return luts;
  for (DcmObject* entry = sequence->nextInContainer(nullptr); entry != nullptr && luts.size() < mostSettings;
       entry = sequence->nextInContainer(entry)) {
    auto& tableItem = *static_cast<DcmItem*>(entry);
    LookupTable table;
    if (readSequenceTable(tableItem, negativeInput, table) != TableState::complete) continue;
    if (table.bits < 8 || table.bits > 16) continue;
    luts.push_back({table.firstMapped, table.bits, std::move(table.entries),
                    partOf(textOf(tableItem, dataset, DCM_LUTExplanation), 0)});
  }
  return luts;
}

}  // namespace

DisplaySettings readDisplaySettings(DcmItem& item, DcmItem& dataset, bool negativeInput) {
  return {readWindows(item, dataset), readFunction(item), readTables(item, dataset, negativeInput)};
}

}  // namespace workstation
