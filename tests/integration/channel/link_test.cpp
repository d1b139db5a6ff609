// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFileInfo>
#include <QLocalSocket>

#include "link_fixture.h"

namespace orven::test {
namespace {

TEST_F(LinkTest, ThousandMessagesGoBothWaysInOrder) {
  NearHelper helper(exchange_->Listen());
  ASSERT_TRUE(exchange_->OpenCheck(7));
  std::vector<std::string> sent;
  for (int i = 0; i < 1000; ++i) {
    sent.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i), 'm') + "é");
    ASSERT_TRUE(exchange_->Send(sent.back()));
    ASSERT_TRUE(helper.client->Send(sent.back()));
  }
  EXPECT_TRUE(events_.arrived.empty()) << "an event inside an operation";
  EXPECT_TRUE(Eventually([&] { return helper.arrived.size() == 1000 && events_.arrived.size() == 1000; }));
  EXPECT_EQ(helper.arrived, sent);
  EXPECT_EQ(events_.arrived, sent);
}

TEST_F(LinkTest, LongestMessagePassesAndWhatIsNoneDoesNot) {
  EXPECT_FALSE(exchange_->Send("without a link"));
  NearHelper helper(exchange_->Listen());
  ASSERT_TRUE(exchange_->OpenCheck(7));
  const std::string longest(DataExchange::kLongestMessage, 'x');
  EXPECT_FALSE(exchange_->Send(longest + "x"));
  EXPECT_FALSE(exchange_->Send("\xff"));
  EXPECT_TRUE(exchange_->Send(longest));
  EXPECT_TRUE(helper.client->Send(longest));
  EXPECT_TRUE(Eventually([&] { return !helper.arrived.empty() && !events_.arrived.empty(); }));
  EXPECT_EQ(helper.arrived, std::vector{longest});
  EXPECT_EQ(events_.arrived, std::vector{longest});
}

TEST_F(LinkTest, WhatWasSentBeforeTheEndArrivesBeforeTheLoss) {
  NearHelper helper(exchange_->Listen());
  ASSERT_TRUE(exchange_->OpenCheck(7));
  const std::string longest(DataExchange::kLongestMessage, 'x');
  for (const auto& text : {longest, longest, std::string("ULD:")}) ASSERT_TRUE(exchange_->Send(text));
  // A helper that answers to a closed link must still read on.
  helper.client->Send("GVCS:");
  exchange_->Close();
  EXPECT_FALSE(exchange_->OpenCheck(7));
  EXPECT_TRUE(Eventually([&] { return helper.lost == 1; }));
  ASSERT_EQ(helper.arrived.size(), 3U);
  EXPECT_EQ(helper.arrived.back(), "ULD:");
  EXPECT_TRUE(events_.arrived.empty());
  EXPECT_EQ(events_.lost, 0);
}

TEST_F(LinkTest, EndOfTheProgramStillTellsTheHelper) {
  NearHelper helper(exchange_->Listen());
  ASSERT_TRUE(exchange_->OpenCheck(7));
  helper.client->Send("never read");
  exchange_->Send("ULD:");
  exchange_.reset();
  EXPECT_TRUE(Eventually([&] { return helper.lost == 1; }));
  EXPECT_EQ(helper.arrived, std::vector<std::string>{"ULD:"});
}

TEST_F(LinkTest, LaterOpeningIsNotDisturbedByAnEarlierHelper) {
  const auto first_path = exchange_->Listen();
  NearHelper first(first_path);
  ASSERT_TRUE(exchange_->OpenCheck(7));
  exchange_->Send("ULD:");
  const auto second_path = exchange_->Listen();
  EXPECT_NE(first_path, second_path);
  first.client->Send("late");
  NearHelper second(second_path);
  ASSERT_TRUE(exchange_->OpenCheck(7));
  EXPECT_TRUE(Eventually([&] { return first.lost == 1; }));
  EXPECT_EQ(first.arrived, std::vector<std::string>{"ULD:"});
  second.client->Send("mine");
  EXPECT_TRUE(Eventually([&] { return !events_.arrived.empty(); }));
  EXPECT_EQ(events_.arrived, std::vector<std::string>{"mine"});
  EXPECT_EQ(events_.lost, 0);
}

TEST_F(LinkTest, HelperThatDiesIsLostAfterItsLastMessage) {
  NearHelper helper(exchange_->Listen());
  ASSERT_TRUE(exchange_->OpenCheck(7));
  helper.client->Send("last words");
  helper.client.reset();
  EXPECT_TRUE(Eventually([&] { return events_.lost == 1; }));
  EXPECT_EQ(events_.arrived, std::vector<std::string>{"last words"});
  EXPECT_FALSE(exchange_->OpenCheck(7));
  EXPECT_FALSE(exchange_->Send("GVC:"));
}

TEST_F(LinkTest, HelperThatBreaksTheRulesIsLost) {
  QLocalSocket helper;
  helper.connectToServer(QString::fromStdString(exchange_->Listen()));
  ASSERT_TRUE(exchange_->OpenCheck(7));
  helper.write("\xff\xff\xff\xff garbage");
  EXPECT_TRUE(Eventually([&] { return events_.lost == 1; }));
  EXPECT_TRUE(events_.arrived.empty());
  EXPECT_TRUE(Eventually([&] { return helper.state() == QLocalSocket::UnconnectedState; }));
}

TEST_F(LinkTest, HelperThatDoesNotReadIsLostInsteadOfFillingTheMemory) {
  QLocalSocket helper;
  helper.connectToServer(QString::fromStdString(exchange_->Listen()));
  ASSERT_TRUE(exchange_->OpenCheck(7));
  helper.setReadBufferSize(1);
  const std::string longest(DataExchange::kLongestMessage, 'x');
  int sent = 0;
  while (sent < 100 && exchange_->Send(longest)) ++sent;
  EXPECT_GE(sent, 7);
  EXPECT_LT(sent, 10);
  EXPECT_EQ(events_.lost, 0) << "an event inside an operation";
  EXPECT_TRUE(Eventually([&] { return events_.lost == 1; }));
}

TEST_F(LinkTest, OneHelperComesInAndTheWayIsGone) {
  const auto path = QString::fromStdString(exchange_->Listen());
  const QFileInfo folder(QFileInfo(path).absolutePath());
  constexpr auto kOthers = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                           QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
  EXPECT_FALSE(folder.permissions() & kOthers);
  EXPECT_FALSE(QFileInfo(path).permissions() & kOthers);
  QLocalSocket first;
  QLocalSocket second;
  first.connectToServer(path);
  second.connectToServer(path);  // queued behind the first
  ASSERT_TRUE(exchange_->OpenCheck(7));
  EXPECT_FALSE(QFileInfo::exists(folder.filePath()));
  EXPECT_TRUE(Eventually([&] { return second.state() == QLocalSocket::UnconnectedState; }));
  ASSERT_TRUE(exchange_->Send("x"));
  EXPECT_TRUE(Eventually([&] { return first.bytesAvailable() == 5; }));

  const QFileInfo unused(QFileInfo(QString::fromStdString(exchange_->Listen())).absolutePath());
  EXPECT_TRUE(QFileInfo::exists(unused.filePath()));
  exchange_.reset();
  EXPECT_FALSE(QFileInfo::exists(unused.filePath()));
}

}  // namespace
}  // namespace orven::test
