// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QTimer>
#include <functional>
#include <iostream>
#include <sstream>

namespace orven {
namespace {

/// Plays the person: waits until a box is open, hands it to `act`, which closes it.
class Person {
 public:
  explicit Person(std::function<void(QWidget&)> act) : act_(std::move(act)) {
    QObject::connect(&look_, &QTimer::timeout, &look_, [this] {
      QWidget* const box = QApplication::activeModalWidget();
      if (box == nullptr) return;
      look_.stop();
      act_(*box);
    });
    look_.start(std::chrono::milliseconds(1));
  }

 private:
  QTimer look_;
  std::function<void(QWidget&)> act_;
};

TEST(QtDialogs, WithoutADisplayTextsGoToTheOutputAndAnswersAreSafe) {
  std::ostringstream output;
  QtDialogs dialogs(HasDisplay(), output);
  dialogs.Message("ORVEN is still running");
  dialogs.Information("Select Modem Device");
  EXPECT_FALSE(dialogs.Confirm("Delete Call ?"));
  EXPECT_EQ(dialogs.SaveAs("Save", std::string("wav (*.wav)\0*.wav\0", 18), "a.wav"), std::nullopt);
  EXPECT_EQ(output.str(),
            "ORVEN: ORVEN is still running\nORVEN: Select Modem Device\n"
            "ORVEN: Delete Call ? (no display to ask on: No)\n"
            "ORVEN: Save: a.wav (no display to ask on: cancelled)\n");
}

TEST(QtDialogs, AConfirmationIsYesOnlyForYes) {
  QtDialogs dialogs(true, std::cerr);
  const auto answer = [&](QMessageBox::StandardButton button) {
    const Person person([&](QWidget& box) { dynamic_cast<QMessageBox&>(box).button(button)->click(); });
    return dialogs.Confirm("Delete Call ?");
  };
  EXPECT_TRUE(answer(QMessageBox::Yes));
  EXPECT_FALSE(answer(QMessageBox::No));
  const Person person([](QWidget& box) { box.close(); });
  EXPECT_FALSE(dialogs.Confirm("Delete Call ?"));
}

TEST(QtDialogs, ShowsTheTextAsItIsInTheStyleAskedFor) {
  QtDialogs dialogs(true, std::cerr);
  QString text;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  const auto look = [&](QWidget& widget) {
    auto& box = dynamic_cast<QMessageBox&>(widget);
    text = box.textFormat() == Qt::PlainText ? box.text() : "not plain";
    icon = box.icon();
    box.accept();
  };
  {
    const Person person(look);
    dialogs.Information("<b>Bold</b>");
  }
  EXPECT_EQ(text, "<b>Bold</b>");
  EXPECT_EQ(icon, QMessageBox::Information);
  const Person person(look);
  dialogs.Message("plain");
  EXPECT_EQ(text, "plain");
  EXPECT_EQ(icon, QMessageBox::NoIcon);
}

TEST(QtDialogs, SaveAsGivesTheChosenPathOrNothing) {
  QtDialogs dialogs(true, std::cerr);
  const std::string filter("wav (*.wav)\0*.wav\0", 18);
  const auto save = [&](bool accept) {
    const Person person([&](QWidget& box) {
      auto& dialog = dynamic_cast<QFileDialog&>(box);
      EXPECT_EQ(dialog.nameFilters(), QStringList("wav (*.wav)"));
      QDialog& base = dialog;  // where both are public
      accept ? base.accept() : base.reject();
    });
    return dialogs.SaveAs("Save", filter, "/nowhere-at-all/a.wav");
  };
  const auto chosen = save(true);
  ASSERT_TRUE(chosen.has_value());
  EXPECT_TRUE(QString::fromStdString(*chosen).endsWith("a.wav")) << *chosen;
  EXPECT_EQ(save(false), std::nullopt);
}

TEST(QtDialogs, TurnsFiltersIntoQtsForm) {
  EXPECT_EQ(QtFileFilter(std::string("wav (*.wav)\0*.wav\0", 18)), "wav (*.wav)");
  EXPECT_EQ(QtFileFilter(std::string("Programs\0*.exe;*.com\0All\0*.*\0", 29)),
            "Programs (*.exe *.com);;All (*.*)");
  EXPECT_EQ(QtFileFilter(""), "");
}

}  // namespace
}  // namespace orven
