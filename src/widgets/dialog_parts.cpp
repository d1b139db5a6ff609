// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/dialog_parts.h"

#include "widgets/controls.h"
#include "widgets/icons.h"

namespace orven {

void SetUpDialog(QDialog& dialog, const char* name, const QString& title) {
  dialog.setObjectName(QString::fromLatin1(name));
  dialog.setWindowTitle(title);
  dialog.setWindowIcon(ProgramIcon());
  dialog.setWindowModality(Qt::WindowModal);
}

QPushButton* MakeButton(const char* name, const QString& caption, const QString& tip, QWidget* parent,
                        const char* icon) {
  auto* button = MakeNamed<QPushButton>(name, caption, parent);
  button->setToolTip(tip);
  if (icon != nullptr) button->setIcon(ThemeIcon(icon));
  return button;
}

ClosingButtons MakeClosingButtons(QDialog& dialog) {
  const ClosingButtons buttons{MakeChild<QHBoxLayout>(), MakeButton("cmdOK", QObject::tr("OK"), {}, &dialog),
                               MakeButton("cmdCancel", QObject::tr("Cancel"), {}, &dialog)};
  buttons.cmdOK->setDefault(true);
  buttons.row->addStretch();
  buttons.row->addWidget(buttons.cmdOK);
  buttons.row->addWidget(buttons.cmdCancel);
  QObject::connect(buttons.cmdCancel, &QPushButton::clicked, &dialog, &QDialog::reject);
  return buttons;
}

}  // namespace orven
