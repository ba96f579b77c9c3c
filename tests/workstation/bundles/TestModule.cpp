// A plug-in that says through the host's user defaults what is done with it.
#include "host/Bundle.h"

#ifndef MODULE_CONTRACT
#define MODULE_CONTRACT pelmar::contractVersion
#endif

#ifndef MODULE_ENTRY
#define MODULE_ENTRY &entry
#endif

#ifndef MODULE_DESTROY
#define MODULE_DESTROY &destroy
#endif

#ifndef MODULE_WITHOUT_ENTRY
namespace {

class TestFilter final : public pelmar::PluginFilter {
 public:
  explicit TestFilter(pelmar::PelmarAPI& host) : PluginFilter(host) { tell("created"); }
  ~TestFilter() override { tell("destroyed"); }
  void initPlugin() override {
    tell("init");
    // Left behind on purpose: the host must not keep code of a module that is unloaded.
    api().defaultCenter().addObserver(this, "any", nullptr, [this](const pelmar::Notification&) { tell("heard"); });
  }
  long filterImage(const std::string& menuName) override {
    tell("menu " + menuName);
    return 0;
  }
  void dealloc() override { tell("dealloc"); }

 private:
  void tell(const std::string& word) {
    auto& defaults = api().standardUserDefaults();
    const pelmar::Value before = defaults.objectForKey("told");
    defaults.setObject(before.string() ? *before.string() + ", " + word : word, "told");
  }
};

pelmar::PluginFilter* create([[maybe_unused]] pelmar::PelmarAPI* api) {
#ifdef MODULE_CREATE_FAILS
  return nullptr;
#else
  return new TestFilter(*api);
#endif
}

[[maybe_unused]] void destroy(pelmar::PluginFilter* filter) { delete filter; }

}  // namespace

extern "C" __attribute__((visibility("default"))) const pelmar::VertanaBundleEntry* vertana_bundle_entry() {
  [[maybe_unused]] static constexpr pelmar::VertanaBundleEntry entry{MODULE_CONTRACT, "1.0", &create, MODULE_DESTROY};
  return MODULE_ENTRY;
}
#endif
