// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

#include "shell/frmAbout.h"

namespace orven::test {
namespace {

TEST(AboutBox, TellsVersionLibrariesAndTheWholeLicence) {
  frmAbout window("1.2.3", {{"a library", "4.5", "MIT", "sound"}, {"another", "6", "curl", "mail"}}, nullptr);
  window.show();
  EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("lblVersion"))->text(), u"Version 1.2.3");
  const auto& list = *window.findChild<QTreeWidget*>(QStringLiteral("lstComponents"));
  ASSERT_EQ(list.topLevelItemCount(), 2);
  EXPECT_EQ(list.topLevelItem(0)->text(1) + list.topLevelItem(1)->text(2), u"4.5curl");
  const auto licence = window.findChild<QPlainTextEdit*>(QStringLiteral("txtLicence"))->toPlainText();
  EXPECT_TRUE(licence.contains(u"GNU GENERAL PUBLIC LICENSE"));
  EXPECT_TRUE(licence.contains(u"END OF TERMS AND CONDITIONS"));
  window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->click();
  EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace orven::test
