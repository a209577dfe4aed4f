// The words for refusals and for what helps against an engine's error are tables. The engine's own sentence says what
// is wrong with which table, column or file.
#include "frame/failure.h"

#include <algorithm>
#include <iterator>

#include "afx/dao_error.h"
#include "afx/engine_errors.h"
#include "db/refusal.h"
#include "frame/error_info.h"
#include "frame/wide_text.h"
#include "jet/base/types.h"

namespace frame {
namespace {

using db::Refusal;

struct Failure {
    bool is_there = false;
    IID interface_id = {};  // a copy: the gate may be gone before anybody asks
    Attempt attempt;
};
constinit thread_local Failure last;

struct RefusalText {
    Refusal refusal;
    const char* text;
};
constexpr RefusalText kRefusals[] = {
    {Refusal::kNoDatabase, "No database is open. Call OpenDB first."},
    {Refusal::kNoRecord, "The address of the record, the text or the answer is 0. Pass that of one of your own."},
    {Refusal::kNoRow, "No row matches what was asked for. Look at the rows as they are now."},
    {Refusal::kNoRows, "There is no row that matches. Ask for less, or add one."},
    {Refusal::kNoMoreRows, "That was the last row; begin anew with the method for the first one."},
    {Refusal::kNotBegun, "No enumeration is under way. Begin with the method for the first row."},
    {Refusal::kNoFile, "The file is not there. OpenDB makes it."},
    {Refusal::kNoMemory, "There is not enough memory. Close other programs, and try again."},
};

struct Advice {
    int number;
    const char* text;
};
constexpr Advice kAdvice[] = {
    {afx::errors::kDiskFull, "Make room on the disk, and try again."},
    {afx::errors::kAccessDenied, "See that the file and its folder may be written."},
    {afx::errors::kReadOnly, "See that the file and its folder may be written."},
    {afx::errors::kFileInUse, "Close what has it open, and try again."},
    {afx::errors::kHeldExclusively, "Close the other program that has it open, and try again."},
    {afx::errors::kOutOfMemory, "Close other programs, and try again."},
    {afx::errors::kDamaged, "Copy the file before anything else; kvdb check tells more, kvdb salvage saves the rows."},
    {afx::errors::kWrongPassword, "Give the file back the password that the studio program uses."},
    {afx::errors::kNotADatabase, "Put the right file there, or the newest copy of it."},
    {afx::errors::kOldFormat, "Convert it to the format of Access 2000 to 2003 first."},
    {afx::errors::kDiskError, "Close the databases and open them again; if that does not help, the disk is failing."},
    {afx::errors::kBadPath, "See that the folder is there."},
    {afx::errors::kTextTooLong, "Shorten the text."},
    {afx::errors::kRowTooLarge, "Shorten the texts of the row."},
    {afx::errors::kFileTooLarge, "Remove what is not needed, and make the file anew with kvdb compact."},
    {afx::errors::kExpressionSyntax, "A text that rows are looked for by takes no double quote: leave it out."},
    {afx::errors::kBadConversion, "Correct the value."},
    {afx::errors::kTypeMismatch, "Correct the value."},
    {afx::errors::kNullNotAllowed, "Give a value."},
    {afx::errors::kEmptyNotAllowed, "Give a text that is not empty."},
    {afx::errors::kDuplicateKey, "Choose another value."},
    {afx::errors::kNoSuchTable, "The file is of another version, or none of a studio's; kvdb info tells what it has."},
    {afx::errors::kNotInCollection, "The file is of another version; kvdb info tells what it lacks."},
    {afx::errors::kUnknownColumn, "The file is of another version; kvdb info tells what it lacks."},
    {afx::errors::kRowDeleted, "Look at the rows as they are now."},
};

// The engine's line, and what helps.
std::string engine_text(const afx::LastError& error) {
    std::string text = error.text;
    if (!text.empty() && text.back() != '.') text += '.';
    const auto advice = std::find_if(std::begin(kAdvice), std::end(kAdvice),
                                     [&](const Advice& entry) { return entry.number == error.number; });
    return advice != std::end(kAdvice) ? text + " " + advice->text : text;
}

std::string reason() {
    const db::LastRefusal refusal = db::last_refusal();
    if (refusal.why == Refusal::kNoRow && refusal.key != 0) {
        return "No row has the key " + std::to_string(refusal.key) + ". Look at the rows as they are now.";
    }
    for (const RefusalText& entry : kRefusals) {
        if (entry.refusal == refusal.why) return entry.text;
    }
    return afx::last_error().number != 0 ? engine_text(afx::last_error()) : std::string();
}

BSTR wide(const std::string& text) {
    const std::u16string units = jet::from_utf8(text);
    return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(units.data()), static_cast<UINT>(units.size() * 2));
}

}  // namespace

void begin_call() noexcept {
    afx::clear_last_error();
    db::clear_refusal();
    if (!last.is_there) return;
    last = {};
    clear_error_info();
}

void note_failure(REFIID interface_id, const Attempt& attempt) noexcept {
    last = {true, interface_id, attempt};
    leave_error_info(interface_id);
}

const IID* failed_interface() noexcept { return last.is_there ? &last.interface_id : nullptr; }

std::string failure_sentence() {
    if (!last.is_there) return {};
    const Attempt& attempt = last.attempt;
    const bool is_in_part = db::last_refusal().why == Refusal::kSavedInPart && attempt.in_part != nullptr;
    std::string text = is_in_part ? attempt.in_part : attempt.failed;
    if (attempt.table != nullptr) text += std::string(" ") + attempt.table + " in " + db::file_path(attempt.file) + ".";
    const std::string why = reason();
    return why.empty() ? text : text + " " + why;
}

BSTR failure_text() noexcept {
    try {
        return last.is_there ? wide(failure_sentence()) : nullptr;
    } catch (...) {
        return nullptr;  // no memory
    }
}

BSTR failure_source() noexcept { return last.is_there ? to_bstr("KVDB") : nullptr; }

}  // namespace frame
