// Values of the data-access framework, under their published names.
#pragma once

#include <cstdint>

// Locale text of a new database: General sort order, code page 1252.
inline constexpr char dbLangGeneral[] = ";LANGID=0x0409;CP=1252;COUNTRY=0";

// Field types.
inline constexpr std::int16_t dbBoolean = 1;
inline constexpr std::int16_t dbByte = 2;
inline constexpr std::int16_t dbInteger = 3;
inline constexpr std::int16_t dbLong = 4;
inline constexpr std::int16_t dbCurrency = 5;
inline constexpr std::int16_t dbSingle = 6;
inline constexpr std::int16_t dbDouble = 7;
inline constexpr std::int16_t dbDate = 8;
inline constexpr std::int16_t dbText = 10;
inline constexpr std::int16_t dbLongBinary = 11;
inline constexpr std::int16_t dbMemo = 12;

// Field attributes.
inline constexpr std::int32_t dbFixedField = 0x1;
inline constexpr std::int32_t dbVariableField = 0x2;
inline constexpr std::int32_t dbAutoIncrField = 0x10;
inline constexpr std::int32_t dbUpdatableField = 0x20;

// Kinds of record set, and their options.
inline constexpr int AFX_DAO_USE_DEFAULT_TYPE = -1;
inline constexpr int dbOpenTable = 1;
inline constexpr int dbOpenDynaset = 2;
inline constexpr int dbOpenSnapshot = 4;
inline constexpr int dbOpenForwardOnly = 8;
inline constexpr int dbDenyWrite = 1;
inline constexpr int dbDenyRead = 2;
inline constexpr int dbReadOnly = 4;
inline constexpr int dbAppendOnly = 8;
inline constexpr int dbInconsistent = 16;
inline constexpr int dbConsistent = 32;
inline constexpr int dbSQLPassThrough = 64;
inline constexpr int dbFailOnError = 128;
inline constexpr int dbForwardOnly = 256;
inline constexpr int dbSeeChanges = 512;

// Edit modes.
inline constexpr std::int16_t dbEditNone = 0;
inline constexpr std::int16_t dbEditInProgress = 1;
inline constexpr std::int16_t dbEditAdd = 2;

// Options of a new database.
inline constexpr int dbVersion40 = 64;
