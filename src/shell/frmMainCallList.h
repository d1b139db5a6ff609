// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTableView>
#include <cstdint>

#include "records/call_list.h"
#include "shell/frmMainCallModel.h"
#include "shell/frmMainEmpty.h"

namespace orven {

/// The call list `ListView1`. Only the user's actions emit its signals, but for MenuOpens. Row
/// indexes are 1-based.
class CallListWidget : public QTableView, public CallListView {
  Q_OBJECT

 public:
  explicit CallListWidget(QWidget* parent);

  void SetSource(CallModel::RowSource source) { model_->SetSource(std::move(source)); }

  void ShowColumns(const std::vector<CallColumn>& columns) override;
  void ShowRowCount(std::int32_t count) override;
  void ShowRowsInserted(std::int32_t count) override;
  void ShowRowRemoved(std::int32_t index) override;
  void ShowRowsChanged() override { model_->Refresh(); }
  void ShowIcon(std::int32_t index, CallIcon icon) override { model_->SetIcon(index, icon); }
  CallRow ShownCall(std::int32_t index) const override { return model_->ShownCall(index); }
  void ShowSelection(std::int32_t index) override;
  void EnsureVisible(std::int32_t index) override;
  void PopUpMenu(bool message) override { emit MenuOpens(message); }

  /// What is shown in place of the rows while there are none.
  EmptyCallList& Empty() { return *empty_; }
  void ShowSetupOffers(const SetupOffers& offers);

  /// Extended list style bits: 0x1 grid lines, 0x20 full-row select.
  void SetStyleBits(std::uint32_t mask, std::uint32_t style);
  std::uint32_t StyleBits() const { return style_; }

  /// Screen position for the selected call's menu: at the mouse, or at the row when the keyboard opens it.
  QPoint MenuPosition() const;

 signals:
  void Selected(int row);
  /// A mouse button went down and the call below it is selected now. Not emitted when the selection was
  /// refused.
  void MouseDown();
  void DoubleClicked();
  void MenuWanted();
  /// The engine's answer: the menu of a call with or without a message is to open.
  void MenuOpens(bool message);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;

 private:
  int SelectedRow() const;
  CallRow CallAt(const QMouseEvent& event) const;
  void SetMetrics();
  void PlaceEmpty();
  void ScrollBy(int rows);

  CallModel* model_;
  EmptyCallList* empty_;
  CallRow pressed_;  ///< the call on which the mouse was pressed last
  std::vector<CallColumn> columns_;
  std::uint32_t style_ = 0;
  bool by_program_ = false;   ///< the selection is being changed by the program
  bool by_keyboard_ = false;  ///< the menu is opened by the keyboard
};

}  // namespace orven
