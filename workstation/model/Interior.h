#pragma once
// What the parts of the facade share.

#include <memory>
#include <string>

#include "workstation/model/Host.h"

namespace workstation {

struct Workstation::Interior {
  explicit Interior(Options options) : host(std::move(options)) {
    host.setLeaving([this] { rememberDrawnStack(); });
  }

  Host host;
  std::unique_ptr<PluginHandle> plugin;  ///< goes before the host

  /// Deallocates and destroys the plug-in, leaving nothing of it with the host.
  void letGoOfPlugin();

  /// Ends what is being drawn, chooses the tool unless the left button draws with it already, and presses to draw.
  /// Answers the annotation that was begun, which may be gone by then.
  std::shared_ptr<Roi> beginDrawing(Viewer& viewer, long tool, pelmar::PixelPoint at);

  /// Runs an operation as an event.
  template <class Operation>
  auto run(Operation&& operation) {
    return host.events().run(operation);
  }

  /// See Workstation::drawnStack.
  std::optional<StackId> drawnStack(const std::string& studyUid) const;
  void rememberDrawnStack();
  /// The study of that stack is replaced by this one.
  void followDrawnStack(const Study& fresh);
  pelmar::Ref<pelmar::ROI> curve() const;

  struct Drawn {
    pelmar::Ref<pelmar::ROI> curve;
    StackId stack;
  };
  std::optional<Drawn> drawn;  ///< of the last curve whose viewer let go of it

  /// Opens a viewer as an event and answers its number. The stack must exist.
  int open(const StackId& id);

  /// The open viewer with this number; null when there is none.
  std::shared_ptr<Viewer> find(int number) const;
  static Outcome notOpen(int number);

  /// Runs an operation on an open viewer as an event, or refuses.
  template <class Operation>
  Outcome withViewer(int number, Operation&& operation) {
    return run([&]() -> Outcome {
      const auto viewer = find(number);
      if (!viewer) return notOpen(number);
      return operation(*viewer);
    });
  }

  /// Runs an operation on the open palette as an event, or refuses.
  template <class Operation>
  Outcome withPalette(Operation&& operation) {
    return run([&]() -> Outcome {
      const auto window = host.palettes().open();
      if (!window || !window->owner())
        return Outcome::refused("No palette is open: choose the plug-in's menu entry first.");
      return operation(*window);
    });
  }

  /// The same for what the person does with its controls.
  template <class Operation>
  Outcome usePalette(Operation&& operation) {
    return withPalette([&](PaletteWindow& window) -> Outcome {
      if (StudyReports* reports = host.reports()) reports->paletteEvent();
      return operation(window);
    });
  }
};

}  // namespace workstation
