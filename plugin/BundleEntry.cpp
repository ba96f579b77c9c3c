// The bundle's one exported symbol.
#include "host/Bundle.h"
#include "plugin/VertanaFilter.h"

namespace {

pelmar::PluginFilter* create(pelmar::PelmarAPI* api) {
  if (!api) return nullptr;
  try {
    return new vertana::VertanaFilter(*api);
  } catch (...) {
    return nullptr;
  }
}

void destroy(pelmar::PluginFilter* filter) { delete filter; }

}  // namespace

extern "C" __attribute__((visibility("default"))) const pelmar::VertanaBundleEntry* vertana_bundle_entry() {
  static constexpr pelmar::VertanaBundleEntry entry{pelmar::contractVersion, VERTANA_VERSION, &create, &destroy};
  return &entry;
}
