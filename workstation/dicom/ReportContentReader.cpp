#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <array>
#include <cmath>
#include <map>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/ReportContent.h"
#include "workstation/dicom/ReportTerms.h"

namespace workstation {
namespace {

std::vector<DcmItem*> itemsOf(DcmItem& item, const DcmTagKey& tag) {
  std::vector<DcmItem*> items;
  DcmSequenceOfItems* sequence = nullptr;
  if (item.findAndGetSequence(tag, sequence).bad() || sequence == nullptr) return items;
  for (DcmObject* object = sequence->nextInContainer(nullptr); object; object = sequence->nextInContainer(object))
    if (auto* child = dynamic_cast<DcmItem*>(object)) items.push_back(child);
  return items;
}

DcmItem* firstItem(DcmItem& item, const DcmTagKey& tag) {
  const std::vector<DcmItem*> items = itemsOf(item, tag);
  return items.empty() ? nullptr : items.front();
}

/// Whether a code sequence says this code.
class ReadCode {
 public:
  ReadCode(DcmItem& item, const DcmTagKey& sequence) {
    DcmItem* code = firstItem(item, sequence);
    if (code == nullptr) return;
    value_ = Attributes(*code).code(DCM_CodeValue);
    scheme_ = Attributes(*code).code(DCM_CodingSchemeDesignator);
  }
  /// Valid as long as this object; without a meaning.
  Code code() const { return {value_, scheme_, {}}; }

 private:
  std::string value_;
  std::string scheme_;
};

/// A content item (PS3.3 C.17.3).
class Item {
 public:
  explicit Item(DcmItem& item) : item_(&item) {}

  bool is(const char* type, const Code& name) const {
    return Attributes(*item_).code(DCM_ValueType) == type &&
           ReadCode(*item_, DCM_ConceptNameCodeSequence).code() == name;
  }
  bool is(const char* type) const { return Attributes(*item_).code(DCM_ValueType) == type; }
  std::vector<Item> children() const {
    std::vector<Item> items;
    for (DcmItem* child : itemsOf(*item_, DCM_ContentSequence)) items.emplace_back(*child);
    return items;
  }
  /// The first child of that type and name.
  std::optional<Item> child(const char* type, const Code& name) const {
    for (const Item& item : children())
      if (item.is(type, name)) return item;
    return std::nullopt;
  }
  ReadCode code() const { return ReadCode(*item_, DCM_ConceptCodeSequence); }
  std::string text() const { return Attributes(*item_).code(DCM_TextValue); }
  std::string uid() const { return Attributes(*item_).code(DCM_UID); }

  /// In single precision.
  std::optional<double> number() const {
    DcmItem* measured = firstItem(*item_, DCM_MeasuredValueSequence);
    if (measured == nullptr) return std::nullopt;
    Float64 exact = 0;
    std::optional<double> value = Attributes(*measured).number(DCM_NumericValue);
    if (measured->findAndGetFloat64(DCM_FloatingPointValue, exact).good()) value = exact;
    if (!value || !std::isfinite(*value)) return std::nullopt;
    const double single = static_cast<double>(static_cast<float>(*value));
    return std::isfinite(single) ? std::optional(single) : std::nullopt;
  }
  /// The point of a region in space.
  std::optional<std::array<double, 3>> point() const {
    if (Attributes(*item_).code(DCM_GraphicType) != "POINT") return std::nullopt;
    const Float32* values = nullptr;
    unsigned long count = 0;
    if (item_->findAndGetFloat32Array(DCM_GraphicData, values, &count).bad() || values == nullptr || count != 3)
      return std::nullopt;
    std::array<double, 3> point{};
    for (std::size_t i = 0; i < 3; ++i) {
      if (!std::isfinite(values[i])) return std::nullopt;
      point[i] = static_cast<double>(values[i]);
    }
    return point;
  }
  std::string frameOfReferenceUid() const { return Attributes(*item_).code(DCM_ReferencedFrameOfReferenceUID); }
  /// The image of the item, or those frames of it that are listed.
  std::vector<ImageReference> images() const {
    DcmItem* reference = firstItem(*item_, DCM_ReferencedSOPSequence);
    if (reference == nullptr) return {};
    const Attributes attributes(*reference);
    ImageReference image;
    image.sopClassUid = attributes.code(DCM_ReferencedSOPClassUID);
    image.sopInstanceUid = attributes.code(DCM_ReferencedSOPInstanceUID);
    std::vector<ImageReference> images;
    for (const double frame : attributes.numbers(DCM_ReferencedFrameNumber).value_or(std::vector<double>())) {
      if (!(frame >= 1 && frame <= 2147483647.0)) return {};
      image.frame = static_cast<int>(frame);
      image.multiFrame = true;
      images.push_back(image);
    }
    if (images.empty()) images.push_back(image);
    return images;
  }

 private:
  DcmItem* item_;
};

/// The series of each image that the report lists as its evidence.
std::map<std::string, std::string> seriesByImage(DcmItem& dataset) {
  std::map<std::string, std::string> series;
  for (DcmItem* study : itemsOf(dataset, DCM_CurrentRequestedProcedureEvidenceSequence))
    for (DcmItem* listed : itemsOf(*study, DCM_ReferencedSeriesSequence))
      for (DcmItem* image : itemsOf(*listed, DCM_ReferencedSOPSequence))
        series[Attributes(*image).code(DCM_ReferencedSOPInstanceUID)] = Attributes(*listed).code(DCM_SeriesInstanceUID);
  return series;
}

/// Reads what the content says; false where it is not what we write, so that nothing in it can be relied on.
class ContentReader {
 public:
  explicit ContentReader(DcmItem& dataset) : root_(dataset), series_(seriesByImage(dataset)) {}

  bool read() {
    const std::optional<Item> evaluations = root_.child("CONTAINER", term::qualitativeEvaluations);
    if (!evaluations || !readEvaluations(*evaluations)) return false;
    if (const auto library = root_.child("CONTAINER", term::imageLibrary)) readLibrary(*library);
    if (const auto measurements = root_.child("CONTAINER", term::imagingMeasurements))
      for (const Item& group : measurements->children())
        if (group.is("CONTAINER", term::measurementGroup) && !readGroup(group)) return false;
    const auto& levels = content_.labelling.levels;
    return levels ? levels->empty() != expectsLevels_ && isWhole() : !expectsLevels_;
  }
  ReportContent& content() { return content_; }

 private:
  /// One level lost, and all below it would be taken for their neighbours. What has no names of levels, or no region,
  /// cannot be judged.
  bool isWhole() const {
    const SavedLabelling& labelling = content_.labelling;
    const int region = labelling.anatomicalRegion.value_or(-1);
    if (region == -1 || labelling.levels->empty()) return true;
    std::vector<std::string_view> names;
    for (const SavedLevel& level : *labelling.levels) {
      if (!levelCode(level.name)) return true;
      names.push_back(level.name);
    }
    const auto& extra = labelling.additionalVertebra;
    return areLevelsOfRegion(names, region, extra.value_or(false)) ||
           (!extra && areLevelsOfRegion(names, region, true));
  }

  bool readEvaluations(const Item& evaluations) {
    const std::optional<Item> state = evaluations.child("CODE", term::labellingState);
    if (!state) return false;
    SavedLabelling& labelling = content_.labelling;
    if (const auto region = evaluations.child("CODE", term::targetRegion)) {
      labelling.anatomicalRegion = regionOfCode(region->code().code());
      if (!labelling.anatomicalRegion) return false;
    }
    if (const auto extra = evaluations.child("CODE", term::additionalVertebra))
      if (!readAnswer(*extra, labelling.additionalVertebra.emplace())) return false;
    if (const auto levels = evaluations.child("CODE", term::hasLevels)) {
      if (!readAnswer(*levels, expectsLevels_)) return false;
      labelling.levels.emplace();
    }
    const ReadCode code = state->code();
    return code.code() == (labelling.isEmpty() ? term::notLabelled : term::labelled);
  }

  static bool readAnswer(const Item& item, bool& answer) {
    const ReadCode code = item.code();
    answer = code.code() == term::yes;
    return answer || code.code() == term::no;
  }

  void readLibrary(const Item& library) {
    ReportContext& context = content_.context;
    const std::optional<Item> group = library.child("CONTAINER", term::imageLibraryGroup);
    if (!group) return;
    if (const auto modality = group->child("CODE", term::modality))
      context.verticalModality = modality->code().code().value;
    if (const auto frame = group->child("UIDREF", term::frameOfReferenceUid))
      context.frameOfReferenceUid = frame->uid();
    for (const Item& item : group->children()) {
      if (!item.is("IMAGE")) continue;
      for (const ImageReference& image : item.images()) context.verticalImages.push_back(withSeries(image));
    }
    if (!context.verticalImages.empty()) context.verticalSeriesUid = context.verticalImages.front().seriesInstanceUid;
  }

  ImageReference withSeries(ImageReference image) const {
    const auto found = series_.find(image.sopInstanceUid);
    if (found != series_.end()) image.seriesInstanceUid = found->second;
    return image;
  }

  /// A level, a slice's level, or something of others.
  bool readGroup(const Item& group) {
    const std::optional<Item> finding = group.child("CODE", term::finding);
    if (!finding) return true;
    if (const auto region = group.child("SCOORD3D", term::imageRegion)) return readLevel(group, *region, *finding);
    if (const auto image = group.child("IMAGE", term::source)) readSlice(group, *image, *finding);
    return true;
  }

  bool readLevel(const Item& group, const Item& region, const Item& finding) {
    SavedLevel level;
    if (!readName(group, finding, level.name)) return true;
    const auto point = region.point();
    if (!point || !sharesFrameOfReference(region.frameOfReferenceUid()) || !content_.labelling.levels) return false;
    level.point = *point;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::optional<Item> item = group.child("NUM", term::normalComponents[i]);
      const std::optional<double> number = item ? item->number() : std::nullopt;
      if (!number) return false;
      level.vector[i] = *number;
    }
    content_.labelling.levels->push_back(std::move(level));
    return true;
  }

  /// All levels lie in one.
  bool sharesFrameOfReference(const std::string& uid) {
    std::string& known = content_.context.frameOfReferenceUid;
    if (known.empty()) known = uid;
    return !uid.empty() && known == uid;
  }

  /// The code says the name, and the tracking identifier where it has none of its own. False for what is no level.
  static bool readName(const Item& group, const Item& finding, std::string& name) {
    const ReadCode code = finding.code();
    if (code.code() == term::unnamedLevel) return true;
    if (const auto known = discOfLevelCode(code.code())) {
      name = *known;
      return true;
    }
    const std::optional<Item> identifier = group.child("TEXT", term::trackingIdentifier);
    if (code.code() == term::otherLevel && identifier) name = identifier->text();
    return !name.empty();
  }

  void readSlice(const Item& group, const Item& image, const Item& finding) {
    const ReadCode code = finding.code();
    const std::optional<Item> identifier = group.child("TEXT", term::trackingIdentifier);
    std::string name;
    if (const auto disc = discOfLevelCode(code.code()))
      name = *disc;
    else if (const auto vertebra = vertebraOfCode(code.code()))
      name = *vertebra;
    else if (code.code() == term::otherVertebra && identifier)
      name = identifier->text();
    const std::vector<ImageReference> images = image.images();
    if (!name.empty() && images.size() == 1) content_.context.sliceLevels.push_back({withSeries(images[0]), name});
  }

  Item root_;
  std::map<std::string, std::string> series_;
  ReportContent content_;
  bool expectsLevels_ = false;
};

}  // namespace

std::optional<ReportContent> parseContent(DcmItem& dataset) {
  ContentReader reader(dataset);
  if (!reader.read()) return std::nullopt;
  return std::move(reader.content());
}

}  // namespace workstation
