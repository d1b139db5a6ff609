// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QList>

namespace orven {

/// Gives each action of one menu that has no accelerator yet one that no other action there has: a
/// word's first letter where that is free, else any letter. Texts may be in any language.
void AssignMnemonics(const QList<QAction*>& actions);

}  // namespace orven
