// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_thread.h"

#include <pulse/mainloop.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <utility>

#include "adapters/sound/sound_server.h"
#include "base/mailbox.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kEndLimit = 1s;

struct FreeLoop {
  void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};

}  // namespace

/// The tasks, and the event that wakes the loop for them. Without one, and without a loop, the tasks are
/// never run, which the user-interface thread notices as it does a server that hangs.
class SoundThread::Inbox {
 public:
  Inbox() = default;
  ~Inbox() { ::close(event_); }
  Inbox(const Inbox&) = delete;
  Inbox& operator=(const Inbox&) = delete;

  void Put(Task task) {
    tasks_.Put(std::move(task));
    ::eventfd_write(event_, 1);
  }

  /// Runs the tasks until one is empty.
  void Serve(const std::shared_ptr<CardList>& cards) {
    const std::unique_ptr<pa_mainloop, FreeLoop> loop(pa_mainloop_new());
    if (loop == nullptr) return;
    pa_mainloop_api& api = *pa_mainloop_get_api(loop.get());
    SoundServer server(api, cards);
    server_ = &server;
    api.io_new(&api, event_, PA_IO_EVENT_INPUT, &Inbox::Woken, this);
    pa_mainloop_run(loop.get(), nullptr);
  }

 private:
  static void Woken(pa_mainloop_api* api, pa_io_event*, int event, pa_io_event_flags_t, void* self) {
    eventfd_t count = 0;
    ::eventfd_read(event, &count);
    auto& inbox = *static_cast<Inbox*>(self);
    while (const auto task = inbox.tasks_.Take()) {
      if (!*task) return api->quit(api, 0);
      (*task)(*inbox.server_);
    }
  }

  Mailbox<Task> tasks_;
  const int event_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  SoundServer* server_ = nullptr;
};

SoundThread::SoundThread(std::shared_ptr<CardList> cards)
    : inbox_(std::make_shared<Inbox>()), worker_(Worker::AtStop::Drop, kEndLimit) {
  worker_.Post([inbox = inbox_, cards = std::move(cards)] { inbox->Serve(cards); });
}

SoundThread::~SoundThread() {
  inbox_->Put(nullptr);
  worker_.Stop();
}

void SoundThread::Post(Task task) {
  inbox_->Put(std::move(task));
}

}  // namespace orven
