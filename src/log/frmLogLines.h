// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <array>
#include <cstdint>
#include <string_view>

#include "log/log_viewer.h"

namespace orven {

/// The lines of a log as the rows of a list, without a copy of them.
class LogLineModel : public QAbstractListModel {
  Q_OBJECT

 public:
  LogLineModel(const LogLines& lines, QObject* parent) : QAbstractListModel(parent), lines_(lines) {}

  /// The new number of lines: more than before, or 0. The lines may already have been cleared.
  void ShowCount(std::size_t count);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const LogLines& lines_;
  int count_ = 0;
};

/// The width of the widest of many texts in one font. To be fast, an ASCII text is measured only when the sum
/// of its letters' widths is the largest so far; kerning makes this wrong by a few pixels at most.
class TextWidths {
 public:
  explicit TextWidths(const QFont& font);

  /// The larger of `widest` and the width of the line; 0 starts again.
  std::int32_t Widest(std::string_view line, std::int32_t widest);

 private:
  QFontMetricsF metrics_;
  std::array<qreal, 128> advances_{};
  qreal greatest_sum_ = 0;
};

/// `List2`: a list of any number of lines of one height. It touches only the visible ones: Qt's own lists lay
/// out each row, which is too slow for a large log.
class LogLineList : public QListView {
  Q_OBJECT

 public:
  explicit LogLineList(QWidget* parent);

  /// Sets the width in pixels that can be scrolled: that of the longest line.
  void ShowExtent(int pixels);
  int Extent() const { return extent_; }

  QRect visualRect(const QModelIndex& index) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint) override;
  QModelIndex indexAt(const QPoint& point) const override;
  void doItemsLayout() override;
  /// Searching every line would block the window.
  void keyboardSearch(const QString& /*search*/) override {}

 protected:
  int horizontalOffset() const override;
  int verticalOffset() const override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  void rowsInserted(const QModelIndex& parent, int first, int last) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int Rows() const { return model() == nullptr ? 0 : model()->rowCount(); }
  int RowHeight() const { return fontMetrics().lineSpacing() + 2; }
  int RowsInSight() const;
  int RowAt(int y) const;
  void PaintRow(QPainter& painter, int row) const;
  void CopySelected() const;

  int extent_ = 0;
};

}  // namespace orven
