// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>

#include "setup/frmSetupAway.h"
#include "setup/frmSetupGreeting.h"
#include "setup/frmSetupReady.h"
#include "setup/frmSetupTelephone.h"
#include "setup/setup_assistant.h"

namespace orven {

/// The set-up assistant: one page at a time above Back, Skip, Next and Close. Return is Next. The engine
/// decides. User-interface thread.
class frmSetup : public QDialog, public SetupView {
  Q_OBJECT

 public:
  explicit frmSetup(QWidget* parent);

  /// Connects the controls; once, before the window is shown. The engine outlives the visible window.
  void Attach(SetupAssistant& engine);

  void ShowPage(SetupPage page) noexcept override;
  void ShowTelephone(TelephoneKind kind, const TelephoneLine& line, const Words& note) noexcept override;
  TelephoneLine Typed(TelephoneLine line) const noexcept override;
  void ShowTesting(bool testing) noexcept override;
  void ShowFound(const LineTestResult& found, bool usable) noexcept override;
  void ShowGreeting(const std::string& name) noexcept override;
  void ShowAway(const Choices& choices) noexcept override;
  Choices Away() const noexcept override;
  void ShowWrong(const SettingRow& row) noexcept override;
  void ShowLine(const Words& state, const Words& dial) noexcept override;
  void ShowOwnCall(const OwnCall& call, const Words& obstacle) noexcept override;

 private:
  QWidget* MakePages();
  QWidget* MakeFound();
  QLayout* MakeButtons();
  void More();

  SetupAssistant* engine_ = nullptr;
  QLabel* lblPage_;
  QStackedWidget* pages_ = nullptr;
  frmSetupTelephone* telephone_ = nullptr;
  frmSetupGreeting* greeting_ = nullptr;
  frmSetupAway* away_ = nullptr;
  frmSetupReady* ready_ = nullptr;
  QLabel* icon_ = nullptr;
  QLabel* lblFound_ = nullptr;
  QPushButton* cmdUseAnyway_ = nullptr;
  QPushButton* cmdBack_ = nullptr;
  QPushButton* cmdSkip_ = nullptr;
  QPushButton* cmdNext_ = nullptr;
  QPushButton* cmdClose_ = nullptr;
};

}  // namespace orven
