// SPDX-License-Identifier: GPL-3.0-or-later
#include <QStyleFactory>

#include "actions/frmActions.h"
#include "notify/frmEvents.h"
#include "notify/frmMSG.h"
#include "options/frmOptionsParts.h"
#include "screenshots/pictures.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

const char* const kSettings = R"("cPlayInRing"="1"
"PlayInRing"="Ring.wav"
"PlayInIdle"="Message.wav"
"ViewDetails"="1"
"cAnimation"="1"
"AnimationFast"="50"
"cCloseCallerView"="1"
"CloseCallerView"="30"
"pMailTo"="1"
"MailTo"="anna.lindqvist@example.org"
"SMTPServer"="smtps://mail.example.org"
"MailFrom"="answering.machine@example.org"
"ActionsMailAllCalls"="1"
"pAppTo"="1"
"AppTo"="notify-send \"Call from <NAME>\" \"<NUMBER> at <TIME>\""
"pAppToBG"="0"
"ActionsAppAllCalls"="0"
"SMTPUser"="anna"
"SMTPPass"="only a picture"
)";

QList<QPixmap> CallerViews(Desk& desk) {
  frmMSG view(desk.window);
  view.MoveTo(0);
  view.Load();
  view.ShowStatus(Words("New Call"));
  view.ShowRing(Words("Ring : 3"));
  auto call = Call::Offered(1, "11/21/2026", "09:10:11", "");
  call.caller_name = "Anna Lindqvist";
  call.caller_number = "+46 8 555 0134";
  view.ShowCall(call);
  QList<QPixmap> pictures{Shown(view)};
  view.ShowCommands(CallerCommands::None);
  view.ShowStatus(Words("Call ended"));
  view.ShowRing(Words(""));
  call.caller_name = "The association of the owners of houses at the harbour";
  call.caller_number = "UNKNOWN";
  call.message_path = "/home/anna/.local/share/orven/Messages/11-21-2026_09-10-11.wav";
  view.ShowCall(call);
  return pictures << Shown(view);
}

QList<QPixmap> Events(Desk& desk) {
  auto& machine = desk.Machine();
  EventsDialog dialog({machine.settings, machine.store, machine.home, desk.files, machine.sounds,
                       machine.player, desk.dialogs, machine.caller_view});
  QList<QPixmap> pictures;
  for (int tab = 0; tab < 3; ++tab) {
    frmEvents window(dialog, tab, nullptr);
    pictures << Shown(window);
  }
  return pictures;
}

QList<QPixmap> Actions(Desk& desk) {
  ActionsDialog dialog({desk.Machine().store, desk.Machine().log, desk.dialogs, desk.shell, desk.clock,
                        desk.Mail1, desk.mail_tests, [] {}});
  QList<QPixmap> pictures;
  for (int tab = 0; tab < 2; ++tab) {
    frmActions window(dialog, tab, nullptr);
    if (tab == 1) window.findChild<QAbstractButton*>(QStringLiteral("frmTest"))->click();
    pictures << Shown(window);
  }
  return pictures;
}

QList<QPixmap> Greetings(Desk& desk) {
  GreetingPlayer engine(desk.Machine().ForGreetingPlayer([] { return std::nullopt; }));
  frmOptionsGreetings panel(engine, nullptr);
  panel.Fill("Holiday");
  return {Shown(panel)};
}

}  // namespace

bool MakeDialogs(const QString& folder, const QByteArray& /*name*/) {
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  Desk desk(kSettings);
  for (const char* name : {"Message.wav", "Ring.wav"}) {
    PutWave(desk.home / ("Sound/" + std::string(name)), std::vector<std::int16_t>(4000, 77));
  }
  desk.Start();
  return Save(CallerViews(desk), folder + QStringLiteral("/caller_view.png")) &&
         Save(Events(desk), folder + QStringLiteral("/events.png")) &&
         Save(Actions(desk), folder + QStringLiteral("/actions.png")) &&
         Save(Greetings(desk), folder + QStringLiteral("/greetings.png"));
}

}  // namespace orven::test
