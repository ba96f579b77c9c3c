// The labelling as it is kept inside the study: a report that carries an archive of a small dictionary.
#include "plugin/VertanaFilter.h"
#include "state/PlaneRecords.h"

namespace vertana {

using pelmar::Bytes;
using pelmar::DicomImage;
using pelmar::Ref;
using pelmar::Value;

namespace {

constexpr std::string_view stateSeriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";
constexpr long StateSeriesID = 20170720;
constexpr std::string_view regionKey = "VertanaAnatomicalRegion";
constexpr std::string_view additionalVertebraKey = "kAdditionalVertebra";
constexpr std::string_view planesKey = "intervertebralPlanes";

/// Any image of any series that has one: the report takes patient and study from it.
Ref<DicomImage> anyImageOf(const Ref<pelmar::DicomStudy>& study) {
  for (const auto& series : study->series().value_or(std::vector<Ref<pelmar::DicomSeries>>())) {
    const auto images = series->images();
    if (images && !images->empty()) return images->front();
  }
  return nullptr;
}

}  // namespace

void VertanaFilter::saveCurrentState() {
  setStudyDescriptionAsCustomTermForCurrentRegion();
  const auto& planes = intervertebralPlanes();
  if (!planes || planes->empty()) return;
  saveState({{std::string(regionKey), static_cast<std::int64_t>(anatomicalRegion())},
             {std::string(additionalVertebraKey), additionalVertebra()},
             {std::string(planesKey), valueFromPlanes(*planes)}});
}

void VertanaFilter::saveEmptyState() { saveState({}); }

void VertanaFilter::saveState(const SavedState& state) {
  if (savedDictionary_ && *savedDictionary_ == state) return;
  const auto archive = api().keyedArchiving().archivedDataWithRootObject(state);
  auto database = api().browserControllerClass().currentBrowser()->database();
  const auto path = database->uniquePathForNewDataFileWithExtension("dcm", study_->objectID()->persistentStore());
  const auto report =
      api().srAnnotationClass().initWithData(archive, path, anyImageOf(study_), StateSeriesID, stateSeriesDescription);
  // The new report joins the state series that is there; of several the last one walked wins.
  for (const auto& series : study_->PelmarSRSeries().value_or(std::vector<Ref<pelmar::DicomSeries>>())) {
    if (series->name() == stateSeriesDescription && static_cast<std::int32_t>(series->id()) == StateSeriesID) {
      report->setSeriesInstanceUID(series->seriesDICOMUID());
    }
  }
  if (path) report->writeToFileAtPath(*path);
  database = api().browserControllerClass().currentBrowser()->database();
  if (!api().application().isMainThread()) database = database->independentDatabase();
  if (path) database->addFilesAtPaths({*path}, true, true, true, true);
  setSavedDictionary(state);
}

std::optional<SavedState> VertanaFilter::savedState() const {
  const auto path = study_->SRImageWithSeriesID(StateSeriesID, stateSeriesDescription)->completePathResolved();
  if (!path || !api().application().fileExistsAtPath(*path)) return std::nullopt;
  auto data = api().srAnnotationClass().initWithContentsOfFile(*path)->dataEncapsulated().value_or(Bytes());
  auto state = api().keyedArchiving().unarchiveObjectWithData(data);
  if (state.isNil()) {
    if (data.empty()) return std::nullopt;
    // DICOM pads values of odd length with one byte, which an archive reader may stumble over.
    data.pop_back();
    state = api().keyedArchiving().unarchiveObjectWithData(data);
  }
  if (!state.dictionary()) return std::nullopt;
  return *state.dictionary();
}

bool VertanaFilter::savedStateExists() const { return savedState().has_value(); }

bool VertanaFilter::isSavedStateEmpty() const { return !savedDictionary_ || savedDictionary_->empty(); }

void VertanaFilter::loadState() {
  const auto state = savedState();
  if (!state) return;
  // First of all, so that what the setters below store is compared with what was loaded.
  setSavedDictionary(state);
  const auto region = state->find(regionKey);
  if (region != state->end()) setAnatomicalRegion(region->second.intValue());
  const auto additional = state->find(additionalVertebraKey);
  if (additional != state->end()) setAdditionalVertebra(additional->second.boolValue());
  // Last: the setters may have reset the labelling, and this puts the loaded planes back.
  const auto planes = state->find(planesKey);
  if (planes != state->end() && planes->second.array()) {
    setIntervertebralPlanes(planesFromValue(*planes->second.array()));
  }
}

}  // namespace vertana
