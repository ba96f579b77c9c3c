#pragma once

#include <QSettings>
#include <cstddef>
#include <string>

#include "workstation/render/PixelCache.h"

namespace workstation {

/// How many bytes the decoded slices may take that are kept in memory.
struct CacheSetting {
  std::size_t bytes = PixelCache::defaultCapacityBytes;
  std::string problem;  ///< a whole sentence where the settings hold something that is no such number; else empty
};

/// What `bytes` in the section `cache` of the settings says; the default where it is missing or no whole number. With
/// 0 nothing is kept.
CacheSetting cacheSetting(const QSettings& settings);

}  // namespace workstation
