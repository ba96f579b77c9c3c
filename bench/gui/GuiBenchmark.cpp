// What a person waits for in the window: each repaint while a vertex is dragged, and each next slice while scrolling.
// Where a limit is passed it says so and fails. Limits hold for the time that the processor was busy; on a machine that
// has nothing else to do as much time passes.

#include <QApplication>
#include <QLoggingCategory>
#include <clocale>

#include "Benchmarks.h"
#include "workstation/gui/Theme.h"

// Arguments are those of the other benchmarks: none of them is meant for this one.
int main(int, char** values) {
  char option[] = "-platform";
  char platform[] = "offscreen";
  char* arguments[] = {values[0], option, platform, nullptr};
  int count = 3;
  // The platform warns of what it lacks of a screen.
  QLoggingCategory::setFilterRules("default.warning=false");
  QApplication application(count, arguments);
  std::setlocale(LC_NUMERIC, "C");
  workstation::useTheme(application);
  const bool drags = guibench::measureDrags();
  const bool scrolling = guibench::measureScrolling();
  return drags && scrolling ? 0 : 1;
}
