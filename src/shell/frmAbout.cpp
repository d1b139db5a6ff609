// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmAbout.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/icons.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr int kIconSize = 72;
constexpr QSize kSize(640, 480);  // wide enough for the 80 columns of the licence

QLabel* Text(const char* name, const QString& text, QWidget* parent) {
  auto* label = MakeText(name, parent, text);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

/// The whole text, as distributed with the program.
QString LicenceText() {
  QFile file(QStringLiteral(":/icons/LICENSE"));
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

frmAbout::frmAbout(const std::string& version, const std::vector<Component>& components, QWidget* parent)
    : QDialog(parent) {
  SetUpDialog(*this, "frmAbout", tr("About ORVEN"));
  auto* tabs = MakeNamed<QTabWidget>("TabStrip1", this);
  tabs->addTab(MakeComponents(components), tr("Made with"));
  tabs->addTab(MakeLicence(), tr("Licence"));
  auto* buttons = MakeChild<QDialogButtonBox>(this);
  auto* ok = buttons->addButton(tr("OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("cmdOK"));
  ok->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(MakeHead(version));
  column->addWidget(tabs, 1);
  column->addWidget(buttons);
  resize(kSize);
}

QWidget* frmAbout::MakeHead(const std::string& version) {
  auto* head = MakeChild<QWidget>(this);
  auto* picture = MakeChild<QLabel>(head);
  picture->setPixmap(ProgramIcon().pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
  auto* title = Text("lblTitle", tr("ORVEN"), head);
  auto large = title->font();
  large.setPointSizeF(large.pointSizeF() * 1.8);
  large.setBold(true);
  title->setFont(large);
  auto* texts = MakeChild<QVBoxLayout>();
  texts->addWidget(title);
  texts->addWidget(Text("lblVersion", tr("Version %1").arg(QString::fromStdString(version)), head));
  texts->addWidget(Text("lblWhat",
                        tr("A telephone answering machine: it answers the line, plays a greeting, records "
                           "the message and reports the call."),
                        head));
  texts->addWidget(Text("lblLicence",
                        tr("Free software under the GNU General Public License, version 3 or later "
                           "(GPL-3.0-or-later). It comes without any warranty."),
                        head));
  auto* row = MakeFlat<QHBoxLayout>(head);
  row->addWidget(picture, 0, Qt::AlignTop);
  row->addLayout(texts, 1);
  return head;
}

QWidget* frmAbout::MakeComponents(const std::vector<Component>& components) {
  auto* list = MakeNamed<QTreeWidget>("lstComponents", this);
  list->setAccessibleName(tr("Libraries"));
  list->setRootIsDecorated(false);
  list->setHeaderLabels({tr("Library"), tr("Version"), tr("Licence"), tr("For")});
  for (const auto& component : components) {
    list->addTopLevelItem(MakeChild<QTreeWidgetItem>(
        QStringList{QString::fromStdString(component.name), QString::fromStdString(component.version),
                    QString::fromStdString(component.licence), Shown(component.purpose)}));
  }
  list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  return list;
}

QWidget* frmAbout::MakeLicence() {
  auto* text = MakeNamed<QPlainTextEdit>("txtLicence", LicenceText(), this);
  text->setAccessibleName(tr("Licence"));
  text->setReadOnly(true);
  text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  return text;
}

}  // namespace orven
