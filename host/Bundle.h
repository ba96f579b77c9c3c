#pragma once
// The C entry of a plug-in bundle. A bundle is a folder NAME.plugin with manifest.json (name, version, the module's
// file name, the contract's version, menu entries), the module, and the window descriptions that the plug-in names.
//
// Sequence: look up vertana_bundle_entry; call it; check contractVersion before anything else is touched; create;
// initPlugin; filterImage ...; dealloc; destroy; close the module.

#include "host/PluginFilter.h"

namespace pelmar {

/// Raised with every change of the contract's classes.
inline constexpr int contractVersion = 2;

extern "C" {
struct VertanaBundleEntry {
  int contractVersion;                                  ///< the contract that the module was built against
  const char* version;                                  ///< the plug-in's own version
  pelmar::PluginFilter* (*create)(pelmar::PelmarAPI*);  ///< null when it cannot be made; never throws
  void (*destroy)(pelmar::PluginFilter*);               ///< null argument: nothing; never throws
};
/// The one exported symbol: `extern "C" const VertanaBundleEntry* vertana_bundle_entry()`.
using VertanaBundleEntryFunction = const VertanaBundleEntry* (*)();
}

}  // namespace pelmar
