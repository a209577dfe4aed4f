// The format on disk: every offset, size, mask and constant of it, and nowhere else. What differs between the versions
// stands here for Jet 4, and for each version in the tables of format.h, which is what code goes by.
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet::jet4 {

inline constexpr std::size_t kPageSize = 4096;
inline constexpr std::uint32_t kMaxPages = 524288;  // 2 GiB

// Page kinds, byte 0 of every page but the first.
inline constexpr std::uint8_t kDataPage = 0x01;
inline constexpr std::uint8_t kTableDefPage = 0x02;
inline constexpr std::uint8_t kIndexNodePage = 0x03;
inline constexpr std::uint8_t kIndexLeafPage = 0x04;
inline constexpr std::uint8_t kUsageBitmapPage = 0x05;
inline constexpr std::size_t kPageKindMark = 1;  // byte 1 is always 1

// Fixed pages.
inline constexpr std::uint32_t kHeaderPage = 0;
inline constexpr std::uint32_t kGlobalMapPage = 1;
inline constexpr std::uint32_t kObjectsPage = 2;
inline constexpr std::uint32_t kAcesPage = 3;
inline constexpr std::uint32_t kQueriesPage = 4;
inline constexpr std::uint32_t kRelationshipsPage = 5;

namespace header {                                   // page 0
inline constexpr std::uint32_t kStart = 0x00000100;  // bytes 0 to 3
inline constexpr std::size_t kMagic = 0x04;
inline constexpr char kMagicText[] = "Standard Jet DB";  // with its NUL 16 bytes
inline constexpr std::size_t kVersion = 0x14;
inline constexpr std::uint32_t kVersionJet3 = 0;
inline constexpr std::uint32_t kVersionJet4 = 1;
inline constexpr std::size_t kMasked = 0x18;  // first masked byte
inline constexpr std::uint8_t kMaskKey[] = {0xC7, 0xDA, 0x39, 0x6B};
inline constexpr std::size_t kMaskedBytes = 128;
inline constexpr std::size_t kGlobalMap = 0x18;
inline constexpr std::size_t kSecondMap = 0x1C;
inline constexpr std::size_t kCatalogTables = 0x20;  // 4 x u32
inline constexpr std::size_t kSortSubId = 0x38;      // Jet 3
inline constexpr std::size_t kCodePage = 0x3C;
inline constexpr std::size_t kEncryptionKey = 0x3E;
inline constexpr std::size_t kPassword = 0x42;
inline constexpr std::size_t kPasswordBytes = 40;
inline constexpr std::size_t kBuild = 0x6A;
inline constexpr std::size_t kSortOrder = 0x6E;
inline constexpr std::size_t kSortVersion = 0x71;
inline constexpr std::size_t kCreationDate = 0x72;
inline constexpr std::size_t kSidKeyEnd = 0x80;
inline constexpr std::size_t kConstant = 0x98;
inline constexpr std::uint32_t kConstantValue = 1620;
inline constexpr std::size_t kVersionText = 0x9C;
inline constexpr std::uint32_t kVersionTextValue = 0x00302E34;  // "4.0"
inline constexpr std::size_t kCommitWords = 0xE00;
inline constexpr std::size_t kCommitWordBytes = 0x200;
inline constexpr std::uint16_t kCommitWordAtRest = 0x0100;
inline constexpr std::uint16_t kFirstCommitWord = 0x0101;  // of the exclusive user: one further
}  // namespace header

namespace data {  // pages of kind 1
inline constexpr std::size_t kFree = 2;
inline constexpr std::size_t kOwner = 4;
inline constexpr std::size_t kStamp = 8;
inline constexpr std::size_t kSlotCount = 12;
inline constexpr std::size_t kSlots = 14;
inline constexpr std::uint16_t kOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kMovedFlag = 0x4000;  // the slot holds a pointer to the row
inline constexpr std::uint16_t kBodyFlag = 0x8000;   // the row of a pointer elsewhere
inline constexpr std::uint16_t kDeletedFlags = 0xC000;
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
inline constexpr std::uint32_t kUsageMapOwner = 0;
inline constexpr std::size_t kMaxSlots = 255;
inline constexpr std::size_t kEmptyFree = kPageSize - kSlots;
inline constexpr std::size_t kMaxRow = 4060;
inline constexpr std::size_t kMinRow = 4;  // a row must be able to become a pointer
}  // namespace data

namespace usage {
inline constexpr std::uint8_t kInline = 0;
inline constexpr std::uint8_t kReference = 1;
inline constexpr std::size_t kStart = 1;
inline constexpr std::size_t kBitmap = 5;    // inline
inline constexpr std::size_t kPointers = 1;  // of references
inline constexpr std::size_t kPointer = 4;
inline constexpr std::size_t kDefaultRow = 69;
inline constexpr std::size_t kPagePrefix = 4;  // 05 01 00 00
inline constexpr std::uint32_t kPagesPerBitmap = 8 * (kPageSize - kPagePrefix);
inline constexpr std::size_t kMaxBitmaps = (kMaxPages + kPagesPerBitmap - 1) / kPagesPerBitmap;
}  // namespace usage

namespace tdef {
inline constexpr std::size_t kFree = 2;             // Jet 3: kJet3Mark
inline constexpr std::uint16_t kJet3Mark = 0x4356;  // "VC"
inline constexpr std::size_t kNext = 4;
inline constexpr std::size_t kPageHeader = 8;  // repeated on continuation pages
inline constexpr std::size_t kLength = 8;
inline constexpr std::size_t kMagic = 12;
inline constexpr std::uint32_t kMagicValue = 1625;
inline constexpr std::uint32_t kIndexMagicValue = 1923;
inline constexpr std::size_t kRowCount = 16;
inline constexpr std::size_t kLastAutoNumber = 20;
inline constexpr std::size_t kAutoNumberFlag = 24;
// Bytes 28..39 are filler that the original engine leaves uninitialised. On the definition of
// MSysObjects the engine keeps its change counter there.
inline constexpr std::size_t kFiller = 28;
inline constexpr std::size_t kKind = 40;
inline constexpr std::uint8_t kUserTable = 0x4E;
inline constexpr std::uint8_t kSystemTable = 0x53;
inline constexpr std::size_t kMaxColumns = 41;
inline constexpr std::size_t kVariableColumns = 43;
inline constexpr std::size_t kColumns = 45;
inline constexpr std::size_t kLogicalIndexes = 47;
inline constexpr std::size_t kRealIndexes = 51;
inline constexpr std::size_t kOwnedMap = 55;
inline constexpr std::size_t kFreeMap = 59;
inline constexpr std::size_t kFixedHeader = 63;
inline constexpr std::size_t kIndexStatistics = 12;  // per real index: u32, u32 distinct keys, u32
inline constexpr std::size_t kColumnRecord = 25;
inline constexpr std::size_t kRealIndexRecord = 52;
inline constexpr std::size_t kLogicalIndexRecord = 28;
inline constexpr std::size_t kKeyColumns = 10;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;

inline constexpr std::uint8_t kFlagFixed = 0x01;
inline constexpr std::uint8_t kFlagNullable = 0x02;
inline constexpr std::uint8_t kFlagAutoNumber = 0x04;
inline constexpr std::uint8_t kFlagSystem = 0x10;
inline constexpr std::uint8_t kFlagSid = 0x20;
inline constexpr std::uint8_t kFlagAutoGuid = 0x40;
inline constexpr std::uint8_t kExtCompressed = 0x01;

inline constexpr std::uint8_t kIndexUnique = 0x01;
inline constexpr std::uint8_t kIndexIgnoreNulls = 0x02;
inline constexpr std::uint8_t kIndexRequired = 0x08;
inline constexpr std::uint8_t kIndexAlways = 0x80;

namespace column {  // within a column record
inline constexpr std::size_t kType = 0;
inline constexpr std::size_t kMagic = 1;
inline constexpr std::size_t kNumber = 5;
inline constexpr std::size_t kVariableIndex = 7;
inline constexpr std::size_t kOrdinal = 9;
inline constexpr std::size_t kLcid = 11;  // u16; numeric columns: u8 precision, u8 scale
inline constexpr std::size_t kScale = 12;
inline constexpr std::size_t kSortVersion = 14;
inline constexpr std::size_t kFlags = 15;
inline constexpr std::size_t kExtFlags = 16;
inline constexpr std::size_t kFixedOffset = 21;  // garbage for variable columns
inline constexpr std::size_t kLength = 23;
}  // namespace column

namespace real_index {  // within a real-index record
inline constexpr std::size_t kMagic = 0;
inline constexpr std::size_t kKeys = 4;  // 10 x (u16 column number, u8 1 = ascending)
inline constexpr std::size_t kKeyBytes = 3;
inline constexpr std::size_t kKeyOrder = 2;
inline constexpr std::size_t kMap = 34;
inline constexpr std::size_t kRoot = 38;
inline constexpr std::size_t kFiller = 42;  // uninitialised u32
inline constexpr std::size_t kFlags = 46;
}  // namespace real_index

namespace logical_index {  // within a logical-index record
inline constexpr std::size_t kMagic = 0;
inline constexpr std::size_t kNumber = 4;
inline constexpr std::size_t kRealIndex = 8;
inline constexpr std::size_t kRelationSide = 12;
inline constexpr std::size_t kOtherIndex = 13;
inline constexpr std::size_t kOtherTable = 17;
inline constexpr std::size_t kCascadeUpdate = 21;
inline constexpr std::size_t kCascadeDelete = 22;
inline constexpr std::size_t kType = 23;
}  // namespace logical_index

inline constexpr std::size_t kDistinctKeys = 4;  // within an index's statistics
}  // namespace tdef

namespace index {  // pages of kind 3 and 4
inline constexpr std::size_t kFree = 2;
inline constexpr std::size_t kOwner = 4;
inline constexpr std::size_t kPrevious = 12;
inline constexpr std::size_t kNext = 16;
inline constexpr std::size_t kTail = 20;
inline constexpr std::size_t kPrefix = 24;
inline constexpr std::size_t kLevel = 26;
inline constexpr std::size_t kBitmap = 27;
inline constexpr std::size_t kBitmapBytes = 453;
inline constexpr std::size_t kEntries = 480;
inline constexpr std::size_t kEntryBytes = kPageSize - kEntries;  // 3616
inline constexpr std::size_t kRowPointer = 4;
inline constexpr std::size_t kChildPointer = 4;
}  // namespace index

namespace long_value {
inline constexpr std::size_t kReference = 12;
inline constexpr std::size_t kRow = 4;           // within the reference
inline constexpr std::size_t kStamp = 8;         // the same
inline constexpr std::size_t kPiecePointer = 4;  // a piece of a chain begins with where the next one is
inline constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
inline constexpr std::uint32_t kInline = 0x80000000;
inline constexpr std::uint32_t kSingle = 0x40000000;
inline constexpr std::uint32_t kKindMask = 0xC0000000;
inline constexpr std::size_t kMaxInline = 64;    // bytes
inline constexpr std::size_t kMaxSingle = 4076;  // bytes
inline constexpr std::size_t kChainData = 4072;  // bytes per piece, after the 4-byte pointer
// The longest memo that is written in the short form, in characters: with the column's flag, and without.
inline constexpr std::size_t kMaxShortFlagged = 1024;
inline constexpr std::size_t kMaxShort = 32;
}  // namespace long_value

namespace properties {                                    // the property blob
inline constexpr std::uint32_t kMagicValue = 0x0032524D;  // "MR2"; in Jet 3 another one
inline constexpr std::size_t kBlockHeader = 6;            // u32 length of the whole block, u16 type
inline constexpr std::uint16_t kNameBlock = 0x80;
inline constexpr std::uint16_t kObjectBlock = 0;
inline constexpr std::uint16_t kColumnBlock = 1;
inline constexpr std::size_t kOwnerHeader = 6;  // u32 length of the header, u16 bytes of the name
inline constexpr std::size_t kValueHeader = 8;  // u16 length, u8 ddl, u8 type, u16 name, u16 bytes
}  // namespace properties

namespace text {  // of columns and memos
inline constexpr std::uint8_t kCompressedMark[] = {0xFF, 0xFE};
}  // namespace text

namespace key {  // what an index entry says of a column before its bytes
inline constexpr std::uint8_t kNullAscending = 0x00;
inline constexpr std::uint8_t kValueAscending = 0x7F;
inline constexpr std::uint8_t kValueDescending = 0x80;
inline constexpr std::uint8_t kNullDescending = 0xFF;
inline constexpr std::size_t kSegment = 8;  // bytes of binary data between two markers
inline constexpr std::uint8_t kMoreSegments = 0x09;
inline constexpr std::uint8_t kEndOfSection = 0x01;  // of texts
inline constexpr std::uint8_t kEndOfText = 0x00;
inline constexpr std::uint8_t kNoAccent = 0x02;
}  // namespace key

inline constexpr std::size_t kMaxNameCharacters = 64;
inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxIndexes = 32;          // trees of a table
inline constexpr std::size_t kMaxLogicalIndexes = 255;  // names for them, one for each relationship among them
inline constexpr std::size_t kMaxObjects = 32768;       // of a catalogue
inline constexpr std::size_t kMaxTextCharacters = 255;
inline constexpr std::uint16_t kGeneralOrder = 0x0409;  // LCID 1033; Jet 4: sort version 0
inline constexpr std::uint8_t kGeneralVersion1 = 1;

// Catalogue identifiers.
inline constexpr std::int32_t kRootContainer = 0x0F000000;
inline constexpr std::int32_t kTablesContainer = 0x0F000001;
inline constexpr std::int32_t kDatabasesContainer = 0x0F000002;
inline constexpr std::int32_t kRelationshipsContainer = 0x0F000003;
inline constexpr std::int32_t kDatabaseObject = 0x10000000;
inline constexpr std::uint32_t kSystemObjectFlags = 0x80000002;

}  // namespace jet::jet4
