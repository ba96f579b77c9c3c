#include "workstation/dicom/SpineCodes.h"

#include <algorithm>
#include <functional>
#include <span>

namespace workstation {
namespace {

constexpr std::string_view sct = "SCT";

struct Term {
  std::string_view name;
  Code code;
};

/// PS3.16 CID 7603. Of the thirteenth thoracic vertebra SNOMED CT knows the body only.
constexpr Term vertebrae[] = {
    {"C0", {"VERT-C0", privateScheme, "C0 (base of skull)"}},
    {"C1-C2", {"VERT-C1-C2", privateScheme, "C1 and C2 vertebrae"}},
    {"C1", {"14806007", sct, "C1 vertebra"}},
    {"C2", {"39976000", sct, "C2 vertebra"}},
    {"C3", {"113205007", sct, "C3 vertebra"}},
    {"C4", {"5329002", sct, "C4 vertebra"}},
    {"C5", {"36978003", sct, "C5 vertebra"}},
    {"C6", {"36054005", sct, "C6 vertebra"}},
    {"C7", {"87391001", sct, "C7 vertebra"}},
    {"C8", {"VERT-C8", privateScheme, "C8 vertebra"}},
    {"T1", {"64864005", sct, "T1 vertebra"}},
    {"T2", {"53733008", sct, "T2 vertebra"}},
    {"T3", {"1626008", sct, "T3 vertebra"}},
    {"T4", {"73071006", sct, "T4 vertebra"}},
    {"T5", {"56401006", sct, "T5 vertebra"}},
    {"T6", {"45296009", sct, "T6 vertebra"}},
    {"T7", {"62487009", sct, "T7 vertebra"}},
    {"T8", {"11068009", sct, "T8 vertebra"}},
    {"T9", {"82687006", sct, "T9 vertebra"}},
    {"T10", {"7610001", sct, "T10 vertebra"}},
    {"T11", {"12989004", sct, "T11 vertebra"}},
    {"T12", {"23215003", sct, "T12 vertebra"}},
    {"T13", {"1186895000", sct, "Structure of body of thirteenth thoracic vertebra"}},
    {"L1", {"66794005", sct, "L1 vertebra"}},
    {"L2", {"14293000", sct, "L2 vertebra"}},
    {"L3", {"36470004", sct, "L3 vertebra"}},
    {"L4", {"11994002", sct, "L4 vertebra"}},
    {"L5", {"49668003", sct, "L5 vertebra"}},
    {"L6", {"VERT-L6", privateScheme, "L6 vertebra"}},
    {"S1", {"VERT-S1", privateScheme, "S1 vertebra"}},
};

/// PS3.16 CID 7604.
constexpr Term discs[] = {
    {"C0-C1", {"DISC-C0-C1", privateScheme, "C0/C1 junction"}},
    {"C2-C3", {"1078209008", sct, "C2/C3 disc"}},
    {"C3-C4", {"58820006", sct, "C3/C4 disc"}},
    {"C4-C5", {"49400002", sct, "C4/C5 disc"}},
    {"C5-C6", {"73959003", sct, "C5/C6 disc"}},
    {"C6-C7", {"75095006", sct, "C6/C7 disc"}},
    {"C7-C8", {"DISC-C7-C8", privateScheme, "C7/C8 disc"}},
    {"C8-T1", {"DISC-C8-T1", privateScheme, "C8/T1 disc"}},
    {"C7-T1", {"37414007", sct, "C7/T1 disc"}},
    {"T1-T2", {"40908007", sct, "T1/T2 disc"}},
    {"T2-T3", {"6004007", sct, "T2/T3 disc"}},
    {"T3-T4", {"2620004", sct, "T3/T4 disc"}},
    {"T4-T5", {"82965004", sct, "T4/T5 disc"}},
    {"T5-T6", {"72692000", sct, "T5/T6 disc"}},
    {"T6-T7", {"74401007", sct, "T6/T7 disc"}},
    {"T7-T8", {"28693002", sct, "T7/T8 disc"}},
    {"T8-T9", {"9188009", sct, "T8/T9 disc"}},
    {"T9-T10", {"113209001", sct, "T9/T10 disc"}},
    {"T10-T11", {"34959001", sct, "T10/T11 disc"}},
    {"T11-T12", {"1537001", sct, "T11/T12 disc"}},
    {"T12-T13", {"DISC-T12-T13", privateScheme, "T12/T13 disc"}},
    {"T13-L1", {"DISC-T13-L1", privateScheme, "T13/L1 disc"}},
    {"T12-L1", {"76206002", sct, "T12/L1 disc"}},
    {"L1-L2", {"80064006", sct, "L1/L2 disc"}},
    {"L2-L3", {"67459009", sct, "L2/L3 disc"}},
    {"L3-L4", {"62551000", sct, "L3/L4 disc"}},
    {"L4-L5", {"84020006", sct, "L4/L5 disc"}},
    {"L5-L6", {"DISC-L5-L6", privateScheme, "L5/L6 disc"}},
    {"L6-S1", {"DISC-L6-S1", privateScheme, "L6/S1 disc"}},
    {"L5-S1", {"715056000", sct, "L5/S1 disc"}},
};

/// PS3.16 CID 1003.
constexpr Term levels[] = {
    {"C0-C1", {"LEVEL-C0-C1", privateScheme, "Level of C0/C1 junction"}},
    {"C2-C3", {"243902007", sct, "Level of C2/C3 intervertebral disc"}},
    {"C3-C4", {"243903002", sct, "Level of C3/C4 intervertebral disc"}},
    {"C4-C5", {"243904008", sct, "Level of C4/C5 intervertebral disc"}},
    {"C5-C6", {"243905009", sct, "Level of C5/C6 intervertebral disc"}},
    {"C6-C7", {"243906005", sct, "Level of C6/C7 intervertebral disc"}},
    {"C7-C8", {"LEVEL-C7-C8", privateScheme, "Level of C7/C8 intervertebral disc"}},
    {"C8-T1", {"LEVEL-C8-T1", privateScheme, "Level of C8/T1 intervertebral disc"}},
    {"C7-T1", {"243925008", sct, "Level of C7/T1 intervertebral disc"}},
    {"T1-T2", {"243908006", sct, "Level of T1/T2 intervertebral disc"}},
    {"T2-T3", {"243909003", sct, "Level of T2/T3 intervertebral disc"}},
    {"T3-T4", {"243910008", sct, "Level of T3/T4 intervertebral disc"}},
    {"T4-T5", {"243911007", sct, "Level of T4/T5 intervertebral disc"}},
    {"T5-T6", {"243912000", sct, "Level of T5/T6 intervertebral disc"}},
    {"T6-T7", {"243913005", sct, "Level of T6/T7 intervertebral disc"}},
    {"T7-T8", {"243914004", sct, "Level of T7/T8 intervertebral disc"}},
    {"T8-T9", {"243915003", sct, "Level of T8/T9 intervertebral disc"}},
    {"T9-T10", {"243916002", sct, "Level of T9/T10 intervertebral disc"}},
    {"T10-T11", {"243917006", sct, "Level of T10/T11 intervertebral disc"}},
    {"T11-T12", {"243918001", sct, "Level of T11/T12 intervertebral disc"}},
    {"T12-T13", {"LEVEL-T12-T13", privateScheme, "Level of T12/T13 intervertebral disc"}},
    {"T13-L1", {"LEVEL-T13-L1", privateScheme, "Level of T13/L1 intervertebral disc"}},
    {"T12-L1", {"243926009", sct, "Level of T12/L1 intervertebral disc"}},
    {"L1-L2", {"243920003", sct, "Level of L1/L2 intervertebral disc"}},
    {"L2-L3", {"243921004", sct, "Level of L2/L3 intervertebral disc"}},
    {"L3-L4", {"243922006", sct, "Level of L3/L4 intervertebral disc"}},
    {"L4-L5", {"243923001", sct, "Level of L4/L5 intervertebral disc"}},
    {"L5-L6", {"LEVEL-L5-L6", privateScheme, "Level of L5/L6 intervertebral disc"}},
    {"L6-S1", {"LEVEL-L6-S1", privateScheme, "Level of L6/S1 intervertebral disc"}},
    {"L5-S1", {"243927000", sct, "Level of L5/S1 intervertebral disc"}},
};

/// PS3.16 CID 4031, by the number of the region, from -1.
constexpr Code regions[] = {
    {"NO-REGION", privateScheme, "No region"},
    {"122494005", sct, "Cervical spine"},
    {"122495006", sct, "Thoracic spine"},
    {"122496007", sct, "Lumbar spine"},
};

std::optional<Code> codeIn(std::span<const Term> terms, std::string_view name) {
  for (const Term& term : terms)
    if (term.name == name) return term.code;
  return std::nullopt;
}

std::optional<std::string_view> nameIn(std::span<const Term> terms, const Code& code) {
  for (const Term& term : terms)
    if (term.code == code) return term.name;
  return std::nullopt;
}

/// From the end of one region to that of the next. A region with a vertebra more ends below that.
struct RegionEnds {
  std::string_view first;
  std::string_view last;
  std::string_view lastWithExtra;
};

constexpr RegionEnds regionEnds[] = {
    {"C0-C1", "C7-T1", "C8-T1"}, {"C7-T1", "T12-L1", "T13-L1"}, {"T12-L1", "L5-S1", "L6-S1"}};

/// Atlas and axis have no disc between them. Any other vertebra below a disc lies above the next one.
bool areNeighbours(std::string_view above, std::string_view below) {
  if (above == "C0-C1") return below == "C2-C3";
  return above.substr(above.find('-') + 1) == below.substr(0, below.find('-'));
}

}  // namespace

std::optional<Code> levelCode(std::string_view disc) { return codeIn(levels, disc); }
std::optional<Code> discCode(std::string_view disc) { return codeIn(discs, disc); }
std::optional<Code> vertebraCode(std::string_view vertebra) { return codeIn(vertebrae, vertebra); }

std::optional<Code> regionCode(int region) {
  if (region < -1 || region > 2) return std::nullopt;
  return regions[region + 1];
}

std::optional<std::string_view> discOfLevelCode(const Code& code) { return nameIn(levels, code); }
std::optional<std::string_view> vertebraOfCode(const Code& code) { return nameIn(vertebrae, code); }

std::optional<int> regionOfCode(const Code& code) {
  for (int region = -1; region <= 2; ++region)
    if (regionCode(region) == code) return region;
  return std::nullopt;
}

bool areLevelsOfRegion(const std::vector<std::string_view>& names, int region, bool additionalVertebra) {
  if (region < 0 || region > 2 || names.empty()) return false;
  const RegionEnds& ends = regionEnds[region];
  return names.front() == ends.first && names.back() == (additionalVertebra ? ends.lastWithExtra : ends.last) &&
         std::adjacent_find(names.begin(), names.end(), std::not_fn(areNeighbours)) == names.end();
}

}  // namespace workstation
