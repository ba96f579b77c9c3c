#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>

#include "host/Database.h"
#include "host/List.h"
#include "workstation/model/Pix.h"
#include "workstation/model/RoiLists.h"
#include "workstation/model/Seams.h"
#include "workstation/model/Stacks.h"

namespace workstation {

struct StackId;

/// Where a slice of a study is.
struct SlicePlace {
  std::size_t series = 0;
  std::size_t stack = 0;
  std::size_t slice = 0;
};

/// Where the same slice, by its SOP Instance UID and frame, is in a study; nothing where it is not there.
std::optional<SlicePlace> placeOf(const ImageRecord& slice, const Study& study);

/// A study as the plug-in sees it. What is told of reports comes from StudyReports, where there are any.
class StudyObject final : public pelmar::DicomStudy {
 public:
  StudyObject(Study study, StudyReports* reports, const std::set<pelmar::Capability>& lacking);

  const Study& data() const { return *study_; }
  /// The slices of a stack; the same objects each time.
  std::shared_ptr<pelmar::VectorList<pelmar::Ref<pelmar::DCMPix>>> slices(std::size_t series, std::size_t stack);

  /// Absent when it is empty.
  std::optional<std::string> studyInstanceUID() const override;
  std::optional<std::string> studyName() const override { return study_->description; }
  pelmar::Ref<pelmar::ObjectID> objectID() const override { return identity_; }
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> series() const override { return series_; }
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> PelmarSRSeries() const override;
  pelmar::Ref<pelmar::DicomImage> SRImageWithSeriesID(long seriesID, std::string_view seriesDescription) const override;

 private:
  using SliceList = pelmar::VectorList<pelmar::Ref<pelmar::DCMPix>>;

  std::shared_ptr<const Study> study_;
  StudyReports* reports_;
  const std::set<pelmar::Capability>& lacking_;
  pelmar::Ref<pelmar::ObjectID> identity_;
  std::vector<pelmar::Ref<pelmar::DicomSeries>> series_;
  std::map<std::pair<std::size_t, std::size_t>, std::shared_ptr<SliceList>> slices_;
};

/// The person's own annotations of the stacks that no viewer shows just now.
class AnnotationStash {
 public:
  /// Keeps the annotations that a person drew, that still stand in the lists and are not marked as deleted.
  void keep(const StackId& stack, const SeriesRoiLists& lists);
  /// Puts those of the stack, but for what was deleted meanwhile, into the lists and forgets them.
  void giveBack(const StackId& stack, SeriesRoiLists& lists);
  /// One study takes the place of another with the same UID: annotations stay with their slices, those of slices that
  /// have gone are forgotten.
  void follow(const Study& from, const Study& to);

 private:
  struct Entry {
    std::size_t slice = 0;
    pelmar::Ref<pelmar::ROI> roi;
  };
  using Key = std::tuple<std::string, std::size_t, std::size_t>;
  static Key keyOf(const StackId& stack);

  std::map<Key, std::vector<Entry>> kept_;
};

}  // namespace workstation
