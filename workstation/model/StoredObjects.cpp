#include "workstation/model/StoredObjects.h"

namespace workstation {
namespace {

using pelmar::Ref;

class ImageOfFile final : public pelmar::DicomImage {
 public:
  explicit ImageOfFile(std::string path) : path_(std::move(path)) {}
  std::optional<std::string> completePathResolved() const override { return path_; }

 private:
  std::string path_;
};

class SeriesOfFiles final : public pelmar::DicomSeries {
 public:
  explicit SeriesOfFiles(StoredSeries series) : series_(std::move(series)) {
    for (const std::string& path : series_.paths) images_.push_back(makeStoredImage(path));
  }
  std::optional<std::string> name() const override { return series_.name; }
  long id() const override { return series_.number; }
  std::optional<std::string> seriesDICOMUID() const override { return series_.uid; }
  std::optional<std::vector<Ref<pelmar::DicomImage>>> images() const override { return images_; }

 private:
  StoredSeries series_;
  std::vector<Ref<pelmar::DicomImage>> images_;
};

}  // namespace

Ref<pelmar::DicomImage> makeStoredImage(std::string path) { return pelmar::makeRef<ImageOfFile>(std::move(path)); }

Ref<pelmar::DicomSeries> makeStoredSeries(StoredSeries series) {
  return pelmar::makeRef<SeriesOfFiles>(std::move(series));
}

}  // namespace workstation
