// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainCallList.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>

#include "widgets/controls.h"
#include "widgets/window_placement.h"

namespace orven {
namespace {

constexpr std::uint32_t kGridLines = 0x1;       // LVS_EX_GRIDLINES
constexpr std::uint32_t kFullRowSelect = 0x20;  // LVS_EX_FULLROWSELECT

/// The stored column widths assume a font whose average character is this wide, in pixels.
constexpr int kStoredCharacterWidth = 5;

constexpr int kLeastColumn = 60;  // pixels, for the column that takes what is left
constexpr int kRowPadding = 10;

/// The length of a recording of 15 minutes, as the column shows it.
constexpr const char* kLongLength = "900.00";
constexpr const char* kLengthHeader = "Length";

constexpr int kPictureSize = 16;
constexpr int kNumberPadding = 8;  // right of right-aligned text

/// Paints a cell: the picture centred, the selection across one cell or the row as the style says.
class CallDelegate : public QStyledItemDelegate {
 public:
  CallDelegate(CallListWidget* list, const std::uint32_t& style)
      : QStyledItemDelegate(list), list_(*list), style_(style) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    auto cell = option;
    initStyleOption(&cell, index);
    auto& style = *list_.style();
    const bool picture = index.column() == 0;
    const bool at_right = cell.displayAlignment.testFlag(Qt::AlignRight);
    if (picture || at_right) style.drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, &list_);
    if (picture) return PaintPicture(*painter, cell);
    if (at_right) cell.rect.adjust(0, 0, -kNumberPadding, 0);
    style.drawControl(QStyle::CE_ItemViewItem, &cell, painter, &list_);
  }

  /// Shows the whole of a text that its column cuts.
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override {
    const auto text = index.data().toString();
    const bool cut = sizeHint(option, index).width() > view->visualRect(index).width();
    if (event->type() != QEvent::ToolTip || text.isEmpty() || !cut)
      return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), text, view);
    return true;
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state &= ~QStyle::State_HasFocus;
    if (index.column() > 0 && (style_ & kFullRowSelect) == 0) option->state &= ~QStyle::State_Selected;
    if (!list_.hasFocus()) PaleHighlight(option->palette);
  }

 private:
  /// Shows that the list does not have the focus.
  static void PaleHighlight(QPalette& palette) {
    const auto strong = palette.color(QPalette::Highlight);
    const auto base = palette.color(QPalette::Base);
    const QColor pale((strong.red() + base.red()) / 2, (strong.green() + base.green()) / 2,
                      (strong.blue() + base.blue()) / 2);
    palette.setColor(QPalette::Highlight, pale);
    palette.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
  }

  void PaintPicture(QPainter& painter, const QStyleOptionViewItem& cell) const {
    const QSize size(kPictureSize, kPictureSize);
    auto picture = cell.icon.pixmap(size, list_.devicePixelRatioF());
    if (cell.state.testFlag(QStyle::State_Selected)) {
      // On the highlight the picture's own colours are hard to see, so only its shape is drawn.
      const auto group = cell.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
      QPainter tint(&picture);
      tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
      tint.fillRect(picture.rect(), cell.palette.color(group, QPalette::HighlightedText));
    }
    painter.drawPixmap(QStyle::alignedRect(cell.direction, Qt::AlignCenter, size, cell.rect), picture);
  }

  const CallListWidget& list_;
  const std::uint32_t& style_;
};

}  // namespace

CallListWidget::CallListWidget(QWidget* parent)
    : QTableView(parent), model_(MakeChild<CallModel>(this)), empty_(MakeChild<EmptyCallList>(this)) {
  setObjectName(QStringLiteral("ListView1"));
  setAccessibleName(tr("Calls"));
  setItemDelegate(MakeChild<CallDelegate>(this, style_));
  setModel(model_);
  setSelectionMode(SingleSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setAutoScroll(false);  // selecting by the program does not scroll
  setTabKeyNavigation(false);
  setCornerButtonEnabled(false);
  setWordWrap(false);
  setShowGrid(false);
  setIconSize({kPictureSize, kPictureSize});
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setSectionsClickable(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setDefaultSectionSize(kLeastColumn);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  for (const auto changed : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
    connect(model_, changed, this, &CallListWidget::PlaceEmpty);
  connect(model_, &QAbstractItemModel::modelReset, this, &CallListWidget::PlaceEmpty);
  SetMetrics();
}

void CallListWidget::SetMetrics() {
  const int height = std::max(fontMetrics().height(), kPictureSize) + kRowPadding;
  verticalHeader()->setMinimumSectionSize(height);
  verticalHeader()->setDefaultSectionSize(height);
  auto bold = font();  // as new calls are written
  bold.setBold(true);
  const int character = std::max(QFontMetrics(bold).averageCharWidth(), kStoredCharacterWidth);
  const int length = QFontMetrics(bold).horizontalAdvance(kLongLength) + 2 * kNumberPadding;
  // The last column takes what is left.
  for (std::size_t i = 0; i + 1 < columns_.size(); ++i) {
    const int stored = columns_[i].width / kTwipsPerPixel * character / kStoredCharacterWidth;
    const auto column = static_cast<int>(i);
    setColumnWidth(column, std::max(stored, horizontalHeader()->sectionSizeHint(column)));
    if (columns_[i].header == kLengthHeader) setColumnWidth(column, std::max(columnWidth(column), length));
  }
}

void CallListWidget::ShowColumns(const std::vector<CallColumn>& columns) {
  columns_ = columns;
  model_->SetColumns(columns);
  SetMetrics();
}

void CallListWidget::ShowRowCount(std::int32_t count) {
  const QScopedValueRollback program(by_program_, true);
  model_->SetCount(count);
}

void CallListWidget::ShowRowsInserted(std::int32_t count) {
  const QScopedValueRollback program(by_program_, true);
  const bool at_top = verticalScrollBar()->value() == 0;
  model_->InsertAtTop(count);
  if (!at_top) ScrollBy(count);
}

void CallListWidget::ShowRowRemoved(std::int32_t index) {
  const QScopedValueRollback program(by_program_, true);
  const bool above = rowViewportPosition(index - 1) < 0;
  model_->Remove(index);
  if (above) ScrollBy(-1);
}

void CallListWidget::ScrollBy(int rows) {
  executeDelayedItemsLayout();
  updateGeometries();
  verticalScrollBar()->setValue(verticalScrollBar()->value() + rows * verticalHeader()->defaultSectionSize());
}

void CallListWidget::ShowSelection(std::int32_t index) {
  const QScopedValueRollback program(by_program_, true);
  selectionModel()->setCurrentIndex(model_->index(index - 1, 0),
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CallListWidget::EnsureVisible(std::int32_t index) {
  const int across = horizontalScrollBar()->value();
  scrollTo(model_->index(index - 1, 0), QAbstractItemView::EnsureVisible);
  horizontalScrollBar()->setValue(across);
}

void CallListWidget::SetStyleBits(std::uint32_t mask, std::uint32_t style) {
  style_ = (style_ & ~mask) | (style & mask);
  setShowGrid((style_ & kGridLines) != 0);
  viewport()->update();
}

int CallListWidget::SelectedRow() const {
  const auto rows = selectionModel()->selectedRows();
  return rows.isEmpty() ? 0 : rows.first().row() + 1;
}

QPoint CallListWidget::MenuPosition() const {
  if (!by_keyboard_) return QCursor::pos();
  const auto row = visualRect(model_->index(SelectedRow() - 1, 0));
  return viewport()->mapToGlobal(row.isValid() ? row.bottomRight() : QPoint());
}

void CallListWidget::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  const int row = SelectedRow();
  if (by_program_ || row == 0) return;
  EnsureVisible(row);
  emit Selected(row);
}

QItemSelectionModel::SelectionFlags CallListWidget::selectionCommand(const QModelIndex& index,
                                                                     const QEvent* event) const {
  // A row stays selected until another is selected; dragging the mouse selects nothing.
  if (!index.isValid() || (event != nullptr && event->type() == QEvent::MouseMove)) {
    return QItemSelectionModel::NoUpdate;
  }
  return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
}

void CallListWidget::keyPressEvent(QKeyEvent* event) {
  if (event == QKeySequence::Copy) {
    if (SelectedRow() > 0) QApplication::clipboard()->setText(model_->RowText(SelectedRow() - 1));
    return;
  }
  // Qt would search the typed text in every row, which reads all records.
  if (!event->text().isEmpty() && event->text().front().isPrint()) return event->ignore();
  // Without a selection Qt still has an invisible current row; clear it so that the arrows begin at the top.
  if (SelectedRow() == 0) selectionModel()->clearCurrentIndex();
  QTableView::keyPressEvent(event);
}

CallRow CallListWidget::CallAt(const QMouseEvent& event) const {
  return ShownCall(indexAt(event.position().toPoint()).row() + 1);
}

void CallListWidget::mousePressEvent(QMouseEvent* event) {
  pressed_ = CallAt(*event);
  QTableView::mousePressEvent(event);
  if (pressed_.call == 0 || pressed_.IsSameCall(ShownCall(SelectedRow()))) emit MouseDown();
}

void CallListWidget::mouseMoveEvent(QMouseEvent* event) {
  // Dragging selects nothing, so it must not move the current row either.
  if (event->buttons() == Qt::NoButton) QTableView::mouseMoveEvent(event);
}

void CallListWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  // The first click may have made the list reload its rows.
  const bool same_call = pressed_.IsSameCall(CallAt(*event));
  QTableView::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton && same_call) emit DoubleClicked();
}

void CallListWidget::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() != QContextMenuEvent::Keyboard) return;  // the button press has opened it already
  const QScopedValueRollback keyboard(by_keyboard_, true);
  emit MenuWanted();
}

void CallListWidget::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) SetMetrics();
}

void CallListWidget::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  PlaceEmpty();
}

void CallListWidget::ShowSetupOffers(const SetupOffers& offers) {
  empty_->Show(offers);
  PlaceEmpty();
}

void CallListWidget::PlaceEmpty() {
  const auto room = viewport()->geometry();
  empty_->setGeometry(QStyle::alignedRect(layoutDirection(), Qt::AlignCenter,
                                          empty_->sizeHint().boundedTo(room.size()), room));
  empty_->setVisible(model_->rowCount() == 0);
}

}  // namespace orven
