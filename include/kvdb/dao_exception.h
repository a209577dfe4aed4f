// CDaoException: how a failure of the data-access engine reaches a C++ caller. It is thrown by pointer;
// the catcher deletes it with Delete():
//
//     catch (CDaoException* e) { ... e->m_pErrorInfo->m_strDescription ...; e->Delete(); }
//
// The types are visible across library boundaries, and the module that threw an exception destroys it
// (through its virtual destructor), so a host may catch what the component throws. Under KVDB_NO_VALUE_CLASSES it is
// kvdb::CDaoException, another type than the one that is thrown: only for hosts that no exception can reach.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>

#include <cstddef>
#include <cstring>

#if defined(__GNUC__) && !defined(_WIN32)
#define KVDB_VISIBLE __attribute__((visibility("default")))
#else
#define KVDB_VISIBLE
#endif

#ifdef KVDB_NO_VALUE_CLASSES
namespace kvdb {
#endif

class KVDB_VISIBLE CObject {
public:
    CObject() = default;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual ~CObject() = default;
};

class KVDB_VISIBLE CException : public CObject {
public:
    // Deletes the exception; the pointer is invalid afterwards.
    void Delete() { delete this; }

    // Copies the message, truncated to `size` bytes with its terminating zero, and sets `*help_context` (may be null).
    // FALSE, and an empty text if `size` allows, when the exception has none.
    virtual BOOL GetErrorMessage(char* text, UINT size, UINT* help_context = nullptr) {
        if (help_context != nullptr) *help_context = 0;
        if (text != nullptr && size != 0) text[0] = 0;
        return FALSE;
    }
};

// One error of the engine.
struct KVDB_VISIBLE CDaoErrorInfo {
    LONG m_lErrorCode = 0;  // the engine's number, four digits
    CString m_strSource;
    CString m_strDescription;
    CString m_strHelpFile;
    LONG m_lHelpContext = 0;
};

// Values of CDaoException::m_nAfxDaoError.
inline constexpr int NO_AFX_DAO_ERROR = 0;
inline constexpr int AFX_DAO_ERROR_MIN = 2000;
inline constexpr int AFX_DAO_ERROR_ENGINE_INITIALIZATION = AFX_DAO_ERROR_MIN;
inline constexpr int AFX_DAO_ERROR_DFX_BIND = AFX_DAO_ERROR_MIN + 1;
inline constexpr int AFX_DAO_ERROR_OBJECT_NOT_OPEN = AFX_DAO_ERROR_MIN + 2;

class KVDB_VISIBLE CDaoException final : public CException {
public:
    CDaoException() = default;
    // An engine error: its number, its text, and the object that raised it.
    CDaoException(LONG number, const char* description, const char* source = "DAO.DbEngine") {
        error_.m_lErrorCode = number;
        error_.m_strDescription = description;
        error_.m_strSource = source;
        m_scode = static_cast<SCODE>(0x800A0000u + static_cast<ULONG>(number));
        m_pErrorInfo = &error_;
    }

    short GetErrorCount() const { return m_pErrorInfo != nullptr ? 1 : 0; }
    // Selects error `index` (from 0) for m_pErrorInfo; there is never more than one.
    void GetErrorInfo(int index) { m_pErrorInfo = index == 0 && m_scode != S_OK ? &error_ : nullptr; }

    BOOL GetErrorMessage(char* text, UINT size, UINT* help_context = nullptr) override {
        CException::GetErrorMessage(text, size, help_context);
        if (m_pErrorInfo == nullptr || text == nullptr || size == 0) return FALSE;
        const CString& message = m_pErrorInfo->m_strDescription;
        const std::size_t length = static_cast<std::size_t>(message.GetLength());
        const std::size_t count = length < size ? length : size - 1;
        std::memcpy(text, message.GetString(), count);
        text[count] = 0;
        if (help_context != nullptr) *help_context = static_cast<UINT>(m_pErrorInfo->m_lHelpContext);
        return TRUE;
    }

    CDaoErrorInfo* m_pErrorInfo = nullptr;  // lives as long as the exception; null without an engine error
    SCODE m_scode = S_OK;                   // 0x800A0000 + the engine's number
    int m_nAfxDaoError = NO_AFX_DAO_ERROR;  // the framework's reason; 0 for an engine error

private:
    CDaoErrorInfo error_;
};

#ifdef KVDB_NO_VALUE_CLASSES
}  // namespace kvdb
#endif
