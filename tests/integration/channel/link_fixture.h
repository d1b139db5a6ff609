// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <string>
#include <vector>

#include "adapters/channel/exchange_client.h"
#include "adapters/channel/local_exchange.h"
#include "adapters/desktop/qt_event_loop.h"

namespace orven::test {

/// Runs the event loop until `condition` holds; false when that takes too long.
template <typename Condition>
bool Eventually(Condition condition) {
  return QTest::qWaitFor(condition, 20'000);
}

/// Keeps what came over the link.
class Events : public DataExchangeEvents {
 public:
  void DataArrival(const std::string& text) override { arrived.push_back(text); }
  void LinkLost() override { ++lost; }

  std::vector<std::string> arrived;
  int lost = 0;
};

/// A helper in the test's own process.
class NearHelper {
 public:
  explicit NearHelper(const std::string& path) {
    const auto problem = client->Connect(path, std::chrono::seconds(5));
    EXPECT_FALSE(problem) << *problem;
  }

  std::vector<std::string> arrived;
  int lost = 0;
  std::unique_ptr<ExchangeClient> client = std::make_unique<ExchangeClient>(MessageLink::Handlers{
      [this](const std::string& text) { arrived.push_back(text); }, [this] { ++lost; }});
};

class LinkTest : public ::testing::Test {
 protected:
  LinkTest() { exchange_->SetEvents(&events_); }

  QtEventLoop loop_;
  Events events_;
  std::unique_ptr<LocalExchange> exchange_ = std::make_unique<LocalExchange>(loop_);
};

}  // namespace orven::test
