#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// Decoded pixels of the slices that were looked at last, up to a number of bytes. Main thread only.
class PixelCache {
 public:
  static constexpr std::size_t defaultCapacityBytes = std::size_t{1} << 30;

  /// The source must outlive the cache.
  explicit PixelCache(PixelSource& source, std::size_t capacityBytes = defaultCapacityBytes)
      : source_(source), capacityBytes_(capacityBytes) {}

  /// The pixels of a slice, from memory or from the source; null with a sentence in `problem` that names the file and
  /// the reason. They stay valid as long as they are held. An image that is larger than the whole cache is handed out
  /// and not kept, and what could not be read is tried again the next time.
  std::shared_ptr<const PixelData> pixels(const ImageRecord& image, std::string& problem);

  /// Lets the least recently used go until the rest fits.
  void setCapacity(std::size_t bytes);
  /// Forgets everything, for files that have changed or gone.
  void clear();

  std::size_t capacityBytes() const { return capacityBytes_; }
  /// What the kept images take.
  std::size_t usedBytes() const { return usedBytes_; }
  std::size_t count() const { return places_.size(); }

 private:
  using Key = std::pair<std::string, int>;  ///< file and frame
  struct Entry {
    Key key;
    std::shared_ptr<const PixelData> pixels;
    std::size_t bytes = 0;
  };

  void shrinkTo(std::size_t bytes);

  PixelSource& source_;
  std::size_t capacityBytes_;
  std::size_t usedBytes_ = 0;
  std::list<Entry> entries_;  ///< the most recently used first
  std::map<Key, std::list<Entry>::iterator> places_;
};

}  // namespace workstation
