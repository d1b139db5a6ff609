// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>
#include <iostream>

#include "adapters/desktop/exit_requests.h"
#include "modem_emulator/program/modem_program.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const orven::ExitSignals exit([] { QCoreApplication::quit(); });  // a normal exit, which removes the link
  try {
    const orven::emulator::ModemProgram program(orven::emulator::ReadOptions(QCoreApplication::arguments()));
    return QCoreApplication::exec();
  } catch (const std::exception& error) {
    std::cerr << "orven-modem-emulator: " << error.what() << "\n";
    return 1;
  }
}
