// What a failing call of a gate leaves for whoever asks why: the calling thread's own, until its next call of a gate.
// What is kept asks for no memory, so that a call fails without it as it does with it; the sentence is made of it when
// it is wanted.
#pragma once

#include <kvdb/com.h>

#include <string>

#include "db/database_files.h"

namespace frame {

// What a call is to do, in the words for its failure.
struct Attempt {
    const char* failed = "The call failed.";  // a sentence, or the beginning of one that `table` goes on
    const char* in_part = nullptr;            // the same for a row that was saved in part
    const char* table = nullptr;
    db::DatabaseFile file = db::DatabaseFile::kMain;
};

inline constexpr Attempt kOpening{.failed = "The studio's files were not opened."};

// Forgets the thread's failure, and on Windows takes away the error info that it left.
void begin_call() noexcept;

// The call that `begin_call` began has failed: keeps what the layers below have to say, and on Windows leaves it as
// error info of the thread, where there is memory for that.
void note_failure(REFIID interface_id, const Attempt& attempt) noexcept;

// The interface of the thread's last call, if that failed; else null.
const IID* failed_interface() noexcept;

// What did not come about, in which file, why, and what helps, in UTF-8; "" where nothing failed.
std::string failure_sentence();

// Of the thread's failure, for automation; null where there is none, or no memory. The caller's.
BSTR failure_text() noexcept;
BSTR failure_source() noexcept;

}  // namespace frame
