// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "actions/actions_engine.h"
#include "base/paths.h"
#include "core/settings.h"
#include "notify/call_notices.h"
#include "notify/caller_view.h"
#include "notify/desk_sounds.h"
#include "notify/tray_icon.h"
#include "records/call_filing.h"
#include "records/call_list.h"

namespace orven {

/// What a call triggers apart from the telephone.
struct CallEffects {
  CallerView& caller_view;
  DeskSounds& sounds;
  TrayIcon& tray;
  CallNotices& notices;
  ActionsEngine& actions;
};

/// Announces a call when it comes in, and files and announces it when it is over. User-interface thread.
class AfterCall {
 public:
  AfterCall(CallEffects effects, CallFiling& filing, CallList& list, SystemLog& log, const Settings& settings,
            const ApplicationFolder& home, std::function<bool()> window_hidden)
      : effects_(effects),
        filing_(filing),
        list_(list),
        log_(log),
        settings_(settings),
        home_(home),
        window_hidden_(std::move(window_hidden)) {}

  /// A call is offered: ring sound and caller view.
  void Announce(const Call& call);

  /// A call from anyone but the owner is over: tray, record, notification, sound, caller view, actions.
  void Finish(Call& call);

  /// Whether the settings want a record of the call.
  bool IsListed(const Call& call) const { return settings_.ListMessageOnly == 0 || call.message_left; }

  /// Sends the mails of calls that an earlier run filed or was about to file, but did not mail before it was
  /// killed. Their programs are not started, because that may have happened already.
  void SendDueMails();

 private:
  void PlaySound(const std::string& name);
  void File(Call& call);
  void ShowFinished(const Call& call);
  bool WantsMail(const Call& call) const;
  void HandMailOver(Call& call);
  void RunActions(Call& call);
  void OpenCallerView();

  CallEffects effects_;
  CallFiling& filing_;
  CallList& list_;
  SystemLog& log_;
  const Settings& settings_;
  const ApplicationFolder& home_;
  std::function<bool()> window_hidden_;
};

}  // namespace orven
