// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/error_trap.h"

#include <new>

#include "base/runtime_error.h"

namespace orven {
namespace {

std::string NumberAndDescription() {
  try {
    throw;
  } catch (const RuntimeError& error) {
    return std::to_string(error.Number()) + " " + error.what();
  } catch (const std::bad_alloc&) {
    const RuntimeError error(ErrorNumber::OutOfMemory);
    return std::to_string(error.Number()) + " " + error.what();
  } catch (const std::exception& error) {
    const RuntimeError internal(ErrorNumber::InternalError, error.what());
    return std::to_string(internal.Number()) + " " + internal.what();
  } catch (...) {
    const RuntimeError internal(ErrorNumber::InternalError);
    return std::to_string(internal.Number()) + " " + internal.what();
  }
}

}  // namespace

void ErrorTrap::Report() const {
  if (log_ != nullptr) log_->WriteSystem(label_ + NumberAndDescription());
}

}  // namespace orven
