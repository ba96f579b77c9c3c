#include "workstation/bundles/BundleLoader.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/TemporaryFolder.h"
#include "workstation/bundles/Manifest.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

/// A bundle's folder, written anew for each test.
class Bundles : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(folder / "Resources");
    write("manifest.json", manifest());
    write("Resources/Palette.json", R"({"title": "Palette", "size": [240, 100], "autosaveName": "Place", "controls": [
        {"kind": "choice", "label": "Region", "property": "region", "discardsLabelling": true,
         "choices": [{"title": "First", "value": 0}, {"title": "Third", "value": 2}]},
        {"kind": "checkbox", "label": "Extra", "property": "extra"},
        {"kind": "button", "label": "Done", "action": "stop:"}]})");
    useModule("good_module");
  }
  static std::string manifest(const std::string& contractVersion = "2") {
    return R"({"name": "Test", "version": "1.0", "contractVersion": )" + contractVersion +
           R"(, "module": "Test.so", "menuEntries": ["Labels", "More"]})";
  }
  void write(const fs::path& file, const std::string& content) const { std::ofstream(folder / file) << content; }
  void useModule(const std::string& name) const {
    fs::copy_file(fs::path(TEST_MODULES) / (name + ".so"), folder / "Test.so", fs::copy_options::overwrite_existing);
  }
  /// The sentence with which the bundle is refused, from the reason on; empty when it is not.
  std::string reason() {
    auto loaded = loadBundle(folder, workstation.api());
    const std::string start = "The plug-in " + folder.string() + " cannot be loaded: ";
    if (loaded || loaded.problem.rfind(start, 0) != 0) return loaded.problem;
    return loaded.problem.substr(start.size());
  }
  std::string told() {
    const pelmar::Value words = workstation.api().standardUserDefaults().objectForKey("told");
    return words.string() ? *words.string() : "";
  }
  bool moduleIsLoaded() const {
    void* handle = dlopen((folder / "Test.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
  }

  testsupport::TemporaryFolder temporary;
  fs::path folder = temporary / "Test.plugin";
  Workstation workstation;
};

TEST_F(Bundles, AGoodOneLivesFromCreationToUnloading) {
  {
    auto loaded = loadBundle(folder, workstation.api());
    ASSERT_TRUE(loaded) << loaded.problem;
    EXPECT_EQ((*loaded)->menuEntries(), (std::vector<std::string>{"Labels", "More"}));
    EXPECT_EQ(told(), "created");
    workstation.setPlugin(std::move(*loaded));
    EXPECT_TRUE(moduleIsLoaded());
    workstation.setPlugin(nullptr);
  }
  EXPECT_EQ(told(), "created, init, dealloc, destroyed");
  EXPECT_FALSE(moduleIsLoaded());
  workstation.api().defaultCenter().postNotification({"any", nullptr, std::nullopt});
  EXPECT_EQ(told(), "created, init, dealloc, destroyed");
}

TEST_F(Bundles, ItsWindowDescriptionsAreRead) {
  auto loaded = loadBundle(folder, workstation.api());
  ASSERT_TRUE(loaded) << loaded.problem;
  EXPECT_FALSE((*loaded)->windowDescription("Other").has_value());
  const auto window = (*loaded)->windowDescription("Palette");
  ASSERT_TRUE(window.has_value());
  EXPECT_EQ(window->name, "Palette");
  EXPECT_EQ(window->width, 240);
  EXPECT_EQ(window->height, 100);
  EXPECT_EQ(window->frameAutosaveName, "Place");
  ASSERT_EQ(window->controls.size(), 3u);
  EXPECT_EQ(window->controls[0].kind, WindowControl::Kind::choice);
  EXPECT_TRUE(window->controls[0].discardsLabelling);
  EXPECT_EQ(window->controls[0].choices.at(1).value, 2);
  EXPECT_EQ(window->controls[1].property, "extra");
  EXPECT_FALSE(window->controls[1].discardsLabelling);
  EXPECT_EQ(window->controls[2].action, "stop:");
}

TEST_F(Bundles, OneDeallocatedByTheHostIsNotDeallocatedAgain) {
  auto loaded = loadBundle(folder, workstation.api());
  ASSERT_TRUE(loaded);
  (*loaded)->dealloc();
  loaded.value.reset();
  EXPECT_EQ(told(), "created, dealloc, destroyed");
}

TEST_F(Bundles, AMissingFolderIsRefused) {
  folder = folder.parent_path() / "None.plugin";
  EXPECT_EQ(reason(), "there is no such folder.");
}

TEST_F(Bundles, AMissingManifestIsRefused) {
  fs::remove(folder / "manifest.json");
  EXPECT_EQ(reason(), "there is no file " + (folder / "manifest.json").string() + ".");
}

TEST_F(Bundles, AManifestThatIsNotJsonIsRefused) {
  write("manifest.json", "{\"name\": ");
  EXPECT_EQ(reason(), (folder / "manifest.json").string() + " is not valid JSON.");
}

TEST_F(Bundles, AManifestWithoutAnEntryOrWithAWrongTypeIsRefused) {
  const std::string file = (folder / "manifest.json").string();
  write("manifest.json", "[1, 2]");
  EXPECT_EQ(reason(), file + " has no \"name\".");
  write("manifest.json", R"({"name": "Test", "version": 1})");
  EXPECT_EQ(reason(), file + " has no \"version\".");
  write("manifest.json", R"({"name": "Test", "version": "1.0", "contractVersion": 2})");
  EXPECT_EQ(reason(), file + " has no \"module\".");
  write("manifest.json", R"({"name": "Test", "version": "1.0", "contractVersion": "2", "module": "Test.so"})");
  EXPECT_EQ(reason(), file + " has no number under \"contractVersion\".");
  write("manifest.json", R"({"name": "Test", "version": "1.0", "contractVersion": 2, "module": "Test.so"})");
  EXPECT_EQ(reason(), file + " lists no \"menuEntries\".");
  write("manifest.json",
        R"({"name": "Test", "version": "1", "contractVersion": 2, "module": "../Test.so", "menuEntries": ["Labels"]})");
  EXPECT_EQ(reason(), file + " names a \"module\" outside the bundle: ../Test.so.");
}

TEST_F(Bundles, AManifestForAnotherContractIsRefusedBeforeTheModuleIsTouched) {
  write("manifest.json", manifest("3"));
  fs::remove(folder / "Test.so");
  EXPECT_EQ(reason(),
            "it was made for version 3 of the host's contract, and this host has version 2; install a version of the "
            "plug-in that fits.");
}

TEST_F(Bundles, AMissingModuleIsRefused) {
  fs::remove(folder / "Test.so");
  EXPECT_EQ(reason(), "its module " + (folder / "Test.so").string() + " is missing.");
}

TEST_F(Bundles, AModuleThatIsNoneIsRefused) {
  fs::remove(folder / "Test.so");
  write("Test.so", "text");
  EXPECT_EQ(reason().rfind("its module is not one that this system can load (", 0), 0u) << reason();
}

TEST_F(Bundles, AModuleWithoutTheEntryIsRefusedAndUnloaded) {
  useModule("empty_module");
  EXPECT_EQ(reason(), "its module " + (folder / "Test.so").string() + " exports no vertana_bundle_entry.");
  EXPECT_FALSE(moduleIsLoaded());
}

TEST_F(Bundles, AModuleWhoseEntryIsNothingIsRefused) {
  useModule("null_entry_module");
  EXPECT_EQ(reason(), "the vertana_bundle_entry of its module answers nothing.");
}

TEST_F(Bundles, AModuleForAnotherContractIsRefusedBeforeAnythingElseOfItIsCalled) {
  useModule("future_module");
  EXPECT_EQ(reason(),
            "its module was made for version 99 of the host's contract, and this host has version 2; install a version "
            "of the plug-in that fits.");
  EXPECT_EQ(told(), "");
}

TEST_F(Bundles, AModuleThatCannotMakeItsObjectIsRefused) {
  useModule("failing_module");
  EXPECT_EQ(reason(), "it could not make its plug-in object.");
  EXPECT_FALSE(moduleIsLoaded());
}

TEST_F(Bundles, AModuleThatCannotDestroyItsObjectIsRefusedBeforeItMakesOne) {
  useModule("keeping_module");
  EXPECT_EQ(reason(), "its module cannot make or destroy a plug-in object.");
  EXPECT_EQ(told(), "");
}

TEST_F(Bundles, ABrokenWindowDescriptionIsRefused) {
  const std::string file = (folder / "Resources/Palette.json").string();
  write("Resources/Palette.json", "nonsense");
  EXPECT_EQ(reason(), file + " is not valid JSON.");
  write("Resources/Palette.json", R"({"title": "Palette", "controls": []})");
  EXPECT_EQ(reason(), file + " needs a \"size\" of two numbers above 0.");
  write("Resources/Palette.json", R"({"size": [1, 2], "controls": {}})");
  EXPECT_EQ(reason(), file + " needs a list of \"controls\".");
  write("Resources/Palette.json", R"({"size": [1, 2], "controls": [{"kind": "slider"}]})");
  EXPECT_EQ(reason(), file + " has a control of the unknown kind \"slider\".");
}

TEST_F(Bundles, ABundleWithoutWindowsIsGood) {
  fs::remove_all(folder / "Resources");
  EXPECT_TRUE(loadBundle(folder, workstation.api()));
}

}  // namespace
}  // namespace workstation
