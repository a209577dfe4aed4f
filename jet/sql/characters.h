// What the characters of a statement can be part of.
#pragma once

namespace jet::sql {

inline bool is_blank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }
inline bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

inline char16_t upper(char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c; }

inline bool starts_name(char16_t c) { return (upper(c) >= u'A' && upper(c) <= u'Z') || c == u'_' || c > 0xA0; }
inline bool continues_name(char16_t c) { return starts_name(c) || is_digit(c) || c == u'$'; }

}  // namespace jet::sql
