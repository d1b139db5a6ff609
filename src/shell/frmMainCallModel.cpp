// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainCallModel.h"

#include <QCoreApplication>
#include <QFont>
#include <QIcon>
#include <QStringList>
#include <array>
#include <exception>

#include "records/call.h"
#include "widgets/icons.h"
#include "widgets/translation.h"

namespace orven {
namespace {

/// More than the tallest screen shows.
constexpr std::size_t kMostShown = 400;

enum Column { kTypeColumn, kLengthColumn, kDateColumn, kTimeColumn, kNumberColumn, kNameColumn };

/// The headers as the engine names them, for translators.
[[maybe_unused]] constexpr const char* kHeaders[] = {
    QT_TRANSLATE_NOOP("orven::CallModel", "Type"),   QT_TRANSLATE_NOOP("orven::CallModel", "Length"),
    QT_TRANSLATE_NOOP("orven::CallModel", "Date"),   QT_TRANSLATE_NOOP("orven::CallModel", "Time"),
    QT_TRANSLATE_NOOP("orven::CallModel", "Number"), QT_TRANSLATE_NOOP("orven::CallModel", "Name")};

bool IsUnread(CallIcon icon) {
  return icon == kUnreadMessage || icon == kUnreadNoMessage;
}

const QIcon& CallPicture(CallIcon icon) {
  static const std::array pictures{OwnPicture(QStringLiteral("call-1")), OwnPicture(QStringLiteral("call-2")),
                                   OwnPicture(QStringLiteral("call-3")),
                                   OwnPicture(QStringLiteral("call-4"))};
  static const QIcon none;
  const auto place = static_cast<std::size_t>(icon) - 1;
  return place < pictures.size() ? pictures.at(place) : none;
}

}  // namespace

void CallModel::SetColumns(const std::vector<CallColumn>& columns) {
  beginResetModel();
  headers_.clear();
  for (const auto& column : columns) headers_.push_back(tr(column.header.c_str()));
  endResetModel();
}

void CallModel::SetCount(std::int32_t count) {
  beginResetModel();
  shown_.clear();
  count_ = std::max(count, 0);
  endResetModel();
}

void CallModel::InsertAtTop(std::int32_t count) {
  if (count <= 0) return;
  beginInsertRows({}, 0, count - 1);
  shown_.clear();
  count_ += count;
  endInsertRows();
}

void CallModel::Remove(std::int32_t index) {
  if (index < 1 || index > count_) return;
  beginRemoveRows({}, index - 1, index - 1);
  shown_.clear();
  --count_;
  endRemoveRows();
}

void CallModel::Refresh() {
  shown_.clear();
  if (count_ > 0) emit dataChanged(index(0, 0), index(count_ - 1, columnCount() - 1));
}

void CallModel::SetIcon(std::int32_t index, CallIcon icon) {
  if (index < 1 || index > count_) return;
  const auto shown = shown_.find(index - 1);
  if (shown != shown_.end()) shown->second.icon = icon;
  emit dataChanged(this->index(index - 1, 0), this->index(index - 1, columnCount() - 1));
}

int CallModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count_;
}

int CallModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headers_.size());
}

const CallRow& CallModel::Row(int row) const {
  const auto shown = shown_.find(row);
  if (shown != shown_.end()) return shown->second;
  if (shown_.size() >= kMostShown) shown_.clear();
  CallRow read;
  try {
    read = source_(row + 1);
  } catch (const std::exception&) {
    // The records have logged the failure; a row that cannot be read is shown empty.
  }
  return shown_.emplace(row, std::move(read)).first->second;
}

QString CallModel::Text(const CallRow& row, int column) {
  switch (column) {
    case kLengthColumn: return QString::fromStdString(row.length);
    case kDateColumn: return QString::fromStdString(row.date);
    case kTimeColumn: return QString::fromStdString(row.time);
    case kNumberColumn: return Shown(CallerWords(row.number));
    case kNameColumn: return Shown(CallerWords(row.name));
    default: return {};
  }
}

QString CallModel::StateText(CallIcon icon) {
  switch (icon) {
    case kUnreadMessage: return tr("New message");
    case kUnreadNoMessage: return tr("New call without a message");
    case kReadMessage: return tr("Message");
    case kReadNoMessage: return tr("Call without a message");
  }
  return {};
}

QVariant CallModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count_) return {};
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole: return column == kTypeColumn ? QVariant() : Text(Row(index.row()), column);
    case Qt::DecorationRole:
      return column == kTypeColumn ? QVariant(CallPicture(Row(index.row()).icon)) : QVariant();
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
      return column == kTypeColumn ? QVariant(StateText(Row(index.row()).icon)) : QVariant();
    case Qt::TextAlignmentRole:
      return QVariant(column == kLengthColumn ? Qt::AlignRight | Qt::AlignVCenter
                                              : Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::FontRole: {
      if (!IsUnread(Row(index.row()).icon)) return {};
      QFont font;
      font.setBold(true);
      return font;
    }
    default: return {};
  }
}

QVariant CallModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  if (role == Qt::DisplayRole) return headers_[static_cast<std::size_t>(section)];
  return {};
}

CallRow CallModel::ShownCall(std::int32_t index) const {
  return index < 1 || index > count_ ? CallRow() : Row(index - 1);
}

QString CallModel::RowText(int row) const {
  QStringList texts;
  for (int column = kLengthColumn; column < columnCount(); ++column) texts << Text(Row(row), column);
  return texts.join(u'\t');
}

}  // namespace orven
