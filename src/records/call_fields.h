// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace orven {

/// Stored names of a call record's fields, spelt as the records have them.
inline constexpr const char* kCallName = "Call_Name";
inline constexpr const char* kCallNumber = "Call_Number";
inline constexpr const char* kCallTime = "Call_Time";
inline constexpr const char* kCallDate = "Call_Date";
inline constexpr const char* kCallMassageName = "Call_Massage_Name";
inline constexpr const char* kType = "Type";
inline constexpr const char* kRead = "Read";

/// All of them, in stored order.
inline constexpr std::array kCallFields{kCallName,        kCallNumber, kCallTime, kCallDate,
                                        kCallMassageName, kType,       kRead};

/// Query for all records with all fields.
inline constexpr const char* kGetAll = "Get *";

}  // namespace orven
