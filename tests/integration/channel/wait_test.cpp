// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <thread>

#include "link_fixture.h"

namespace orven::test {
namespace {

using namespace std::chrono_literals;

constexpr qint64 kAtOnce = 500;  // ms; far below a second, which is the shortest wait

TEST_F(LinkTest, OpenCheckRunsTheEventLoopUntilTheHelperComes) {
  const auto path = exchange_->Listen();
  bool nested = true;
  std::unique_ptr<NearHelper> helper;
  loop_.Post([&] {
    QElapsedTimer timer;
    timer.start();
    nested = exchange_->OpenCheck(7);
    EXPECT_LT(timer.elapsed(), kAtOnce);
    loop_.After(10ms, [&] { helper = std::make_unique<NearHelper>(path); });
  });
  EXPECT_TRUE(exchange_->OpenCheck(20));
  EXPECT_FALSE(nested);
}

TEST_F(LinkTest, HelperThatNeverComesCostsItsTimeOnce) {
  QElapsedTimer timer;
  timer.start();
  EXPECT_FALSE(exchange_->OpenCheck(7));
  exchange_->Listen();
  EXPECT_FALSE(exchange_->OpenCheck(0));
  EXPECT_LT(timer.elapsed(), kAtOnce);
  EXPECT_FALSE(exchange_->OpenCheck(1));
  EXPECT_GE(timer.elapsed(), 990);
  timer.restart();
  EXPECT_FALSE(exchange_->OpenCheck(1));
  EXPECT_LT(timer.elapsed(), kAtOnce);
  EXPECT_EQ(events_.lost, 0);
}

TEST_F(LinkTest, WaitEndsWithItsOpening) {
  for (const auto& end : std::vector<std::function<void()>>{
           [&] { exchange_->Close(); }, [&] { exchange_->Listen(); }, [&] { exchange_.reset(); }}) {
    exchange_->Listen();
    loop_.Post(end);
    EXPECT_FALSE(exchange_->OpenCheck(20));
  }
}

TEST_F(LinkTest, WaitEndsWithTheApplication) {
  bool waited = true;
  loop_.Post([&] {
    exchange_->Listen();
    loop_.After(10ms, [] { QCoreApplication::quit(); });
    waited = exchange_->OpenCheck(20);
  });
  QElapsedTimer timer;
  timer.start();
  QCoreApplication::exec();
  EXPECT_FALSE(waited);
  EXPECT_LT(timer.elapsed(), 10'000);
}

TEST_F(LinkTest, ProcessOfAnotherUserStaysOutside) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  const auto path = exchange_->Listen();
  constexpr uid_t kNobody = 65534;
  const pid_t child = ::fork();
  if (child == 0) {
    QLocalSocket socket;
    if (::setuid(kNobody) != 0) ::_exit(2);
    socket.connectToServer(QString::fromStdString(path));
    ::_exit(socket.waitForConnected(1000) ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  NearHelper helper(path);
  EXPECT_TRUE(exchange_->OpenCheck(7));
}

}  // namespace
}  // namespace orven::test
