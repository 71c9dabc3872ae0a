// What the driver has written down about a call with an open argument list.
//
// gfortran passes addresses, and behind them the lengths of the CHARACTER arguments by value; how
// many of each, nothing tells. The driver's records do: behind the call stands a no-op instruction
// that holds the way to the record.
#pragma once

#include <cstdint>
#include <vector>

namespace tarn::gcc {

struct CallRecord {
    std::int32_t count = 0;          // arguments behind the format
    const char* tokens = nullptr;    // two characters an argument: `*I`, `*F`, `*C`, `*E` ...
    std::vector<const char*> names;  // as the source spells them
};

// The record of the call that returns to `return_address`; false when there is none. `format`
// (whose length isn't known yet) chooses among the calls of one statement.
bool find_call_record(const void* return_address, const char* format, CallRecord& record);

}  // namespace tarn::gcc
