// The engine's one exception. Numbers are the data-access engine's own, so that the framework layer
// passes them on unchanged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace jet {

namespace errors {
inline constexpr int kTableExists = 3010;
inline constexpr int kNameInUse = 3012;
inline constexpr int kNoEdit = 3020;
inline constexpr int kNoCurrentRow = 3021;
inline constexpr int kFileNotFound = 3024;
inline constexpr int kDiskFull = 3026;
inline constexpr int kReadOnly = 3027;
inline constexpr int kWrongPassword = 3031;
inline constexpr int kOutOfMemory = 3035;
inline constexpr int kOldFormat = 3041;
inline constexpr int kDiskError = 3043;
inline constexpr int kBadPath = 3044;
inline constexpr int kFileInUse = 3045;
inline constexpr int kRowTooLarge = 3047;
inline constexpr int kDamaged = 3049;
inline constexpr int kAccessDenied = 3051;
inline constexpr int kBadFileName = 3055;
inline constexpr int kUnknownColumn = 3061;
inline constexpr int kExpressionSyntax = 3075;
inline constexpr int kNoSuchTable = 3078;
inline constexpr int kSortOnMemo = 3117;
inline constexpr int kMixedAggregate = 3122;
inline constexpr int kUnnamedTable = 3125;
inline constexpr int kBadStatement = 3129;
inline constexpr int kBadFrom = 3131;
inline constexpr int kBadOrderBy = 3138;
inline constexpr int kBadSelect = 3141;
inline constexpr int kTextAfterEnd = 3142;
inline constexpr int kBadWhere = 3145;
inline constexpr int kBadBookmark = 3159;
inline constexpr int kTextTooLong = 3163;
inline constexpr int kNotUpdatable = 3164;
inline constexpr int kRowDeleted = 3167;
inline constexpr int kFileTooLarge = 3183;
inline constexpr int kTooManyFields = 3190;
inline constexpr int kFieldTwice = 3191;
inline constexpr int kSizeTooLong = 3017;
inline constexpr int kDuplicateKey = 3022;
inline constexpr int kFileExists = 3204;
inline constexpr int kTableLocked = 3211;
inline constexpr int kForwardOnly = 3251;
inline constexpr int kBadType = 3259;
inline constexpr int kNoFields = 3264;
inline constexpr int kNotInCollection = 3265;
inline constexpr int kFieldIndexed = 3280;
inline constexpr int kNullNotAllowed = 3314;
inline constexpr int kEmptyNotAllowed = 3315;
inline constexpr int kNotADatabase = 3343;
inline constexpr int kHeldExclusively = 3356;
inline constexpr int kObjectClosed = 3420;
inline constexpr int kBadConversion = 3421;
inline constexpr int kTypeMismatch = 3464;
inline constexpr int kCannotMaintainIndex = 3616;
inline constexpr int kPasswordNeedsExclusive = 3621;
inline constexpr int kReserved = 3001;
}  // namespace errors

// `what()` is one line of UTF-8 that names file, table and column as far as they are known.
class Error : public std::runtime_error {
public:
    Error(int number, const std::string& text) : std::runtime_error(text), number_(number) {}
    int number() const { return number_; }

private:
    int number_;
};

[[noreturn]] void fail(int number, const std::string& text);

// The one way to report damage: 3049 with the page and the rule that it breaks.
[[noreturn]] void corrupt(std::uint32_t page_no, std::string_view rule);

// The same where the page is not known: a structure ends before `byte`.
[[noreturn]] void fail_short(std::size_t byte);

}  // namespace jet
