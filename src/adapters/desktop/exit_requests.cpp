// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/exit_requests.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>
#include <utility>

namespace orven {
namespace {

constexpr std::array<int, 3> kSignals = {SIGTERM, SIGINT, SIGHUP};

/// The handler writes here; it can only use a global.
std::atomic<int> g_signal_pipe{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void Handle(int /*signal*/) {
  const int saved = errno;
  const char byte = 0;
  // A full pipe already holds a request, so a failed write loses nothing.
  [[maybe_unused]] const auto written = write(g_signal_pipe.load(), &byte, 1);
  errno = saved;
}

struct sigaction Action(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  return action;
}

}  // namespace

struct ExitSignals::State {
  std::array<int, 2> pipe = {-1, -1};
  std::array<struct sigaction, kSignals.size()> earlier = {};
  std::optional<QSocketNotifier> notifier;
  std::function<void()> on_exit;
  bool signalled = false;

  /// Empties the pipe and reports the first signal.
  void Drain() {
    std::array<char, 64> bytes = {};
    while (read(pipe[0], bytes.data(), bytes.size()) > 0) {
    }
    if (std::exchange(signalled, true)) return;
    on_exit();
  }
};

ExitSignals::ExitSignals(std::function<void()> on_exit) : state_(std::make_unique<State>()) {
  state_->on_exit = std::move(on_exit);
  if (pipe2(state_->pipe.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make the pipe for signals");
  }
  state_->notifier.emplace(state_->pipe[0], QSocketNotifier::Read);
  QObject::connect(&*state_->notifier, &QSocketNotifier::activated, &*state_->notifier,
                   [state = state_.get()] { state->Drain(); });

  g_signal_pipe = state_->pipe[1];
  const struct sigaction handle = Action(Handle);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &state_->earlier[i]);
    const bool keep_ignored = kSignals[i] == SIGHUP && state_->earlier[i].sa_handler == SIG_IGN;
    if (!keep_ignored) sigaction(kSignals[i], &handle, nullptr);
  }
  const struct sigaction ignore = Action(SIG_IGN);
  sigaction(SIGPIPE, &ignore, nullptr);
}

ExitSignals::~ExitSignals() {
  const struct sigaction ignore = Action(SIG_IGN);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], state_->signalled ? &ignore : &state_->earlier[i], nullptr);
  }
  g_signal_pipe = -1;
  state_->notifier.reset();
  close(state_->pipe[0]);
  close(state_->pipe[1]);
}

QuitRequests::QuitRequests(std::function<bool()> on_request) : on_request_(std::move(on_request)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool QuitRequests::eventFilter(QObject* watched, QEvent* event) {
  if (watched != QCoreApplication::instance() || event->type() != QEvent::Quit) return false;
  return on_request_();
}

}  // namespace orven
