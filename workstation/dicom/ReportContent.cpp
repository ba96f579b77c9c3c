#include "workstation/dicom/ReportContent.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>

#include "workstation/dicom/DecimalString.h"
#include "workstation/dicom/ReportTerms.h"
#include "workstation/dicom/Uid.h"

namespace workstation {
namespace {

/// How long the line is drawn that shows a plane's normal.
constexpr double normalLengthMm = 20;

using Point = std::array<double, 3>;

OFString toOf(std::string_view text) { return OFString(text.data(), text.size()); }

/// Codes are constants and names are checked, so that the toolkit need not check them once more.
DSRCodedEntryValue toOf(const Code& code) {
  return DSRCodedEntryValue(toOf(code.value), toOf(code.scheme), toOf(code.meaning), DSRTypes::CVT_auto, OFFalse);
}

/// Adds items below the one that the tree's cursor stands on; remembers the first that could not be added.
class TreeWriter {
 public:
  explicit TreeWriter(DSRDocumentTree& tree) : tree_(tree) {}

  /// An item with its value set by `fill`; what `below` adds comes below it.
  template <class Fill, class Below>
  void item(DSRTypes::E_RelationshipType relationship, DSRTypes::E_ValueType type,
            const std::optional<Code>& codedConcept, const Fill& fill, const Below& below) {
    const auto mode = tree_.isEmpty() ? DSRTypes::AM_afterCurrent : DSRTypes::AM_belowCurrent;
    if (failed_ || tree_.addContentItem(relationship, type, mode) == 0) {
      failed_ = true;
      return;
    }
    DSRContentItem& added = tree_.getCurrentContentItem();
    if (codedConcept) note(added.setConceptName(toOf(*codedConcept), OFFalse));
    note(fill(added));
    below();
    if (relationship != DSRTypes::RT_isRoot) tree_.goUp();
  }
  template <class Below>
  void container(const Code& name, const char* templateId, const Below& below) {
    const auto relationship = tree_.isEmpty() ? DSRTypes::RT_isRoot : DSRTypes::RT_contains;
    const auto identify = [&](DSRContentItem& item) {
      return templateId ? item.setTemplateIdentification(templateId, "DCMR") : EC_Normal;
    };
    item(relationship, DSRTypes::VT_Container, name, identify, below);
  }
  void code(DSRTypes::E_RelationshipType relationship, const Code& name, const Code& value) {
    const auto fill = [&](DSRContentItem& item) { return item.setCodeValue(toOf(value), OFFalse); };
    item(relationship, DSRTypes::VT_Code, name, fill, [] {});
  }
  void text(DSRTypes::E_RelationshipType relationship, const Code& name, std::string_view value) {
    string(relationship, DSRTypes::VT_Text, name, value);
  }
  void uid(DSRTypes::E_RelationshipType relationship, const Code& name, std::string_view value) {
    string(relationship, DSRTypes::VT_UIDRef, name, value);
  }
  void number(const Code& name, double value) {
    const auto fill = [&](DSRContentItem& item) {
      DSRNumericMeasurementValue measurement(toOf(decimalString(value)), toOf(term::noUnits), OFFalse);
      const OFCondition outcome = measurement.setFloatingPointRepresentation(value, OFFalse);
      return outcome.bad() ? outcome : item.setNumericValue(measurement, OFFalse);
    };
    item(DSRTypes::RT_contains, DSRTypes::VT_Num, name, fill, [] {});
  }
  void graphic(const Code& name, DSRTypes::E_GraphicType3D type, const std::vector<Point>& points,
               const std::string& frameOfReferenceUid) {
    const auto fill = [&](DSRContentItem& item) {
      DSRSpatialCoordinates3DValue value(type);
      for (const Point& p : points)
        value.getGraphicDataList().addItem(static_cast<Float32>(p[0]), static_cast<Float32>(p[1]),
                                           static_cast<Float32>(p[2]));
      value.setFrameOfReferenceUID(toOf(frameOfReferenceUid), OFFalse);
      return item.setSpatialCoordinates3D(value, OFFalse);
    };
    item(DSRTypes::RT_contains, DSRTypes::VT_SCoord3D, name, fill, [] {});
  }
  /// An image, or those frames of one that `frames` lists.
  void image(const std::optional<Code>& name, const ImageReference& image, const std::vector<int>& frames) {
    const auto fill = [&](DSRContentItem& item) {
      DSRImageReferenceValue value(toOf(image.sopClassUid), toOf(image.sopInstanceUid), OFFalse);
      for (const int frame : frames) value.getFrameList().addItem(frame);
      return item.setImageReference(value, OFFalse);
    };
    item(DSRTypes::RT_contains, DSRTypes::VT_Image, name, fill, [] {});
  }
  bool failed() const { return failed_; }

 private:
  void string(DSRTypes::E_RelationshipType relationship, DSRTypes::E_ValueType type, const Code& name,
              std::string_view value) {
    const auto fill = [&](DSRContentItem& item) { return item.setStringValue(toOf(value), OFFalse); };
    item(relationship, type, name, fill, [] {});
  }
  void note(const OFCondition& outcome) { failed_ = failed_ || outcome.bad(); }

  DSRDocumentTree& tree_;
  bool failed_ = false;
};

constexpr auto observation = DSRTypes::RT_hasObsContext;
constexpr auto acquisition = DSRTypes::RT_hasAcqContext;
constexpr auto modifier = DSRTypes::RT_hasConceptMod;
constexpr auto contains = DSRTypes::RT_contains;

/// PS3.16 CID 29, as far as images of a spine are made by it.
std::optional<Code> modalityCode(std::string_view modality) {
  constexpr Code codes[] = {
      {"MR", "DCM", "Magnetic Resonance"},   {"CT", "DCM", "Computed Tomography"},
      {"CR", "DCM", "Computed Radiography"}, {"DX", "DCM", "Digital Radiography"},
      {"RF", "DCM", "Radiofluoroscopy"},     {"XA", "DCM", "X-Ray Angiography"},
      {"NM", "DCM", "Nuclear Medicine"},     {"PT", "DCM", "Positron emission tomography"},
      {"US", "DCM", "Ultrasound"},           {"OT", "DCM", "Other Modality"},
  };
  for (const Code& code : codes)
    if (code.value == modality) return code;
  return std::nullopt;
}

bool isPrintable(std::string_view name) {
  // A backslash or a tilde is another sign in some of the character sets that a study may have.
  const auto allowed = [](char c) { return c >= ' ' && c < '~' && c != '\\'; };
  return std::all_of(name.begin(), name.end(), allowed) && !name.starts_with(' ') && !name.ends_with(' ');
}

std::string quoted(const std::string& name) { return "\"" + name + "\""; }

/// Why the levels cannot be told, or an empty string.
std::string problemOf(const SavedLabelling& labelling, const ReportContext& context) {
  if (labelling.anatomicalRegion && !regionCode(*labelling.anatomicalRegion))
    return "there is no region " + std::to_string(*labelling.anatomicalRegion);
  const std::vector<SavedLevel> none;
  const std::vector<SavedLevel>& levels = labelling.levels ? *labelling.levels : none;
  if (!levels.empty() && context.frameOfReferenceUid.empty())
    return "its levels have no frame of reference, which says where they lie";
  for (const SavedLevel& level : levels) {
    if (!isPrintable(level.name))
      return "the name of the level " + quoted(level.name) +
             " has signs that cannot be stored with every patient's name";
    const auto fits = [](double v) { return std::abs(v) <= std::numeric_limits<float>::max(); };
    if (!std::all_of(level.point.begin(), level.point.end(), fits) ||
        !std::all_of(level.vector.begin(), level.vector.end(), fits))
      return "a coordinate of the level " + quoted(level.name) + " is not a number that fits";
  }
  return {};
}

std::string problemOf(const ReportContext& context) {
  const auto incomplete = [](const ImageReference& image) {
    return image.sopClassUid.empty() || image.sopInstanceUid.empty();
  };
  if (std::any_of(context.verticalImages.begin(), context.verticalImages.end(), incomplete))
    return "an image of the vertical series has no identifier";
  for (const SliceLevel& slice : context.sliceLevels) {
    if (incomplete(slice.image) || slice.image.seriesInstanceUid.empty())
      return "a slice of the level " + quoted(slice.level) + " has no identifier of its image or series";
    if (slice.level.empty() || !isPrintable(slice.level))
      return "the name of a slice, " + quoted(slice.level) + ", cannot be stored with every patient's name";
  }
  return {};
}

void writeObserver(const ReportToWrite& report, TreeWriter& writer) {
  writer.code(modifier, term::language, term::english);
  writer.code(observation, term::observerType, term::device);
  writer.uid(observation, term::deviceObserverUid, makeUid("Vertana, the device"));
  writer.text(observation, term::deviceObserverName, "Vertana");
  const bool isMr = report.context.verticalModality == "MR";
  const bool isCt = report.context.verticalModality == "CT";
  // PS3.16 CID 100.
  writer.code(modifier, term::procedureReported,
              isMr   ? Code{"25056-3", "LN", "MRI unspecified body region"}
              : isCt ? Code{"25045-6", "LN", "CT unspecified body region"}
                     : term::imagingProcedure);
}

/// TID 1600: the images on which the spine was drawn, an item an object.
void writeImageLibrary(const ReportToWrite& report, TreeWriter& writer) {
  const ReportContext& context = report.context;
  if (context.verticalImages.empty()) return;
  std::vector<ImageReference> objects;
  std::map<std::string, std::vector<int>> frames;
  for (const ImageReference& image : context.verticalImages) {
    if (frames.find(image.sopInstanceUid) == frames.end()) objects.push_back(image);
    std::vector<int>& list = frames[image.sopInstanceUid];
    if (image.multiFrame) list.push_back(image.frame);
  }
  const auto group = [&] {
    if (const auto code = modalityCode(context.verticalModality)) writer.code(acquisition, term::modality, *code);
    const int region = report.labelling.anatomicalRegion.value_or(-1);
    if (region >= 0) writer.code(acquisition, term::targetRegion, *regionCode(region));
    if (!context.frameOfReferenceUid.empty())
      writer.uid(acquisition, term::frameOfReferenceUid, context.frameOfReferenceUid);
    for (const ImageReference& image : objects) writer.image(std::nullopt, image, frames[image.sopInstanceUid]);
  };
  writer.container(term::imageLibrary, "1600", [&] { writer.container(term::imageLibraryGroup, nullptr, group); });
}

/// TID 1410: a level, its point as the one image region, the normal beside it.
void writeLevel(const ReportToWrite& report, const SavedLevel& level, TreeWriter& writer) {
  const std::string& frame = report.context.frameOfReferenceUid;
  writer.container(term::measurementGroup, "1410", [&] {
    writer.text(observation, term::trackingIdentifier,
                level.name.empty() ? term::unnamedLevel.meaning : std::string_view(level.name));
    writer.uid(observation, term::trackingUid, makeUid(report.sopInstanceUid + " level " + level.name));
    writer.code(contains, term::finding,
                levelCode(level.name).value_or(level.name.empty() ? term::unnamedLevel : term::otherLevel));
    writer.code(modifier, term::findingSite, discCode(level.name).value_or(term::intervertebralDisc));
    writer.graphic(term::imageRegion, DSRTypes::GT3_Point, {level.point}, frame);
    const Point& n = level.vector;
    const double length = std::hypot(n[0], n[1], n[2]);
    if (length > 0) {
      Point end = level.point;
      for (std::size_t i = 0; i < 3; ++i) end[i] += normalLengthMm * (n[i] / length);
      writer.graphic(term::planeNormal, DSRTypes::GT3_Polyline, {level.point, end}, frame);
    }
    for (std::size_t i = 0; i < 3; ++i) writer.number(term::normalComponents[i], n[i]);
  });
}

/// TID 1501: the level that an axial slice shows.
void writeSlice(const ReportToWrite& report, const SliceLevel& slice, TreeWriter& writer) {
  const std::optional<Code> disc = discCode(slice.level);
  const Code site = disc ? *disc : vertebraCode(slice.level).value_or(term::otherVertebra);
  const ImageReference& image = slice.image;
  writer.container(term::measurementGroup, "1501", [&] {
    writer.text(observation, term::trackingIdentifier, slice.level);
    writer.uid(observation, term::trackingUid,
               makeUid(report.sopInstanceUid + " slice " + image.sopInstanceUid + " " + std::to_string(image.frame)));
    writer.code(contains, term::finding, disc ? *levelCode(slice.level) : site);
    writer.code(modifier, term::findingSite, site);
    writer.image(term::source, image, image.multiFrame ? std::vector{image.frame} : std::vector<int>());
  });
}

void writeMeasurements(const ReportToWrite& report, TreeWriter& writer) {
  const auto& levels = report.labelling.levels;
  if ((!levels || levels->empty()) && report.context.sliceLevels.empty()) return;
  writer.container(term::imagingMeasurements, nullptr, [&] {
    if (levels)
      for (const SavedLevel& level : *levels) writeLevel(report, level, writer);
    for (const SliceLevel& slice : report.context.sliceLevels) writeSlice(report, slice, writer);
  });
}

void writeEvaluations(const SavedLabelling& labelling, TreeWriter& writer) {
  const auto answer = [](bool yes) { return yes ? term::yes : term::no; };
  writer.container(term::qualitativeEvaluations, nullptr, [&] {
    writer.code(contains, term::labellingState, labelling.isEmpty() ? term::notLabelled : term::labelled);
    if (labelling.anatomicalRegion) writer.code(contains, term::targetRegion, *regionCode(*labelling.anatomicalRegion));
    if (labelling.additionalVertebra)
      writer.code(contains, term::additionalVertebra, answer(*labelling.additionalVertebra));
    if (labelling.levels) writer.code(contains, term::hasLevels, answer(!labelling.levels->empty()));
    if (labelling.isEmpty())
      writer.text(contains, term::comment,
                  "The spine of this study is not labelled. A labelling that was stored before this report no longer "
                  "counts.");
  });
}

}  // namespace

bool buildContent(const ReportToWrite& report, DSRDocumentTree& tree, std::string& problem) {
  const bool isEmpty = report.labelling.isEmpty();
  problem = problemOf(report.labelling, report.context);
  if (problem.empty() && !isEmpty) problem = problemOf(report.context);
  if (!problem.empty()) return false;
  TreeWriter writer(tree);
  writer.container(term::imagingMeasurementReport, "1500", [&] {
    writeObserver(report, writer);
    if (!isEmpty) {
      writeImageLibrary(report, writer);
      writeMeasurements(report, writer);
    }
    writeEvaluations(report.labelling, writer);
  });
  if (writer.failed()) problem = "its content could not be put together";
  return !writer.failed();
}

}  // namespace workstation
