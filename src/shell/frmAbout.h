// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <string>
#include <vector>

namespace orven {

/// A library that the program is made with.
struct Component {
  std::string name;
  std::string version;
  std::string licence;  ///< an SPDX identifier, or words where there is none
  std::string purpose;
};

/// The about box: what this program is, its version and licence, and what it is made with. Modal to the
/// main window only. User-interface thread.
class frmAbout : public QDialog {
  Q_OBJECT

 public:
  frmAbout(const std::string& version, const std::vector<Component>& components, QWidget* parent);

 private:
  QWidget* MakeHead(const std::string& version);
  QWidget* MakeComponents(const std::vector<Component>& components);
  QWidget* MakeLicence();
};

}  // namespace orven
