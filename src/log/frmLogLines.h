// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <array>
#include <cstdint>
#include <string_view>

#include "log/log_viewer.h"

namespace orven {

/// The lines of a log as a list's rows. It holds none of them.
class LogLineModel : public QAbstractListModel {
  Q_OBJECT

 public:
  LogLineModel(const LogLines& lines, QObject* parent) : QAbstractListModel(parent), lines_(lines) {}

  /// That many lines are there now: more than before, or 0. The lines themselves may have gone before.
  void ShowCount(std::size_t count);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const LogLines& lines_;
  int count_ = 0;
};

/// The width of the widest of many texts in one font. A text of ASCII letters is measured only when the sum
/// of its letters' widths is greater than that of any before: what is wrong then is kerning, a few pixels.
class TextWidths {
 public:
  explicit TextWidths(const QFont& font);

  /// The greater of `widest` and the width of the line; begins anew when `widest` is 0.
  std::int32_t Widest(std::string_view line, std::int32_t widest);

 private:
  QFontMetricsF metrics_;
  std::array<qreal, 128> advances_{};
  qreal greatest_sum_ = 0;
};

/// `List2`: a list of any number of lines of one height, of which it touches only those in sight: the
/// library's own lists keep a place for each row, and work that out with each row that is added.
class LogLineList : public QListView {
  Q_OBJECT

 public:
  explicit LogLineList(QWidget* parent);

  /// It can be scrolled over this many pixels, so that the longest line comes into view.
  void ShowExtent(int pixels);
  int Extent() const { return extent_; }

  QRect visualRect(const QModelIndex& index) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint) override;
  QModelIndex indexAt(const QPoint& point) const override;
  void doItemsLayout() override;
  /// A search through every line would hold up the window.
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
