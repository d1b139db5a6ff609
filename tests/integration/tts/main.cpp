// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int count, char** arguments) {
  const QCoreApplication application(count, arguments);
  ::testing::InitGoogleTest(&count, arguments);
  return RUN_ALL_TESTS();
}
