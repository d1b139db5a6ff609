// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/settings_form.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMetaProperty>
#include <QSlider>
#include <algorithm>
#include <optional>

#include "widgets/controls.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr int kEntryCharacters = 28;  // the list does not grow with long names
constexpr int kNumberCharacters = 4;
constexpr int kPageStep = 10;  // of a slider

/// Property of a control: the text that it showed initially.
constexpr const char* kShownFirst = "shownFirst";

/// Accepts whole numbers. A field left without one gets its initial value back.
class WholeNumber : public QIntValidator {
 public:
  using QIntValidator::QIntValidator;
  State validate(QString& text, int& place) const override {
    if (text.toInt() > top() || (text.size() > 1 && text.startsWith(u'0'))) return Invalid;
    return QIntValidator::validate(text, place);
  }
  void fixup(QString& text) const override { text = parent()->property(kShownFirst).toString(); }
};

QString Translated(const char* text) {
  return Shown(Words(text));
}

QString TipOf(const Row& row) {
  if (row.kind != Row::Kind::Number) return Translated(row.tip);
  return Shown(Words("%1, %2 to %3").Arg(Words(row.purpose)).Arg(row.least).Arg(row.most));
}

void ShowValue(const Row& row, QWidget& control, const QString& text) {
  control.setProperty(kShownFirst, text);
  auto* list = qobject_cast<QComboBox*>(&control);
  if (list == nullptr) {
    control.metaObject()->userProperty().write(&control, text);
  } else if (row.kind == Row::Kind::Choice) {
    list->setCurrentIndex(text.isEmpty() ? -1 : text.toInt());
  } else {
    list->setCurrentIndex(list->findData(text, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive));
  }
  if (list == nullptr || !list->isEditable()) return;
  list->setEditText(text);
  list->lineEdit()->setCursorPosition(0);
}

std::optional<QString> ValueOf(const Row& row, const QWidget& control) {
  const auto* list = qobject_cast<const QComboBox*>(&control);
  const bool none = list != nullptr && list->currentIndex() < 0;
  if (row.kind == Row::Kind::Choice)
    return none ? std::nullopt : std::optional(QString::number(list->currentIndex()));
  if (row.kind == Row::Kind::List)
    return (none ? control.property(kShownFirst) : list->currentData()).toString();
  const auto value = control.metaObject()->userProperty().read(&control);
  return row.kind == Row::Kind::Check ? QString::number(value.toInt()) : value.toString();
}

}  // namespace

QWidget* SettingsForm::Find(std::string_view name) const {
  const auto named = [name](const auto& made) { return made.first->name == name; };
  const auto made = std::ranges::find_if(made_, named);
  return made == made_.end() ? nullptr : made->second;
}

QWidget* SettingsForm::Make(std::string_view name) {
  const auto& row = **std::ranges::find(rows_, name, &Row::name);
  auto* control = MakeControl(row);
  control->setObjectName(QString::fromLatin1(row.control));
  control->setAccessibleName(Translated(row.purpose));
  control->setToolTip(TipOf(row));
  made_.emplace_back(&row, control);
  return *row.unit == '\0' ? control : WithUnit(control, row.unit);
}

QWidget* SettingsForm::MakeControl(const Row& row) {
  if (row.kind == Row::Kind::Check) return MakeChild<QCheckBox>(Translated(row.label), &window_);
  if (row.kind == Row::Kind::Text || row.kind == Row::Kind::Secret) return MakeText(row);
  return row.kind == Row::Kind::Slider ? MakeSlider(row) : MakeList(row);
}

QWidget* SettingsForm::MakeText(const Row& row) {
  auto* field = MakeChild<QLineEdit>(&window_);
  if (row.kind == Row::Kind::Secret) field->setEchoMode(QLineEdit::Password);
  if (row.most > 0) field->setMaxLength(row.most);
  return field;
}

QWidget* SettingsForm::MakeSlider(const Row& row) {
  auto* slider = MakeChild<QSlider>(Qt::Horizontal, &window_);
  slider->setRange(row.least, row.most);
  slider->setPageStep(kPageStep);
  IgnoreStrayWheel(*slider);
  return slider;
}

QWidget* SettingsForm::MakeList(const Row& row) {
  auto* list = MakeChild<QComboBox>(&window_);
  for (const char* item : row.items) list->addItem(Translated(item), QString::fromUtf8(item));
  IgnoreStrayWheel(*list);
  const bool number = row.kind == Row::Kind::Number;
  if (number || row.items.empty()) {
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    list->setMinimumContentsLength(number ? kNumberCharacters : kEntryCharacters);
    list->setInsertPolicy(QComboBox::NoInsert);
  }
  if (number || row.kind == Row::Kind::Entry) {
    list->setEditable(true);
    list->setCompleter(nullptr);  // names may differ in the case of their letters only
  }
  if (number) list->setValidator(MakeChild<WholeNumber>(row.least, row.most, list));
  return list;
}

QWidget* SettingsForm::WithUnit(QWidget* control, const char* unit) {
  auto* page = MakeChild<QWidget>(&window_);
  auto* row = MakeFlat<QHBoxLayout>(page);
  row->addWidget(control);
  row->addWidget(MakeChild<QLabel>(Translated(unit), page));
  row->addStretch();
  return page;
}

QWidget* SettingsForm::Add(QFormLayout& layout, std::string_view name) {
  auto* field = Make(name);
  const auto& [row, control] = made_.back();
  if (row->kind == Row::Kind::Check) {
    layout.addRow(field);
    return field;
  }
  layout.addRow(Translated(row->label), field);
  if (auto* label = qobject_cast<QLabel*>(layout.labelForField(field))) label->setBuddy(control);
  return field;
}

void SettingsForm::AddRest(QFormLayout& layout, int page) {
  for (const auto* row : rows_) {
    const bool has_control = row->kind != Row::Kind::None && row->kind != Row::Kind::ByHand;
    if (has_control && row->page == page && Find(row->name) == nullptr) Add(layout, row->name);
  }
}

void SettingsForm::Show(const Choices& choices) {
  for (const auto& [row, control] : made_) {
    const auto choice = choices.find(row->name);
    if (choice != choices.end()) ShowValue(*row, *control, QString::fromStdString(choice->second));
  }
}

Choices SettingsForm::Taken() const {
  Choices choices;
  for (const auto& [row, control] : made_) {
    if (const auto value = ValueOf(*row, *control)) choices[std::string(row->name)] = value->toStdString();
  }
  return choices;
}

}  // namespace orven
