// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "base/words.h"

namespace orven {

/// A library that the program uses.
struct Component {
  std::string name;
  std::string version;
  std::string licence;  ///< an SPDX identifier, or words where there is none
  Words purpose;
};

/// The about box: the program's purpose, version and licence, and the libraries it uses. Modal to the main
/// window only. User-interface thread.
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
