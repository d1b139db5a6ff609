// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/local_exchange.h"

#include <QTimer>
#include <algorithm>
#include <utility>

namespace orven {
namespace {

using namespace std::chrono_literals;

/// How long the end of the program waits for a helper that does not read.
constexpr auto kFlushLimit = 1s;

}  // namespace

LocalExchange::LocalExchange(EventLoop& loop) : loop_(loop) {}

LocalExchange::~LocalExchange() {
  Close();
  const auto limit = Time::now() + kFlushLimit;
  for (const auto& link : ending_) {
    link->Flush(std::max(0ms, std::chrono::duration_cast<std::chrono::milliseconds>(limit - Time::now())));
  }
}

std::string LocalExchange::Listen() {
  Close();
  lifeline_ = std::make_unique<Lifeline>();
  opening_ = std::make_shared<int>();
  socket_ = std::make_unique<PrivateSocket>(
      [this](std::unique_ptr<QLocalSocket> socket) { Accept(std::move(socket)); });
  started_ = Time::now();
  return socket_->Path();
}

bool LocalExchange::OpenCheck(std::int32_t seconds) {
  const auto limit = started_ + std::chrono::seconds(seconds);
  if (!waiting_ && socket_ && socket_->Open() && Time::now() < limit) {
    const std::weak_ptr<int> opening = opening_;
    WaitUntil(limit);
    // Closed, opened anew, or destroyed.
    if (opening.expired()) return false;
  }
  return link_ && link_->Up();
}

/// May return after the end of this object.
void LocalExchange::WaitUntil(Time::time_point limit) {
  const std::weak_ptr<int> opening = opening_;
  QEventLoop wait;
  waiting_ = &wait;
  const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(limit - Time::now());
  QTimer::singleShot(remaining, &wait, &QEventLoop::quit);
  wait.exec();
  if (!opening.expired()) waiting_ = nullptr;
}

void LocalExchange::EndWait() {
  if (waiting_) waiting_->quit();
  waiting_ = nullptr;
}

bool LocalExchange::Send(const std::string& text) {
  return link_ && link_->Send(text);
}

void LocalExchange::Close() {
  EndWait();
  opening_.reset();
  lifeline_.reset();
  socket_.reset();
  std::erase_if(ending_, [](const auto& link) { return link->Gone(); });
  if (!link_) return;
  link_->End();
  ending_.push_back(std::move(link_));
}

void LocalExchange::Accept(std::unique_ptr<QLocalSocket> socket) {
  link_ = std::make_unique<MessageLink>(
      std::move(socket),
      MessageLink::Handlers{[this](std::string message) {
                              Tell([message = std::move(message)](DataExchangeEvents& events) {
                                events.DataArrival(message);
                              });
                            },
                            [this] { Tell([](DataExchangeEvents& events) { events.LinkLost(); }); }});
  EndWait();
}

void LocalExchange::Tell(std::function<void(DataExchangeEvents&)> event) {
  loop_.Post(lifeline_->Bind([this, event = std::move(event)] {
    if (events_) event(*events_);
  }));
}

}  // namespace orven
