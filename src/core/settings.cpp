// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/settings.h"

#include <array>

#include "base/paths.h"

namespace orven {
namespace {

using S = Settings;

constexpr unsigned kMainAndApp = kMainOptionsReader | kAppOptionsReader;
constexpr unsigned kAppAndLog = kLogFlagsReader | kLogPropertiesReader;

const auto kSchema = std::to_array<SettingDefinition>({
    {"MeTop", kViewReader, &S::MeTop},
    {"MeLeft", kViewReader, &S::MeLeft},
    {"MeWinState", kViewReader, &S::MeWinState},
    {"MeWidth", kViewReader, &S::MeWidth},
    {"MeHeight", kViewReader, &S::MeHeight},
    {"Modem", kMainAndApp, &S::Modem},
    {"ModemName", kMainOptionsReader, &S::ModemName},
    {"MassagesPath", kMainAndApp, &S::MassagesPath},
    {"SecSilence", kMainOptionsReader, &S::SecSilence},
    {"cDropSilence", kMainOptionsReader, &S::cDropSilence},
    {"ValSilence", kMainOptionsReader, &S::ValSilence},
    {"RecordMessage", kMainOptionsReader, &S::RecordMessage},
    {"NumOfRing", kMainOptionsReader, &S::NumOfRing},
    {"MaxRec", kMainOptionsReader, &S::MaxRec},
    {"Pass", kMainOptionsReader, &S::Pass},
    {"WornDelete", kMainOptionsReader, &S::WornDelete},
    {"WornClear", kMainOptionsReader, &S::WornClear},
    {"ListMessageOnly", kMainOptionsReader, &S::ListMessageOnly},
    {"Sound", kMainOptionsReader, &S::Sound},
    {"Greeting", kMainOptionsReader, &S::Greeting},
    {"AllowRemoteAccess", kMainOptionsReader, &S::AllowRemoteAccess},
    {"CompressMessages", kMainOptionsReader, &S::CompressMessages},
    {"pQuickToolbar", kMainOptionsReader, &S::pQuickToolbar},
    {"PreScreen", kMainOptionsReader, &S::PreScreen},
    {"pMailTo", kMainActionReader, &S::pMailTo},
    {"MailTo", kMainActionReader, &S::MailTo},
    {"SMTPServer", kMainActionReader, &S::SMTPServer},
    {"MailFrom", kMainActionReader, &S::MailFrom},
    {"ActionsMailAllCalls", kMainActionReader, &S::ActionsMailAllCalls},
    {"pAppTo", kMainActionReader, &S::pAppTo},
    {"AppTo", kMainActionReader, &S::AppTo},
    {"pAppToBG", kMainActionReader, &S::pAppToBG},
    {"ActionsAppAllCalls", kMainActionReader, &S::ActionsAppAllCalls},
    {"PlayInRing", kMainEventsReader, &S::PlayInRing},
    {"cPlayInRing", kMainEventsReader, &S::cPlayInRing},
    {"cOnlyIfGotMessage", kMainEventsReader, &S::cOnlyIfGotMessage},
    {"PlayInIdle", kMainEventsReader, &S::PlayInIdle},
    {"cPlayInIdle", kMainEventsReader, &S::cPlayInIdle},
    {"WhenMsgViewMsg", kMainEventsReader, &S::WhenMsgViewMsg},
    {"ViewDetails", kMainEventsReader, &S::ViewDetails},
    {"cAnimation", kMainEventsReader, &S::cAnimation},
    {"AnimationFast", kMainEventsReader, &S::AnimationFast},
    {"cCloseCallerView", kMainEventsReader, &S::cCloseCallerView},
    {"CloseCallerView", kMainEventsReader, &S::CloseCallerView},
    {"cLogCalls", kAppAndLog, &S::cLogCalls},
    {"cLogSys", kAppAndLog, &S::cLogSys},
    {"LogFor", kLogPropertiesReader, &S::LogFor},
    {"cWornBeforeDelete", kLogPropertiesReader, &S::cWornBeforeDelete},
});

}  // namespace

std::span<const SettingDefinition> SettingsSchema() {
  return kSchema;
}

std::string SharedOptions::InApplicationFolder(std::string_view text) const {
  return application_folder + NativePath(text);
}

}  // namespace orven
