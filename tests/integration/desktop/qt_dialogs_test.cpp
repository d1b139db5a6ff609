// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <iostream>
#include <sstream>

namespace orven {
namespace {

TEST(QtDialogs, WithoutADisplayTextsGoToTheOutputAndAnswersAreSafe) {
  std::ostringstream output;
  QtDialogs dialogs(HasDisplay(), output);
  EXPECT_FALSE(dialogs.Confirm("Delete Call ?", QuestionIcon::Question));
  EXPECT_EQ(dialogs.SaveAs("Save", "", "a.wav"), std::nullopt);
  EXPECT_EQ(dialogs.OpenFile("Add Sound", ""), std::nullopt);
  EXPECT_EQ(output.str(),
            "ORVEN: Delete Call ? (no display to ask on: No)\n"
            "ORVEN: Save: a.wav (no display to ask on: cancelled)\n"
            "ORVEN: Add Sound (no display to ask on: cancelled)\n");
}

TEST(QtDialogs, AConfirmationIsYesOnlyForYes) {
  QtDialogs dialogs(true, std::cerr);
  const auto answer = [&](QMessageBox::StandardButton button) {
    QTimer::singleShot(0, QApplication::instance(), [button] {  // runs once the box is open
      auto& box = dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget());
      EXPECT_EQ(box.textFormat(), Qt::PlainText) << "a caller's name is no markup";
      box.button(button) == nullptr ? void(box.close()) : box.button(button)->click();
    });
    return dialogs.Confirm("Delete <b>Call</b> ?", QuestionIcon::None);
  };
  EXPECT_TRUE(answer(QMessageBox::Yes));
  EXPECT_FALSE(answer(QMessageBox::No));
  EXPECT_FALSE(answer(QMessageBox::NoButton)) << "closed";
}

}  // namespace
}  // namespace orven
