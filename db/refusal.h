// Why an operation answered E_FAIL although the engine raised no error. A result code does not tell; whoever has to say
// it in words asks here, on the same thread and before the next operation.
#pragma once

#include <kvdb/com.h>

#include <cstdint>

namespace db {

enum class Refusal : std::uint8_t {
    kNone,
    kNoDatabase,   // none is open
    kNoRecord,     // the caller gave no record, text or place for the answer
    kNoRow,        // none has the key, or matches
    kNoRows,       // the enumeration is empty
    kNoMoreRows,   // it is at its end
    kNotBegun,     // none is under way
    kSavedInPart,  // the engine's error says which column was the first that was not saved
    kNoFile,       // the studio's file is not there
    kNoMemory,     // outside the engine
};

// Notes the refusal for this thread, and answers E_FAIL. `key`: of the row that is not there; 0 where no key was asked
// for. Asks for no memory.
HRESULT refuse(Refusal why, LONG key = 0) noexcept;

struct LastRefusal {
    Refusal why = Refusal::kNone;
    LONG key = 0;
};
LastRefusal last_refusal() noexcept;
void clear_refusal() noexcept;

}  // namespace db
