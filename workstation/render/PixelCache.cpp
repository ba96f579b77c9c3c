#include "workstation/render/PixelCache.h"

namespace workstation {
namespace {

std::size_t bytesOf(const PixelData& pixels) {
  std::size_t bytes = sizeof(PixelData) + pixels.samples.capacity() * sizeof(std::int32_t);
  for (const VoiLut& lut : pixels.voiLuts) bytes += lut.entries.capacity() * sizeof(std::uint16_t);
  return bytes;
}

}  // namespace

std::shared_ptr<const PixelData> PixelCache::pixels(const ImageRecord& image, std::string& problem) {
  const Key key{image.file.string(), image.frame};
  if (const auto place = places_.find(key); place != places_.end()) {
    entries_.splice(entries_.begin(), entries_, place->second);
    return place->second->pixels;
  }
  std::optional<PixelData> read = source_.pixels(image, problem);
  if (!read) return nullptr;
  auto pixels = std::make_shared<const PixelData>(*std::move(read));
  const std::size_t bytes = bytesOf(*pixels);
  if (bytes > capacityBytes_) return pixels;
  shrinkTo(capacityBytes_ - bytes);
  entries_.push_front({key, pixels, bytes});
  places_[key] = entries_.begin();
  usedBytes_ += bytes;
  return pixels;
}

void PixelCache::setCapacity(std::size_t bytes) {
  capacityBytes_ = bytes;
  shrinkTo(capacityBytes_);
}

void PixelCache::clear() { shrinkTo(0); }

void PixelCache::shrinkTo(std::size_t bytes) {
  while (usedBytes_ > bytes) {
    usedBytes_ -= entries_.back().bytes;
    places_.erase(entries_.back().key);
    entries_.pop_back();
  }
}

}  // namespace workstation
