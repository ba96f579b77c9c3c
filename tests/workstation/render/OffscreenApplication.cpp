#include <QGuiApplication>

#include "tests/support/Offscreen.h"

namespace {

[[maybe_unused]] const auto* registered =
    testing::AddGlobalTestEnvironment(new testsupport::Offscreen<QGuiApplication>);

}  // namespace
