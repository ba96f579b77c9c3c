#include "workstation/model/Studies.h"

#include "workstation/model/StoredObjects.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::Ref;

class StudyIdentity final : public pelmar::ObjectID {
 public:
  StudyIdentity(std::string studyUid, StudyReports* reports) : studyUid_(std::move(studyUid)), reports_(reports) {}

  bool isEqual(const Ref<pelmar::ObjectID>& other) const override {
    const auto identity = ref_cast<StudyIdentity>(other);
    return identity.get() && identity.get()->studyUid_ == studyUid_;
  }
  Ref<pelmar::PersistentStore> persistentStore() const override {
    return reports_ ? reports_->persistentStore(studyUid_) : Ref<pelmar::PersistentStore>();
  }

 private:
  std::string studyUid_;
  StudyReports* reports_;
};

/// One object a file, also where a file has many frames.
Ref<pelmar::DicomSeries> objectOf(const Series& series) {
  std::set<std::string> paths;
  for (const Stack& stack : series.stacks) {
    for (const ImageRecord& slice : stack.slices) paths.insert(slice.file.string());
  }
  return makeStoredSeries({series.uid,
                           series.number.value_or(0),
                           series.description.empty() ? std::nullopt : std::optional(series.description),
                           {paths.begin(), paths.end()}});
}

}  // namespace

StudyObject::StudyObject(Study study, StudyReports* reports, const std::set<pelmar::Capability>& lacking)
    : study_(std::make_shared<const Study>(std::move(study))),
      reports_(reports),
      lacking_(lacking),
      identity_(pelmar::makeRef<StudyIdentity>(study_->uid, reports)) {
  for (const Series& one : study_->series) series_.push_back(objectOf(one));
}

std::shared_ptr<StudyObject::SliceList> StudyObject::slices(std::size_t seriesIndex, std::size_t stackIndex) {
  std::shared_ptr<SliceList>& list = slices_[{seriesIndex, stackIndex}];
  if (list) return list;
  list = std::make_shared<SliceList>();
  for (const ImageRecord& record : study_->series[seriesIndex].stacks[stackIndex].slices) {
    // The record belongs to the study, which thus lives as long as any of its slices.
    list->addObject(pelmar::makeRef<Pix>(std::shared_ptr<const ImageRecord>(study_, &record), lacking_));
  }
  return list;
}

std::optional<std::string> StudyObject::studyInstanceUID() const {
  if (study_->uid.empty()) return std::nullopt;
  return study_->uid;
}

std::optional<std::vector<Ref<pelmar::DicomSeries>>> StudyObject::PelmarSRSeries() const {
  if (!reports_) return std::vector<Ref<pelmar::DicomSeries>>();
  return reports_->reportSeries(study_->uid);
}

Ref<pelmar::DicomImage> StudyObject::SRImageWithSeriesID(long seriesID, std::string_view seriesDescription) const {
  return reports_ ? reports_->report(study_->uid, seriesID, seriesDescription) : Ref<pelmar::DicomImage>();
}

std::optional<SlicePlace> placeOf(const ImageRecord& slice, const Study& study) {
  for (std::size_t series = 0; series < study.series.size(); ++series) {
    if (study.series[series].uid != slice.seriesInstanceUid) continue;
    for (std::size_t stack = 0; stack < study.series[series].stacks.size(); ++stack) {
      const auto& slices = study.series[series].stacks[stack].slices;
      for (std::size_t index = 0; index < slices.size(); ++index) {
        if (slices[index].sopInstanceUid == slice.sopInstanceUid && slices[index].frame == slice.frame)
          return SlicePlace{series, stack, index};
      }
    }
  }
  return std::nullopt;
}

AnnotationStash::Key AnnotationStash::keyOf(const StackId& stack) {
  return {stack.studyUid, stack.series, stack.stack};
}

void AnnotationStash::keep(const StackId& stack, const SeriesRoiLists& lists) {
  for (std::size_t slice = 0; slice < lists.count(); ++slice) {
    for (const Ref<pelmar::ROI>& roi : lists.list(slice).entries()) {
      if (ownRoi(roi)->drawnByPerson() && !ownRoi(roi)->deleted()) kept_[keyOf(stack)].push_back({slice, roi});
    }
  }
}

void AnnotationStash::giveBack(const StackId& stack, SeriesRoiLists& lists) {
  const auto entries = kept_.extract(keyOf(stack));
  if (entries.empty()) return;
  for (const Entry& entry : entries.mapped()) {
    if (!ownRoi(entry.roi)->deleted() && entry.slice < lists.count()) lists.list(entry.slice).addObject(entry.roi);
  }
}

void AnnotationStash::follow(const Study& from, const Study& to) {
  std::map<Key, std::vector<Entry>> moved;
  for (auto stack = kept_.begin(); stack != kept_.end();) {
    const auto [study, seriesIndex, stackIndex] = stack->first;
    if (study != from.uid) {
      ++stack;
      continue;
    }
    const auto& slices = from.series[seriesIndex].stacks[stackIndex].slices;
    for (const Entry& entry : stack->second) {
      if (const auto place = placeOf(slices[entry.slice], to))
        moved[{study, place->series, place->stack}].push_back({place->slice, entry.roi});
    }
    stack = kept_.erase(stack);
  }
  kept_.merge(moved);
}

}  // namespace workstation
