// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <QVBoxLayout>

#include "shell/frmGuideKey.h"
#include "widgets/controls.h"
#include "widgets/icons.h"
#include "widgets/window_placement.h"

namespace orven {
namespace {

constexpr QSize kLeastSize{560, 360};
constexpr QSize kFirstSize{900, 560};
constexpr int kToolbarIcon = 24;

/// Holds the list, and what is shown while it is empty: beside it, because a screen reader finds only rows in
/// a list.
class ListPlace : public QWidget {
 public:
  ListPlace(CallListWidget& list, QWidget* parent) : QWidget(parent), list_(list) {
    list_.setParent(this);
    list_.Empty().setParent(this);
  }

 protected:
  void resizeEvent(QResizeEvent* /*event*/) override { list_.resize(size()); }

 private:
  CallListWidget& list_;
};

}  // namespace

frmMain::frmMain()
    : Toolbar1_(MakeChild<ButtonBar>(QStringLiteral("Toolbar1"), tr("Calls and settings"), this)),
      TBQuickOption_(MakeChild<QuickOptionBar>(this)),
      ListView1_(MakeChild<CallListWidget>(this)),
      player_(MakeChild<PlayerPanel>(this)),
      StatusBar1_(MakeChild<MainStatusBar>(this)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(tr("ORVEN"));
  setWindowIcon(ProgramIcon());
  UseIconTheme(palette());
  AddToolbar1();
  LayOut();
  menus_ = MakeChild<MainMenus>(*this, *ListView1_);
  SetTabOrder();
  ShowLine(false, false);
}

void frmMain::AddToolbar1() {
  auto& bar = *Toolbar1_;
  bar.setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  bar.setIconSize({kToolbarIcon, kToolbarIcon});
  auto* on_off = bar.AddButton({"OnOff", tr("Off"), tr("Modem Status"), "call-stop"});
  on_off->defaultAction()->setCheckable(true);
  on_off->setAccessibleName(tr("Answering"));  // the checked state is announced in addition
  bar.addSeparator();
  bar.AddButton({"Back", tr("Back"), tr("Back  Message"), "go-previous"});
  bar.AddButton({"Next", tr("Next"), tr("Next Message"), "go-next"});
  bar.addSeparator();
  bar.AddButton({"Save", tr("Save"), tr("Save Message As"), "document-save-as"});
  bar.AddButton({"Delete", tr("Delete"), tr("Delete Message"), "edit-delete"});
  bar.AddButton({"Clear", tr("   Clear   "), tr("Clear Calls List"), "edit-clear-all"});
  bar.addSeparator();
  bar.AddButton({"Log", tr("Log"), tr("Log"), "view-list-text"});
  bar.AddButton({"Events", tr("Events"), tr("Set Events"), "notifications"});
  bar.AddButton({"Actions", tr("Actions"), tr("Set Actions"), "run-build"});
  bar.AddButton({"Options", tr("Options"), tr("Options"), "configure"});
}

void frmMain::LayOut() {
  addToolBar(Toolbar1_);
  addToolBarBreak();
  addToolBar(TBQuickOption_);
  auto* middle = MakeChild<QWidget>(this);
  auto* column = MakeChild<QVBoxLayout>(middle);
  column->addWidget(MakeChild<ListPlace>(*ListView1_, middle), 1);
  column->addWidget(player_);
  setCentralWidget(middle);
  setStatusBar(StatusBar1_);

  setMinimumSize(kLeastSize);
  resize(kFirstSize);
  if (const auto* screen = QGuiApplication::primaryScreen()) {
    const auto usable = screen->availableGeometry();
    resize(kFirstSize.boundedTo(usable.size() - kWindowFrame));
    move(usable.center() - rect().center());
  }
  ListView1_->setFocus();
}

void frmMain::SetTabOrder() {
  QList<QWidget*> order{ListView1_};
  order << ListView1_->Empty().findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  order << QList<QWidget*>{player_->ToolBarPlayer().Find("Play"), player_->ToolBarPlayer().Find("Stop"),
                           &player_->Slider1()};
  for (const char* name : {"cmbDefGreet", "TBQuickOption.Play", "TBQuickOption.Stop", "TBQuickOption.Add",
                           "TBQuickOption.Delete", "cmbRings", "chkRecMessage"}) {
    order << TBQuickOption_->findChild<QWidget*>(QString::fromLatin1(name));
  }
  order << &StatusBar1_->UseLine() << &StatusBar1_->Mail() << &StatusBar1_->Check1();
  for (auto* action : Toolbar1_->actions()) {
    if (!action->isSeparator()) order << Toolbar1_->widgetForAction(action);
  }
  for (qsizetype i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

void frmMain::Attach(MainWindow& engine) {
  engine_ = &engine;
  AttachToolbars();
  AttachList();
  AttachPlayer();
  AttachQuickOptions();
  menus_->Attach(engine, *Toolbar1_, player_->ToolBarPlayer());
  MakeChild<GuideKey>(engine.Commands(), this);
  connect(&StatusBar1_->UseLine(), &QPushButton::clicked, this,
          [this] { engine_->Machine().line.UseChosen(); });
  connect(&StatusBar1_->Mail(), &QToolButton::clicked, this,
          [this] { engine_->Commands().OpenDialog(Dialog::frmActions); });
  connect(&StatusBar1_->Check1(), &QCheckBox::clicked, this, [this] { engine_->ChangeGridLines(); });
}

void frmMain::AttachToolbars() {
  connect(Toolbar1_, &ButtonBar::ButtonClick, this, [this](const QString& key, bool down) {
    engine_->Commands().Toolbar1_ButtonClick(key.toStdString(), down);
    Toolbar1_->Find("OnOff")->defaultAction()->setChecked(
        line_on_);  // the button shows the line's state, not what was clicked
  });
}

/// Disables the list's commands while the list is empty.
void frmMain::OfferListCommands() {
  const bool any = ListView1_->model()->rowCount() > 0;
  for (const char* key : {"Save", "Delete", "Clear"}) Toolbar1_->Find(key)->defaultAction()->setEnabled(any);
  player_->ToolBarPlayer().Find("Play")->defaultAction()->setEnabled(any);
}

void frmMain::AttachList() {
  const auto* model = ListView1_->model();
  connect(model, &QAbstractItemModel::modelReset, this, &frmMain::OfferListCommands);
  connect(model, &QAbstractItemModel::rowsInserted, this, &frmMain::OfferListCommands);
  connect(model, &QAbstractItemModel::rowsRemoved, this, &frmMain::OfferListCommands);
  OfferListCommands();
  auto& commands = engine_->Machine().list_commands;
  ListView1_->SetSource([this](std::int32_t index) { return engine_->Machine().ListView1.Row(index); });
  connect(ListView1_, &CallListWidget::Selected, this,
          [&commands](int row) { commands.ListView1_Selected(row); });
  connect(ListView1_, &CallListWidget::MouseDown, this, [&commands] { commands.ListView1_MouseDown(); });
  connect(ListView1_, &CallListWidget::clicked, this,
          [&commands](const QModelIndex& index) { commands.ListView1_Click(index.row() + 1); });
  connect(ListView1_, &CallListWidget::DoubleClicked, this, [&commands] { commands.ListView1_DblClick(); });
  connect(&ListView1_->Empty(), &EmptyCallList::SetupWanted, this, [this](SetupPage page) {
    engine_->Commands().OpenDialog(Dialog::frmSetup, static_cast<int>(page));
  });
  connect(ListView1_, &CallListWidget::MenuWanted, this, [&commands] { commands.PopUpMenu(); });
  connect(ListView1_, &CallListWidget::MenuOpens, this,
          [this](bool message) { menus_->RightClick(message).popup(ListView1_->MenuPosition()); });
}

void frmMain::AttachPlayer() {
  connect(&player_->ToolBarPlayer(), &ButtonBar::ButtonClick, this,
          [this](const QString& key) { engine_->Commands().ToolBarPlayer_ButtonClick(key.toStdString()); });
  auto& player = engine_->Machine().player;
  connect(&player_->Slider1(), &SeekSlider::Sought, this, [&player](int value) { player.SeekTo(value); });
  connect(&player_->Picture(), &WaveformWidget::Sought, this,
          [&player](double part) { player.SeekToPart(part); });
}

void frmMain::AttachQuickOptions() {
  connect(TBQuickOption_, &ButtonBar::ButtonClick, this,
          [this](const QString& key) { engine_->Commands().TBQuickOption_ButtonClick(key.toStdString()); });
  auto& options = engine_->Machine().quick_options;
  connect(TBQuickOption_, &QuickOptionBar::GreetingChosen, this,
          [&options](const QString& name) { options.SetGreeting(name.toStdString()); });
  connect(TBQuickOption_, &QuickOptionBar::RingsChosen, this,
          [&options](const QString& text) { options.SetRings(text.toStdString()); });
  connect(TBQuickOption_, &QuickOptionBar::RecordMessageChosen, this,
          [&options](bool on) { options.SetRecordMessage(on); });
}

void frmMain::closeEvent(QCloseEvent* event) {
  event->setAccepted(engine_ == nullptr || engine_->Ended() || engine_->Unload());
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  TellSight();
}

void frmMain::hideEvent(QHideEvent* event) {
  QMainWindow::hideEvent(event);
  TellSight();
}

void frmMain::TellSight() {
  if (engine_ != nullptr) engine_->SightChanged(isVisible() && !isMinimized());
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) UseIconTheme(palette());
  if (event->type() == QEvent::ActivationChange && engine_ != nullptr) engine_->ActivationChanged();
  if (event->type() != QEvent::WindowStateChange) return;
  TellSight();
  const bool came_back = minimised_ && !isMinimized();
  minimised_ = isMinimized();
  if (came_back && engine_ != nullptr) engine_->CameBack();
}

}  // namespace orven
