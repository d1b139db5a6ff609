// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

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

/// The routines that read settings, as bits.
enum SettingsReader : unsigned {
  kViewReader = 1U << 0U,
  kMainOptionsReader = 1U << 1U,
  kMainActionReader = 1U << 2U,
  kMainEventsReader = 1U << 3U,
  kAppOptionsReader = 1U << 4U,
  kLogFlagsReader = 1U << 5U,  ///< the second half of the application options
  kLogPropertiesReader = 1U << 6U,
};

/// One row of the schema: the stored name, which routines read it, and the field that holds it. The
/// field's type says how the stored text is converted.
struct SettingDefinition {
  using Field = std::variant<std::int16_t Settings::*, std::int32_t Settings::*, std::string Settings::*>;
  std::string_view name;
  unsigned readers;
  Field field;
};

/// Every setting, in the order in which the routines read them.
std::span<const SettingDefinition> SettingsSchema();

/// What all parts of the program share while it runs.
struct SharedOptions {
  std::string application_folder;  ///< without trailing separator

  /// `text` ("\Greets\") below the application folder, in native separators.
  std::string InApplicationFolder(std::string_view text) const;
};

}  // namespace orven
