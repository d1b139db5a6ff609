// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <qtestsupport_core.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocalSocket>

#include "adapters/channel/exchange_client.h"
#include "adapters/channel/local_exchange.h"
#include "adapters/channel/message_link.h"
#include "adapters/desktop/qt_event_loop.h"

namespace orven::test {
namespace {

using namespace std::chrono_literals;
using Messages = std::vector<std::string>;

const std::string kLongest(DataExchange::kLongestMessage, 'x');

/// Records what one end of the link receives.
struct Received : DataExchangeEvents {
  void DataArrival(const std::string& text) override { messages.push_back(text); }
  void LinkLost() override { ++lost; }
  Messages messages;
  int lost = 0;
};

/// A helper that runs in the test's process.
struct NearHelper : Received {
  explicit NearHelper(const std::string& path) { EXPECT_EQ(client->Connect(path, 5s).value_or(""), ""); }
  std::unique_ptr<ExchangeClient> client = std::make_unique<ExchangeClient>(
      MessageLink::Handlers{[this](const std::string& text) { DataArrival(text); }, [this] { LinkLost(); }});
};

struct LinkTest : testing::Test {
  LinkTest() { exchange->SetEvents(&program); }
  NearHelper& Connected() {
    helpers.push_back(std::make_unique<NearHelper>(exchange->Listen()));
    EXPECT_TRUE(exchange->OpenCheck(7));
    return *helpers.back();
  }
  /// Closes the link, opens the next one, or destroys the program's end.
  void End(int how) {
    if (how == 0) exchange->Close();
    if (how == 1) exchange->Listen();
    if (how == 2) exchange.reset();
  }
  template <typename Condition>
  static bool Eventually(Condition condition) {
    return QTest::qWaitFor(condition, 20'000);
  }

  int count = 1;
  char* arguments[1] = {};
  QCoreApplication application{count, arguments};
  QtEventLoop loop;
  Received program;
  std::unique_ptr<LocalExchange> exchange = std::make_unique<LocalExchange>(loop);
  std::vector<std::unique_ptr<NearHelper>> helpers;
};

TEST_F(LinkTest, MessagesGoBothWaysInOrderUpToTheLongest) {
  EXPECT_FALSE(exchange->Send("without a link"));
  auto& helper = Connected();
  EXPECT_FALSE(exchange->Send(kLongest + "x") || exchange->Send("\xff"));
  Messages sent{"", "Say:line\r\nline\nZoë 😀", std::string("a\0b", 3), kLongest};
  for (std::size_t i = 0; i < 1000; ++i) sent.push_back(std::to_string(i) + std::string(i, 'm'));
  for (const auto& text : sent) ASSERT_TRUE(exchange->Send(text) && helper.client->Send(text));
  EXPECT_TRUE(Eventually([&] { return helper.messages == sent && program.messages == sent; }));
}

TEST_F(LinkTest, MessagesSentBeforeTheEndArriveAndDoNotDisturbALaterLink) {
  for (const int end : {0, 1, 2}) {
    auto& helper = Connected();
    const Messages sent{end == 2 ? "" : kLongest, end == 2 ? "" : kLongest, "ULD:"};
    for (const auto& text : sent) ASSERT_TRUE(exchange->Send(text));
    helper.client->Send("GVCS:");  // a helper that writes to a closed link must still read the rest
    End(end);
    EXPECT_FALSE(exchange && exchange->OpenCheck(0));
    EXPECT_TRUE(Eventually([&] { return helper.lost == 1; }));
    EXPECT_TRUE(helper.messages == sent);
  }
  EXPECT_TRUE(program.messages.empty() && program.lost == 0);
}

TEST_F(LinkTest, AHelperThatDiesSendsGarbageOrDoesNotReadIsDisconnected) {
  const auto lost_after = [this](const char* message) {
    EXPECT_TRUE(Eventually([&] { return program.lost == 1; }));
    EXPECT_EQ(program.messages, Messages(message == nullptr ? 0 : 1, message == nullptr ? "" : message));
    EXPECT_FALSE(exchange->OpenCheck(7) || exchange->Send("GVC:"));
    program = {};
  };
  auto& helper = Connected();
  helper.client->Send("last words");
  helper.client.reset();
  lost_after("last words");
  QLocalSocket socket;
  const auto connect = [&] {
    socket.abort();
    socket.connectToServer(QString::fromStdString(exchange->Listen()));
    EXPECT_TRUE(exchange->OpenCheck(7));
  };
  const std::string garbage[] = {std::string("\x00\x10\x00\x01", 4), "\xff\xff\xff\xff", Framed("\xc3"),
                                 Framed("\xed\xa0\x80"), "GET / HTTP/1.1\r\n\r\n"};
  for (const auto& bytes : garbage) {
    connect();
    socket.write(QByteArray::fromStdString(Framed("before") + bytes + Framed("after")));
    lost_after("before");
    EXPECT_TRUE(Eventually([&] { return socket.state() == QLocalSocket::UnconnectedState; }));
  }
  connect();
  socket.setReadBufferSize(1);
  int sent = 0;
  while (sent < 100 && exchange->Send(kLongest)) ++sent;
  EXPECT_TRUE(sent >= 7 && sent < 10) << sent;
  EXPECT_EQ(program.lost, 0) << "the event came during an operation";
  lost_after(nullptr);
}

TEST_F(LinkTest, OnlyOneHelperOfTheSameUserCanConnectAndTheSocketIsRemoved) {
  const auto path = QString::fromStdString(exchange->Listen());
  const QFileInfo folder(QFileInfo(path).absolutePath());
  constexpr auto kOthers = QFileDevice::Permissions(0x0077);
  EXPECT_FALSE((folder.permissions() | QFileInfo(path).permissions()) & kOthers);
  QLocalSocket first, second;
  first.connectToServer(path);
  second.connectToServer(path);  // waits in the queue after the first one
  ASSERT_TRUE(exchange->OpenCheck(7));
  EXPECT_FALSE(QFileInfo::exists(folder.filePath()));
  EXPECT_TRUE(Eventually([&] { return second.state() == QLocalSocket::UnconnectedState; }));
  ASSERT_TRUE(exchange->Send("x"));
  EXPECT_TRUE(Eventually([&] { return first.bytesAvailable() == 5; }));
}

TEST_F(LinkTest, OpenCheckRunsTheEventLoopUntilTheHelperConnectsOrNoLongerCan) {
  EXPECT_FALSE(exchange->OpenCheck(600)) << "no helper was started";
  const auto path = exchange->Listen();
  bool waited = true;
  loop.Post([&] {
    waited = exchange->OpenCheck(600);
    loop.After(10ms, [&] { helpers.push_back(std::make_unique<NearHelper>(path)); });
  });
  EXPECT_TRUE(exchange->OpenCheck(600));
  EXPECT_FALSE(waited) << "one wait at a time";
  exchange->Listen();
  EXPECT_FALSE(exchange->OpenCheck(1)) << "the helper never came";
  loop.Post([&] {
    exchange->Listen();
    loop.After(10ms, [] { QCoreApplication::quit(); });
    waited = exchange->OpenCheck(600);
  });
  QCoreApplication::exec();
  EXPECT_FALSE(waited);
  for (const int end : {0, 1, 2}) {
    exchange->Listen();
    loop.Post([this, end] { End(end); });
    EXPECT_FALSE(exchange->OpenCheck(600));
  }
}

}  // namespace
}  // namespace orven::test
