#include <QApplication>
#include <clocale>

#include "tests/support/Offscreen.h"
#include "workstation/gui/Theme.h"

namespace {

[[maybe_unused]] const auto* registeredWidgets =
    testing::AddGlobalTestEnvironment(new testsupport::Offscreen<QApplication>([](QApplication& application) {
      std::setlocale(LC_NUMERIC, "C");
      workstation::useTheme(application);
    }));

}  // namespace
