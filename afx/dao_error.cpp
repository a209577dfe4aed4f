#include "afx/dao_error.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>

#include "afx/dao_database.h"
#include "jet/base/types.h"
#include "os/system.h"

namespace afx {
namespace {

constexpr char kSource[] = "KVDB";
constexpr std::uint32_t kEngineCodes = 0x800A0000u;

constinit thread_local LastError newest;

void remember(int number, std::string_view text) noexcept {
    std::size_t length = std::min(text.size(), sizeof newest.text - 1);
    // Not in the middle of a character.
    while (length > 0 && length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    newest.number = number;
    std::copy_n(text.begin(), length, newest.text);
    newest.text[length] = 0;
}

}  // namespace

void throw_dao(int number, std::string_view text) {
    remember(number, text);
    // NOLINTNEXTLINE: the framework throws by pointer, and Delete() ends the object
    throw new CDaoException(number, os::narrow(jet::from_utf8(text)).c_str(), kSource);
}

void rethrow_as_dao() {
    try {
        throw;
    } catch (CDaoException*) {
        throw;
    } catch (const jet::Error& e) {
        throw_dao(e.number(), e.what());
    } catch (const std::bad_alloc&) {
        throw_dao(jet::errors::kOutOfMemory, "Out of memory.");
    } catch (const std::exception& e) {
        throw_dao(jet::errors::kReserved, std::string("Internal error: ") + e.what());
    } catch (CException* e) {
        e->Delete();
        throw_dao(jet::errors::kBadConversion, "The value cannot be converted.");
    } catch (...) {
        throw_dao(jet::errors::kReserved, "Internal error.");
    }
}

const LastError& last_error() noexcept { return newest; }

void clear_last_error() noexcept { remember(0, {}); }

int number_of(SCODE scode) noexcept {
    const auto bits = static_cast<std::uint32_t>(scode);
    return (bits & 0xFFFF0000u) == kEngineCodes ? static_cast<int>(bits & 0xFFFFu) : jet::errors::kReserved;
}

}  // namespace afx

void AfxThrowDaoException(int afx_error, SCODE scode) {
    const int number = afx::number_of(scode);
    const afx::LastError earlier = afx::newest;
    try {
        afx::throw_dao(number, "Data access failed with error " + std::to_string(number) + ".");
    } catch (CDaoException* e) {
        e->m_nAfxDaoError = afx_error;
        if (earlier.number == number) afx::newest = earlier;  // what the engine said before it became a result code
        throw;
    }
}

void DAO_CHECK(HRESULT result) {
    if (FAILED(result)) AfxThrowDaoException(NO_AFX_DAO_ERROR, result);
}
