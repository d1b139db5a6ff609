// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/row.h"

namespace orven {

/// The settings as the main window holds them while the program runs. Fields carry the stored names;
/// a fresh one is 0, false or empty. Flags are 0 for off, anything else for on.
struct Settings {
  std::int32_t MeTop = 0;  ///< window placement in twips
  std::int32_t MeLeft = 0;
  std::int16_t MeWinState = 0;  ///< 0 normal, 1 minimised, 2 maximised
  std::int32_t MeWidth = 0;
  std::int32_t MeHeight = 0;
  std::int32_t Modem = 0;  ///< current line index; -1 none selected, -2 none usable
  std::string ModemName;
  std::string MassagesPath;     ///< ends in a separator
  std::int32_t SecSilence = 0;  ///< seconds of silence that end a recording
  std::int16_t cDropSilence = 0;
  std::int16_t ValSilence = 0;  ///< thousandths of full scale
  std::int16_t RecordMessage = 0;
  std::int16_t NumOfRing = 0;
  std::int32_t MaxRec = 0;              ///< minutes
  std::int16_t max_record_seconds = 0;  ///< not stored: the longest message, see SettingsStore::TakeMaxRec
  std::string Pass;
  std::int16_t WornDelete = 0;
  std::int16_t WornClear = 0;
  std::int16_t ListMessageOnly = 0;
  std::int32_t Sound = 0;  ///< wave device number of the sound card
  std::string Greeting;
  std::int16_t AllowRemoteAccess = 0;
  std::int16_t CompressMessages = 0;
  std::int16_t pQuickToolbar = 0;
  std::int16_t PreScreen = 0;
  std::int16_t pMailTo = 0;
  std::string MailTo;
  std::string SMTPServer;
  std::string MailFrom;
  std::int16_t ActionsMailAllCalls = 0;
  std::int16_t pAppTo = 0;
  std::string AppTo;
  std::int16_t pAppToBG = 0;
  std::int16_t ActionsAppAllCalls = 0;
  std::string PlayInRing;
  std::int16_t cPlayInRing = 0;
  std::int16_t cOnlyIfGotMessage = 0;
  std::string PlayInIdle;
  std::int16_t cPlayInIdle = 0;
  std::int16_t WhenMsgViewMsg = 0;
  std::int16_t ViewDetails = 0;
  std::int16_t cAnimation = 0;
  std::int16_t AnimationFast = 0;
  std::int16_t cCloseCallerView = 0;
  std::int16_t CloseCallerView = 0;  ///< seconds
  std::int16_t cLogCalls = -1;       ///< both logs count as on until they have been read, so that the
  std::int16_t cLogSys = -1;         ///< errors of a fresh installation are not lost
  std::string LogFor;
  std::int16_t cWornBeforeDelete = 0;
};

/// The settings that are read together, and edited in one dialog.
enum class Group { Window, Options, Actions, Events, Log };

/// A setting's place among those of its group when a dialog loads and stores them. Equal ones keep the
/// table's order.
struct Order {
  int load = 0;
  int store = 99;
};

/// One setting. The type of its field says how the stored text is converted. Without a field it is read only
/// when it is used: a check that is missing is then as in a new installation, and one that this stores
/// nothing for is on unless "0" is stored; a text that is missing is empty.
struct SettingRow : Row {
  using Field = std::variant<std::monostate, std::int16_t Settings::*, std::int32_t Settings::*,
                             std::string Settings::*>;
  Field field;
  Order order;
};

/// The rows of a group in the order in which they are read, or in the order of loading or storing.
std::vector<const SettingRow*> RowsOf(Group group, int Order::*order = nullptr);

/// The row of a setting that is in the table.
const SettingRow& RowOf(std::string_view name);

/// Sets the row's field. Throws RuntimeError when `text` cannot be converted; the field then keeps its value.
void Assign(Settings& settings, const SettingRow& row, const std::string& text);

/// The row's field as text.
std::string FieldText(const Settings& settings, const SettingRow& row);

/// Whether the row's value is "1" for on and "0" for off.
bool IsFlag(const SettingRow& row);

/// What the row's control shows for a stored text. Throws RuntimeError when it cannot be converted.
std::string ToShown(const SettingRow& row, const std::string& stored);

/// What is stored for the value of the row's control.
std::string ToStored(const SettingRow& row, const std::string& shown);

}  // namespace orven
