// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <functional>
#include <vector>

#include "options/frmOptionsParts.h"
#include "options/options_dialog.h"
#include "widgets/settings_form.h"

namespace orven {

/// The options dialog. It shows what the engine loads and passes on the user's input. Most of its controls
/// are made of the settings' rows; the object name of another is its member name. Modal to the main window
/// only, so that calls continue. It cannot be closed while messages are being moved. User-interface thread.
class frmOptions : public QDialog, private OptionsView {
  Q_OBJECT

 public:
  struct Parts {
    OptionsDialog& engine;      ///< outlives the dialog
    GreetingPlayer& greetings;  ///< outlives the dialog
    /// Opens the telephone lines and returns the name of a line that was added, or nothing; may be empty.
    std::function<std::string()> open_lines;
  };

  /// Opens on the tab with this 0-based index: General, Devices, Answer Mode, Advanced.
  frmOptions(Parts parts, int tab, QWidget* parent);
  ~frmOptions() override;
  frmOptions(const frmOptions&) = delete;
  frmOptions& operator=(const frmOptions&) = delete;

  /// Does nothing while messages are being moved.
  void reject() override;

 private:
  /// Adds a tab whose rows `fill` makes; they stay at its top.
  void AddPage(const char* name, const QString& title, void (frmOptions::*fill)(QFormLayout&));
  void FillGeneral(QFormLayout& form);
  void FillDevices(QFormLayout& form);
  void FillAnswerMode(QFormLayout& form);
  void FillAdvanced(QFormLayout& form);
  QWidget* MakeMessagesFolder();
  QWidget* MakeCapabilities();
  QWidget* MakeSilence();
  QWidget* MakeSilenceLevel();
  QWidget* MakeRemoteAccess();

  void Connect();
  void Fill();
  void Show();
  Choices Taken() const;
  void ShowCapabilities();
  void OpenLines();
  void Ok();

  void ShowLevel(std::optional<std::int32_t> level) noexcept override;
  void ShowSoundCards(const std::vector<Words>& names) noexcept override;
  void ShowMessagesPath(const std::string& path,
                        const std::optional<RelocationProgress>& moving) noexcept override;

  Parts parts_;
  SettingsForm form_;
  QTabWidget* TabStrip1_;

  QCheckBox* chkRenOnStart_ = nullptr;
  QLineEdit* txtMassagesPath_ = nullptr;
  QPushButton* cmdBrowsMessagesPath_ = nullptr;
  QLabel* moving_ = nullptr;

  QComboBox* cmbModemDev_ = nullptr;
  QLabel* no_device_ = nullptr;
  std::vector<QLabel*> capabilities_;  ///< the values, in the engine's order

  frmOptionsGreetings* greetings_ = nullptr;

  QSlider* sldSilence_ = nullptr;
  QLabel* silence_ = nullptr;
  SilenceMeter* meter_ = nullptr;
  QLabel* meter_text_ = nullptr;

  QPushButton* cmdOK_ = nullptr;
  QPushButton* cmdCancel_ = nullptr;
};

}  // namespace orven
