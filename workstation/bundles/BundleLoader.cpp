#include "workstation/bundles/BundleLoader.h"

#include <dlfcn.h>

#include <algorithm>
#include <utility>

#include "host/Bundle.h"
#include "workstation/bundles/Manifest.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;
using Loaded = Result<std::unique_ptr<PluginHandle>>;

/// A module in memory, unloaded at the end.
class Module {
 public:
  explicit Module(const fs::path& file) : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {}
  Module(Module&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Module& operator=(Module&&) = delete;
  ~Module() {
    if (handle_) dlclose(handle_);
  }

  explicit operator bool() const { return handle_ != nullptr; }
  void* symbol(const char* name) const { return dlsym(handle_, name); }

 private:
  void* handle_;
};

class LoadedBundle final : public PluginHandle {
 public:
  LoadedBundle(Module module, const pelmar::VertanaBundleEntry& entry, pelmar::PluginFilter& filter, Manifest manifest,
               std::vector<WindowDescription> windows)
      : module_(std::move(module)),
        destroy_(entry.destroy),
        filter_(filter),
        manifest_(std::move(manifest)),
        windows_(std::move(windows)) {}
  LoadedBundle(const LoadedBundle&) = delete;
  LoadedBundle& operator=(const LoadedBundle&) = delete;
  ~LoadedBundle() override {
    LoadedBundle::dealloc();
    destroy_(&filter_);
  }

  pelmar::PluginFilter& filter() override { return filter_; }
  void dealloc() override {
    if (!std::exchange(deallocated_, true)) filter_.dealloc();
  }
  const std::vector<std::string>& menuEntries() const override { return manifest_.menuEntries; }
  std::optional<WindowDescription> windowDescription(std::string_view name) const override {
    const auto found = std::find_if(windows_.begin(), windows_.end(),
                                    [&](const WindowDescription& window) { return window.name == name; });
    return found == windows_.end() ? std::nullopt : std::optional(*found);
  }

 private:
  Module module_;  // goes last
  void (*destroy_)(pelmar::PluginFilter*);
  pelmar::PluginFilter& filter_;
  Manifest manifest_;
  std::vector<WindowDescription> windows_;
  bool deallocated_ = false;
};

Loaded refused(const fs::path& bundle, const std::string& reason) {
  return Loaded::refused("The plug-in " + bundle.string() + " cannot be loaded: " + reason + ".");
}

std::string wrongContract(const std::string& what, int version) {
  return what + " was made for version " + std::to_string(version) + " of the host's contract, and this host has " +
         "version " + std::to_string(pelmar::contractVersion) + "; install a version of the plug-in that fits";
}

/// The reason that the system gave for the last failure, without a full stop.
std::string systemReason() {
  const char* reason = dlerror();
  return reason ? reason : "the system gives no reason";
}

}  // namespace

Loaded loadBundle(const fs::path& bundle, pelmar::PelmarAPI& api) {
  std::error_code error;
  if (!fs::is_directory(bundle, error)) return refused(bundle, "there is no such folder");
  auto manifest = readManifest(bundle);
  if (!manifest) return Loaded::refused(manifest.problem);
  if (manifest->contractVersion != pelmar::contractVersion) {
    return refused(bundle, wrongContract("it", manifest->contractVersion));
  }
  auto windows = readWindowDescriptions(bundle);
  if (!windows) return Loaded::refused(windows.problem);

  const fs::path file = fs::absolute(bundle / manifest->module, error);
  if (!fs::is_regular_file(file, error)) return refused(bundle, "its module " + file.string() + " is missing");
  Module module(file);
  if (!module) return refused(bundle, "its module is not one that this system can load (" + systemReason() + ")");
  const auto find = reinterpret_cast<pelmar::VertanaBundleEntryFunction>(module.symbol("vertana_bundle_entry"));
  if (!find) return refused(bundle, "its module " + file.string() + " exports no vertana_bundle_entry");
  const pelmar::VertanaBundleEntry* entry = find();
  if (!entry) return refused(bundle, "the vertana_bundle_entry of its module answers nothing");
  if (entry->contractVersion != pelmar::contractVersion) {
    return refused(bundle, wrongContract("its module", entry->contractVersion));
  }
  if (!entry->create || !entry->destroy) return refused(bundle, "its module cannot make or destroy a plug-in object");
  pelmar::PluginFilter* filter = entry->create(&api);
  if (!filter) return refused(bundle, "it could not make its plug-in object");
  return Loaded::of(std::make_unique<LoadedBundle>(std::move(module), *entry, *filter, *std::move(manifest.value),
                                                   *std::move(windows.value)));
}

}  // namespace workstation
