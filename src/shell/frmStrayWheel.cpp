// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmStrayWheel.h"

#include <QEvent>

#include "shell/frmMakeChild.h"

namespace orven {
namespace {

class StrayWheel : public QObject {
 public:
  explicit StrayWheel(QWidget& control) : QObject(&control), control_(control) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool stray = event->type() == QEvent::Wheel && !control_.hasFocus();
    if (stray) event->ignore();  // whatever it stands on may scroll
    return stray || QObject::eventFilter(watched, event);
  }

 private:
  QWidget& control_;
};

}  // namespace

void IgnoreStrayWheel(QWidget& control) {
  // The wheel brings the focus with it otherwise.
  control.setFocusPolicy(Qt::StrongFocus);
  control.installEventFilter(MakeChild<StrayWheel>(control));
}

}  // namespace orven
