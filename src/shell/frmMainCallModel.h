// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "records/call_list.h"

namespace orven {

/// The call list as a Qt model. It caches only the few hundred rows shown last and reads a row when it is
/// painted, so that long lists are as fast as short ones. Rows of the interface are 1-based, those of the
/// model 0-based.
class CallModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Returns row `index`. When it throws, an empty row is shown.
  using RowSource = std::function<CallRow(std::int32_t index)>;

  using QAbstractTableModel::QAbstractTableModel;

  void SetSource(RowSource source) { source_ = std::move(source); }
  void SetColumns(const std::vector<CallColumn>& columns);

  void SetCount(std::int32_t count);
  void InsertAtTop(std::int32_t count);
  void Remove(std::int32_t index);
  void Refresh();
  void SetIcon(std::int32_t index, CallIcon icon);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The call shown in a row; an empty one for an unknown row.
  CallRow ShownCall(std::int32_t index) const;

  /// The row's texts on one line, for the clipboard.
  QString RowText(int row) const;

 private:
  const CallRow& Row(int row) const;
  static QString Text(const CallRow& row, int column);
  static QString StateText(CallIcon icon);

  RowSource source_ = [](std::int32_t) { return CallRow(); };
  std::vector<QString> headers_;
  int count_ = 0;
  mutable std::unordered_map<int, CallRow> shown_;  ///< by 0-based row
};

}  // namespace orven
