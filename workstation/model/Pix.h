#pragma once

#include <memory>
#include <set>

#include "host/DCMPix.h"
#include "workstation/model/ImageRecord.h"

namespace workstation {

/// One slice as the plug-in sees it. Computes in double precision and narrows at the end.
class Pix final : public pelmar::DCMPix {
 public:
  Pix(std::shared_ptr<const ImageRecord> record, const std::set<pelmar::Capability>& lacking);

  const ImageRecord& record() const { return *record_; }

  bool supports(pelmar::Capability capability) const override;
  std::array<double, 9> orientation() const override { return orientation_; }
  void orientation(std::array<float, 9>& vector) const override;
  void convertPixX(float x, float pixY, pelmar::Vector3f& toDICOMCoords) const override;
  pelmar::SlicePoint convertDICOMCoords(const pelmar::Vector3f& position) const override;
  double pixelSpacingX() const override;
  double pixelSpacingY() const override;
  long pwidth() const override { return record_->columns; }
  long pheight() const override { return record_->rows; }
  bool isRGB() const override { return record_->colour; }
  std::optional<std::string> bodyPartExamined() const override;
  pelmar::PixelRect contentFrameRect() const override;

 private:
  std::shared_ptr<const ImageRecord> record_;
  bool hasBodyPart_;
  std::array<double, 9> orientation_{};
};

}  // namespace workstation
