// What the record field exchange (afx/field_exchange.h) has to know of a record's member.
#pragma once

#include <kvdb/com.h>
#include <kvdb/ctime.h>

#include <cstddef>
#include <cstdint>

namespace afx {

// A member and the column it goes with. What a date or an amount becomes is the record's own rule; of Null, CTime(-1)
// and 0 are made.
struct ExchangedMember {
    enum class Type : std::uint8_t { kByValue, kText, kInteger, kTime, kAmount };

    const char* column = nullptr;
    Type type = Type::kByValue;
    std::size_t offset = 0;  // bytes from the record's beginning
    CTime (*time_of)(DATE days) = nullptr;
    bool (*days_of)(CTime time, DATE& days) = nullptr;  // false: Null
    float (*amount_of)(CY amount) = nullptr;
    CY (*stored_amount_of)(float amount) = nullptr;
};

}  // namespace afx
