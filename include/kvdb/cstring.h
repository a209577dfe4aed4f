// CString: narrow text as the records carry it. The object is one pointer; null is the empty text,
// otherwise it points at the first character of a block that other CStrings may share:
//
//     [ owners | length in bytes | capacity in bytes ][ characters ... 0 ]
//                                                       ^ the pointer
//
// 1. Blocks come from the heap that every module of a process shares, so a text that the component
//    puts into a caller's CString may be freed or changed by the caller, and the other way round.
// 2. A block with more than one owner is never written; a writer takes a copy of its own first.
// 3. The layout is part of the component's contract: it may not change.
// 4. Without memory std::bad_alloc is thrown; a host built without exceptions is aborted.
//
// A host whose framework has classes named CString, CTime or CDaoException defines KVDB_NO_VALUE_CLASSES before it
// includes any of these headers. Ours are then kvdb::CString, kvdb::CTime and kvdb::CDaoException; the records keep
// their names and their layout.
#pragma once

#include <kvdb/com.h>

#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#ifdef KVDB_NO_VALUE_CLASSES
namespace kvdb {
#endif

class CString {
public:
    CString() noexcept = default;
    CString(const CString& other) noexcept : characters_(other.characters_) { share(); }
    CString(CString&& other) noexcept : characters_(std::exchange(other.characters_, nullptr)) {}
    CString(const char* text) { assign(text, length_of(text)); }
    CString(const char* text, int length) { assign(text, length); }
    explicit CString(char character, int repeat = 1) {
        if (repeat <= 0) return;
        std::memset(GetBuffer(repeat), character, static_cast<std::size_t>(repeat));
        set_length(repeat);
    }
    ~CString() { drop(); }

    CString& operator=(const CString& other) noexcept {
        CString copy(other);
        swap(copy);
        return *this;
    }
    CString& operator=(CString&& other) noexcept {
        swap(other);
        return *this;
    }
    CString& operator=(const char* text) {
        const int length = length_of(text);
        if (length > 0 && characters_ != nullptr && length <= header()->capacity &&
            header()->owners.load(std::memory_order_acquire) == 1) {
            std::memmove(characters_, text, static_cast<std::size_t>(length));  // the text may lie inside this one
            set_length(length);
            return *this;
        }
        CString copy(text, length);
        swap(copy);
        return *this;
    }
    CString& operator=(char character) {
        CString copy(character);
        swap(copy);
        return *this;
    }

    // ---- Reading; positions and lengths are in bytes, positions from 0

    operator const char*() const noexcept { return characters_ != nullptr ? characters_ : ""; }
    const char* GetString() const noexcept { return *this; }
    int GetLength() const noexcept { return characters_ != nullptr ? header()->length : 0; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    char GetAt(int index) const noexcept { return GetString()[index]; }
    char operator[](int index) const noexcept { return GetAt(index); }

    int Compare(const char* text) const noexcept { return std::strcmp(*this, text != nullptr ? text : ""); }
    // Case is ignored for the letters of ASCII.
    int CompareNoCase(const char* text) const noexcept {
        const char* a = *this;
        const char* b = text != nullptr ? text : "";
        while (*a != 0 && lower(*a) == lower(*b)) ++a, ++b;
        return static_cast<unsigned char>(lower(*a)) - static_cast<unsigned char>(lower(*b));
    }

    // Position of the first occurrence at or after `start`; -1 when there is none.
    int Find(char character, int start = 0) const noexcept {
        if (start < 0 || start > GetLength()) return -1;
        return position_of(std::strchr(GetString() + start, character));
    }
    int Find(const char* text, int start = 0) const noexcept {
        if (text == nullptr || start < 0 || start > GetLength()) return -1;
        return position_of(std::strstr(GetString() + start, text));
    }
    int FindOneOf(const char* characters) const noexcept {
        return position_of(std::strpbrk(GetString(), characters != nullptr ? characters : ""));
    }
    int ReverseFind(char character) const noexcept { return position_of(std::strrchr(GetString(), character)); }

    CString Mid(int first) const { return Mid(first, GetLength()); }
    CString Mid(int first, int count) const {
        if (first < 0) first = 0;
        if (first >= GetLength() || count <= 0) return CString();
        if (count > GetLength() - first) count = GetLength() - first;
        if (first == 0 && count == GetLength()) return *this;
        return CString(GetString() + first, count);
    }
    CString Left(int count) const { return Mid(0, count); }
    CString Right(int count) const { return count >= GetLength() ? *this : Mid(GetLength() - (count > 0 ? count : 0)); }

    // ---- Writing

    void Empty() noexcept {
        drop();
        characters_ = nullptr;
    }

    CString& operator+=(const CString& other) {
        const CString keep(other);  // `other` may be this text
        return append(keep, keep.GetLength());
    }
    CString& operator+=(const char* text) { return append(text, length_of(text)); }
    CString& operator+=(char character) { return append(&character, 1); }

    void SetAt(int index, char character) { GetBuffer(0)[index] = character; }

    void MakeUpper() {
        char* text = GetBuffer(0);
        for (int i = 0; i < GetLength(); ++i) text[i] = static_cast<char>(upper(text[i]));
    }
    void MakeLower() {
        char* text = GetBuffer(0);
        for (int i = 0; i < GetLength(); ++i) text[i] = static_cast<char>(lower(text[i]));
    }
    void TrimLeft() {
        int first = 0;
        while (is_space(GetAt(first))) ++first;
        if (first != 0) *this = Mid(first);
    }
    void TrimRight() {
        int length = GetLength();
        while (length > 0 && is_space(GetAt(length - 1))) --length;
        if (length != GetLength()) *this = Left(length);
    }

    // As printf; the arguments may include this text itself.
#ifdef __GNUC__
    __attribute__((format(printf, 2, 3)))
#endif
    void
    Format(const char* format, ...) {
        std::va_list arguments;
        va_start(arguments, format);
        FormatV(format, arguments);
        va_end(arguments);
    }
#ifdef __GNUC__
    __attribute__((format(printf, 2, 0)))
#endif
    void
    FormatV(const char* format, std::va_list arguments) {
        std::va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(nullptr, 0, format, arguments);
        CString result;
        if (length > 0) {
            std::vsnprintf(result.GetBuffer(length), static_cast<std::size_t>(length) + 1, format, again);
            result.set_length(length);
        }
        va_end(again);
        swap(result);
    }

    // Returns a buffer for at least `min_length` bytes and the terminating zero, owned by this text alone;
    // ReleaseBuffer then sets the length (-1: up to the first zero byte).
    char* GetBuffer(int min_length) {
        const int length = GetLength();
        const int wanted = min_length > length ? min_length : length;
        if (characters_ == nullptr || header()->owners.load(std::memory_order_acquire) > 1 ||
            header()->capacity < wanted) {
            char* fresh = allocate(wanted);
            std::memcpy(fresh, GetString(), static_cast<std::size_t>(length) + 1);
            header_of(fresh)->length = length;
            drop();
            characters_ = fresh;
        }
        return characters_;
    }
    char* GetBufferSetLength(int length) {
        GetBuffer(length);
        set_length(length);
        return characters_;
    }
    void ReleaseBuffer(int length = -1) {
        GetBuffer(0);
        if (length < 0) length = length_of(characters_);
        set_length(length < header()->capacity ? length : header()->capacity);
    }

    void swap(CString& other) noexcept { std::swap(characters_, other.characters_); }

private:
    struct Header {
        std::atomic<std::int32_t> owners;
        std::int32_t length;
        std::int32_t capacity;
    };

    static Header* header_of(char* characters) noexcept {
        return reinterpret_cast<Header*>(characters - sizeof(Header));
    }
    Header* header() const noexcept { return header_of(characters_); }

    [[noreturn]] static void fail() {
#if defined(__cpp_exceptions) || defined(_CPPUNWIND)
        throw std::bad_alloc();
#else
        std::abort();
#endif
    }

    // A block with one owner and the empty text. Fails without memory.
    static char* allocate(int capacity) {
        if (capacity > INT32_MAX - 64) fail();
        const std::size_t bytes = sizeof(Header) + static_cast<std::size_t>(capacity) + 1;
#ifdef _WIN32
        void* block = HeapAlloc(GetProcessHeap(), 0, bytes);
#else
        void* block = std::malloc(bytes);
#endif
        if (block == nullptr) fail();
        Header* header = new (block) Header{{1}, 0, capacity};
        char* characters = reinterpret_cast<char*>(header + 1);
        characters[0] = 0;
        return characters;
    }

    void share() noexcept {
        if (characters_ != nullptr) header()->owners.fetch_add(1, std::memory_order_relaxed);
    }
    void drop() noexcept {
        if (characters_ == nullptr || header()->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
#ifdef _WIN32
        HeapFree(GetProcessHeap(), 0, header());
#else
        std::free(header());
#endif
    }

    void assign(const char* text, int length) {
        if (text == nullptr || length <= 0) return;
        characters_ = allocate(length);
        std::memcpy(characters_, text, static_cast<std::size_t>(length));
        set_length(length);
    }

    // `text` may lie inside this text.
    CString& append(const char* text, int count) {
        if (count <= 0) return *this;
        const int length = GetLength();
        if (count > INT32_MAX - 64 - length) fail();
        const CString keep(*this);  // keeps `text` alive and, by sharing, forces a fresh block
        char* fresh = allocate(grown(length + count));
        std::memcpy(fresh, GetString(), static_cast<std::size_t>(length));
        std::memcpy(fresh + length, text, static_cast<std::size_t>(count));
        drop();
        characters_ = fresh;
        set_length(length + count);
        return *this;
    }
    static int grown(int length) noexcept { return length < INT32_MAX / 2 ? length + length / 2 : length; }

    void set_length(int length) noexcept {
        header()->length = length;
        characters_[length] = 0;
    }

    int position_of(const char* found) const noexcept {
        return found != nullptr ? static_cast<int>(found - GetString()) : -1;
    }
    static int length_of(const char* text) noexcept {
        return text != nullptr ? static_cast<int>(std::strlen(text)) : 0;
    }
    static int lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; }
    static int upper(char c) noexcept { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; }
    static bool is_space(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

    char* characters_ = nullptr;
};

static_assert(sizeof(CString) == sizeof(void*), "the records rely on CString being one pointer");

inline CString operator+(const CString& a, const CString& b) {
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(const CString& a, const char* b) {
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(const char* a, const CString& b) {
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(const CString& a, char b) {
    CString sum(a);
    sum += b;
    return sum;
}
inline CString operator+(char a, const CString& b) {
    CString sum(a);
    sum += b;
    return sum;
}

inline bool operator==(const CString& a, const CString& b) noexcept { return a.Compare(b) == 0; }
inline bool operator==(const CString& a, const char* b) noexcept { return a.Compare(b) == 0; }
inline bool operator==(const char* a, const CString& b) noexcept { return b.Compare(a) == 0; }
inline bool operator!=(const CString& a, const CString& b) noexcept { return a.Compare(b) != 0; }
inline bool operator!=(const CString& a, const char* b) noexcept { return a.Compare(b) != 0; }
inline bool operator!=(const char* a, const CString& b) noexcept { return b.Compare(a) != 0; }
inline bool operator<(const CString& a, const CString& b) noexcept { return a.Compare(b) < 0; }
inline bool operator<(const CString& a, const char* b) noexcept { return a.Compare(b) < 0; }
inline bool operator<(const char* a, const CString& b) noexcept { return b.Compare(a) > 0; }
inline bool operator>(const CString& a, const CString& b) noexcept { return a.Compare(b) > 0; }
inline bool operator>(const CString& a, const char* b) noexcept { return a.Compare(b) > 0; }
inline bool operator>(const char* a, const CString& b) noexcept { return b.Compare(a) < 0; }

#ifdef KVDB_NO_VALUE_CLASSES
}  // namespace kvdb
#endif
