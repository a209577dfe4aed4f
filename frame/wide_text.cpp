// A BSTR may hold any bytes, so its characters are copied out before they are looked at.
#include "frame/wide_text.h"

#include <cstring>
#include <new>

#include "os/system.h"

namespace frame {

static_assert(sizeof(OLECHAR) == sizeof(char16_t));

BSTR to_bstr(std::string_view narrow) noexcept {
    try {
        const std::u16string wide = os::widen(narrow);
        const UINT bytes = static_cast<UINT>(wide.size() * sizeof(OLECHAR));
        return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(wide.data()), bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::string to_narrow(BSTR wide) {
    std::u16string text(SysStringLen(wide), u'\0');
    if (!text.empty()) std::memcpy(text.data(), wide, text.size() * sizeof(OLECHAR));
    return os::narrow(std::u16string_view(text).substr(0, text.find(u'\0')));
}

}  // namespace frame
