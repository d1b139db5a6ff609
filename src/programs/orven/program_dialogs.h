// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/dialog_factory.h"

namespace orven {

/// The dialogs of this version: none yet, so that the main window offers none.
class ProgramDialogs : public DialogFactory {
 public:
  bool Offers(Dialog /*dialog*/) const override { return false; }
  void Open(Dialog /*dialog*/, int /*tab*/) override {}
};

}  // namespace orven
