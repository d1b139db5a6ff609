// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/quit_requests.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

namespace orven {

QuitRequests::QuitRequests(std::function<bool()> on_request) : on_request_(std::move(on_request)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool QuitRequests::eventFilter(QObject* watched, QEvent* event) {
  if (watched != QCoreApplication::instance() || event->type() != QEvent::Quit) return false;
  return on_request_();
}

}  // namespace orven
