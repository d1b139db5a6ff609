// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application.h"

#include <gtest/gtest.h>

namespace orven {
namespace {

/// Every test of this program runs inside the application that the program itself would make where
/// there is no display.
class ApplicationEnvironment : public ::testing::Environment {
  void SetUp() override {
    for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) qunsetenv(variable);
    application_ = MakeApplication(argc_, argv_.data());
  }
  void TearDown() override { application_.reset(); }

  std::string name_ = "orven_desktop_tests";
  int argc_ = 1;
  std::array<char*, 2> argv_ = {name_.data(), nullptr};
  std::unique_ptr<QApplication> application_;
};

const auto* const g_environment =
    ::testing::AddGlobalTestEnvironment(std::make_unique<ApplicationEnvironment>().release());

TEST(Application, StartsWithoutADisplay) {
  EXPECT_EQ(QGuiApplication::platformName(), "offscreen");
  EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
}

}  // namespace
}  // namespace orven
