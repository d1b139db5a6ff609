// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/frmLogLines.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace orven {
namespace {

/// A line as one row of text, with replacement characters for control characters.
QString TextOf(std::string_view line) {
  auto text = QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
  for (QChar& character : text) {
    const auto category = character.category();
    if (character == u'\t') {
      character = u' ';
    } else if (category == QChar::Other_Control || category == QChar::Separator_Line ||
               category == QChar::Separator_Paragraph) {
      character = QChar::ReplacementCharacter;
    }
  }
  return text;
}

}  // namespace

void LogLineModel::ShowCount(std::size_t count) {
  const auto rows = static_cast<int>(count);
  if (rows > count_) {
    beginInsertRows({}, count_, rows - 1);
    count_ = rows;
    endInsertRows();
  } else if (rows < count_) {
    beginResetModel();
    count_ = rows;
    endResetModel();
  }
}

int LogLineModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count_;
}

QVariant LogLineModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  if (role != Qt::DisplayRole || !index.isValid() || row >= lines_.Count()) return {};
  return TextOf(lines_.Line(row));
}

TextWidths::TextWidths(const QFont& font) : metrics_(font) {
  for (std::size_t code = 0; code < advances_.size(); ++code) {
    const char letter = static_cast<char>(code);
    advances_.at(code) = metrics_.horizontalAdvance(TextOf({&letter, 1}));
  }
}

std::int32_t TextWidths::Widest(std::string_view line, std::int32_t widest) {
  if (widest == 0) greatest_sum_ = 0;
  qreal sum = 0;
  bool ascii = true;
  for (const char byte : line) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < advances_.size()) {
      sum += advances_[code];
    } else {
      ascii = false;
    }
  }
  if (ascii && sum <= greatest_sum_) return widest;
  if (ascii) greatest_sum_ = sum;
  return std::max(widest, static_cast<std::int32_t>(std::ceil(metrics_.horizontalAdvance(TextOf(line)))));
}

LogLineList::LogLineList(QWidget* parent) : QListView(parent) {
  setUniformItemSizes(true);
  setSelectionMode(QAbstractItemView::ContiguousSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setTextElideMode(Qt::ElideNone);
  setLayoutDirection(Qt::LeftToRight);  // each line begins with its time
}

void LogLineList::ShowExtent(int pixels) {
  extent_ = pixels;
  updateGeometries();
  viewport()->update();
}

int LogLineList::RowsInSight() const {
  return std::max(1, viewport()->height() / RowHeight());
}

int LogLineList::RowAt(int y) const {
  return verticalScrollBar()->value() + y / RowHeight();
}

int LogLineList::horizontalOffset() const {
  return horizontalScrollBar()->value();
}

int LogLineList::verticalOffset() const {
  return verticalScrollBar()->value() * RowHeight();
}

QRect LogLineList::visualRect(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const int top = (index.row() - verticalScrollBar()->value()) * RowHeight();
  return {-horizontalOffset(), top, std::max(extent_, viewport()->width()), RowHeight()};
}

QModelIndex LogLineList::indexAt(const QPoint& point) const {
  const int row = point.y() < 0 ? -1 : RowAt(point.y());
  return row < 0 || row >= Rows() ? QModelIndex() : model()->index(row, 0);
}

void LogLineList::scrollTo(const QModelIndex& index, ScrollHint hint) {
  if (!index.isValid()) return;
  const int first = verticalScrollBar()->value();
  const int row = index.row();
  const bool in_sight = row >= first && row < first + RowsInSight();
  if (hint == EnsureVisible && in_sight) return;
  int top = row;
  if (hint == PositionAtCenter) top = row - RowsInSight() / 2;
  if (hint == PositionAtBottom || (hint == EnsureVisible && row > first)) top = row - RowsInSight() + 1;
  verticalScrollBar()->setValue(top);
}

void LogLineList::doItemsLayout() {
  QAbstractItemView::doItemsLayout();
}

void LogLineList::rowsInserted(const QModelIndex& parent, int first, int last) {
  QAbstractItemView::rowsInserted(parent, first, last);
  updateGeometries();
  if (first <= verticalScrollBar()->value() + RowsInSight()) viewport()->update();
}

void LogLineList::updateGeometries() {
  QAbstractItemView::updateGeometries();
  verticalScrollBar()->setPageStep(RowsInSight());
  verticalScrollBar()->setRange(0, std::max(0, Rows() - RowsInSight()));
  horizontalScrollBar()->setSingleStep(fontMetrics().averageCharWidth() * 4);
  horizontalScrollBar()->setPageStep(viewport()->width());
  horizontalScrollBar()->setRange(0, std::max(0, extent_ - viewport()->width()));
}

void LogLineList::scrollContentsBy(int /*dx*/, int /*dy*/) {
  viewport()->update();
}

QModelIndex LogLineList::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/) {
  if (Rows() == 0) return {};
  auto* sideways = horizontalScrollBar();
  int row = std::max(0, currentIndex().row());
  switch (action) {
    case MoveUp:
    case MovePrevious: --row; break;
    case MoveDown:
    case MoveNext: row = currentIndex().isValid() ? row + 1 : 0; break;
    case MovePageUp: row -= RowsInSight(); break;
    case MovePageDown: row += RowsInSight(); break;
    case MoveHome: row = 0; break;
    case MoveEnd: row = Rows() - 1; break;
    case MoveLeft: sideways->setValue(sideways->value() - sideways->singleStep()); break;
    case MoveRight: sideways->setValue(sideways->value() + sideways->singleStep()); break;
  }
  return model()->index(std::clamp(row, 0, Rows() - 1), 0);
}

void LogLineList::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
  if (Rows() == 0) return;
  const auto normal = rect.normalized();
  const auto row = [this](int y) {
    const int height = RowHeight();
    const int from_first = y < 0 ? (y - height + 1) / height : y / height;
    return std::clamp(verticalScrollBar()->value() + from_first, 0, Rows() - 1);
  };
  selectionModel()->select(
      QItemSelection(model()->index(row(normal.top()), 0), model()->index(row(normal.bottom()), 0)), command);
}

QRegion LogLineList::visualRegionForSelection(const QItemSelection& /*selection*/) const {
  return viewport()->rect();
}

void LogLineList::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  const int last = std::min(RowAt(event->rect().bottom()), Rows() - 1);
  for (int row = RowAt(event->rect().top()); row <= last; ++row) PaintRow(painter, row);
}

void LogLineList::PaintRow(QPainter& painter, int row) const {
  const auto index = model()->index(row, 0);
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = visualRect(index);
  option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
  option.state.setFlag(QStyle::State_HasFocus, hasFocus() && index == currentIndex());
  itemDelegate()->paint(&painter, option, index);
}

void LogLineList::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    CopySelected();
  } else {
    QListView::keyPressEvent(event);
  }
}

void LogLineList::CopySelected() const {
  QString text;
  for (const auto& range : selectionModel()->selection()) {
    for (int row = range.top(); row <= range.bottom(); ++row) {
      text += model()->index(row, 0).data().toString() + u'\n';
    }
  }
  if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

}  // namespace orven
