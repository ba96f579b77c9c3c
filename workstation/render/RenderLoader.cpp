#include "workstation/render/RenderLoader.h"

#include <dlfcn.h>

#include <string>

namespace workstation {
namespace {

namespace fs = std::filesystem;
using Loaded = Result<std::shared_ptr<const RenderModule>>;

Loaded refused(const fs::path& file, const std::string& reason) {
  return Loaded::refused("Pictures cannot be painted: " + file.string() + " " + reason + ".");
}

}  // namespace

Loaded loadRenderModule(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {
    return refused(file, "is missing; install the workstation's painting module there");
  }
  // Never closed: what it links cannot be unloaded.
  void* handle = dlopen(fs::absolute(file, error).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* reason = dlerror();
    return refused(file, std::string("cannot be loaded (") + (reason ? reason : "the system gives no reason") + ")");
  }
  const auto find = reinterpret_cast<RenderModuleFunction>(dlsym(handle, "vertana_render_module"));
  if (!find) return refused(file, "exports no vertana_render_module");
  const RenderModule* module = find();
  if (!module || module->version != renderModuleVersion || !module->renderPicture || !module->finish) {
    return refused(file, "belongs to another version of the program; install both together");
  }
  return Loaded::of(std::shared_ptr<const RenderModule>(module, [](const RenderModule* loaded) { loaded->finish(); }));
}

Outcome renderViewer(const RenderModule& module, const Workstation& workstation, int viewer, PixelSource& source,
                     const fs::path& pngFile, const PictureOptions& what, const RenderOptions& how, double width,
                     double height) {
  auto picture = pictureOf(workstation, viewer, what);
  if (!picture) return Outcome::refused("There is no open viewer with the number " + std::to_string(viewer) + ".");
  if (width > 0 && height > 0) resize(*picture, width, height);
  std::string problem;
  if (!module.renderPicture(*picture, source, how, pngFile.c_str(), problem)) return Outcome::refused(problem);
  return Outcome::done();
}

}  // namespace workstation
