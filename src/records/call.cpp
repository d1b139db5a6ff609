// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call.h"

#include "base/paths.h"

namespace orven {

Call Call::Offered(std::uint32_t serial, std::string date, std::string time, std::string message_file_name) {
  Call call;
  call.serial = serial;
  call.in_progress = true;
  call.date = std::move(date);
  call.time = std::move(time);
  call.message_file_name = std::move(message_file_name);
  return call;
}

std::string MessageFileName(const std::string& date, const std::string& time) {
  return FileStamp(date, time) + ".wav";
}

}  // namespace orven
