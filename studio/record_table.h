// The six operations of every table of a gate, implemented once over a declaration of the table.
//
// Invariants
//  1. Every operation returns S_OK or E_FAIL; no exception escapes.
//  2. Only EnumFirst and EnumNext touch the cursor. It is created at the first enumeration, kept, and closed
//     at the end of an enumeration or the start of a new one.
//  3. Each operation calls the engine in one fixed order; the comments name where that order matters.
//  4. No reference to a record is kept after a call.
#pragma once

#include <exception>
#include <memory>
#include <span>
#include <string>

#include "afx/dao_recordset.h"
#include "db/refusal.h"
#include "studio/columns.h"
#include "studio/filter.h"

namespace studio {

enum class FindBy {
    kKey,
    kKeyOrName,        // the key if not 0, else the name if not empty, else nothing
    kFilter,           // the first row of the enumeration's statement
    kFilterOrNothing,  // as kFilter, but a record with nothing set finds nothing
};

enum class ChangeBy {
    kKey,
    kFilter,  // the first row of the enumeration's statement
};

// The rows that Add opens before it adds; it adds the new row whether or not there are any, unless stated otherwise.
enum class AddOpens {
    kWholeTable,
    kParentRows,       // those with the record's value in the parent column
    kNamedRows,        // those with the record's name
    kNamedRowsIfNone,  // the same; if there are any, nothing is added and the result is S_OK
};

// The beginning of an enumeration without a record.
enum class NullRecord {
    kEmptyStatement,  // where a filter needs one: the enumeration starts, and fails at the statement
    kWholeTable,      // the enumeration starts and fails on its first row, as where there is no filter at all
    kFailsAtOnce,     // an enumeration in progress continues undisturbed
};

// The next row of an enumeration without a record.
enum class NullNext {
    kStays,    // on the row it is on
    kMovesOn,  // the row is passed by
};

template <class Record>
struct NameColumn {
    const char* column = nullptr;
    CString Record::*member = nullptr;
};

// The declaration of a table.
template <class Record>
struct TableMapping {
    const char* table = nullptr;  // null: every statement is the empty text
    Key<Record> key = {};
    std::span<const Column<Record>> read = {};       // in read order
    std::span<const Column<Record>> write = {};      // in write order, never the key
    std::span<const Column<Record>> enum_read = {};  // for enumerations that read other columns
    std::span<const Clause<Record>> filter = {};
    FilterRule filter_rule = FilterRule::kClauses;
    NullRecord null_record = NullRecord::kEmptyStatement;
    NullNext null_next = NullNext::kStays;
    FindBy find_by = FindBy::kKey;
    ChangeBy change_by = ChangeBy::kKey;  // update and delete
    AddOpens add_opens = AddOpens::kWholeTable;
    Key<Record> parent = {};                                             // for kParentRows
    NameColumn<Record> name = {};                                        // for names in find_by and add_opens
    HRESULT (*read_row)(CDaoRecordset& rows, Record& record) = nullptr;  // for enumerations, replaces the lists

    // The statement of EnumFirst, and of every operation that uses the filter.
    std::string statement(const Record* record, WhenNothingIsSet otherwise = WhenNothingIsSet::kWholeTable) const {
        if (table == nullptr) return {};
        if (filter.empty() && filter_rule == FilterRule::kClauses) return whole_table(table);
        if (record == nullptr) return null_record == NullRecord::kWholeTable ? whole_table(table) : std::string();
        return filter_statement(table, key, filter_rule, filter, *record, otherwise);
    }
};

// Runs an operation; if it throws, runs `failed` and returns E_FAIL.
template <class Operation, class Failed>
HRESULT guarded(Operation&& operation, Failed&& failed) {
    try {
        return operation();
    } catch (CDaoException* e) {
        e->Delete();
    } catch (const std::exception&) {
        // Lack of memory outside the engine.
        db::refuse(db::Refusal::kNoMemory);
    }
    failed();
    return E_FAIL;
}

inline bool is_usable(const CDaoDatabase* database) { return database != nullptr && database->IsOpen(); }

// The refusal of a call on a database that is not open, or without a record.
inline HRESULT refuse_unusable(const CDaoDatabase* database) {
    return db::refuse(is_usable(database) ? db::Refusal::kNoRecord : db::Refusal::kNoDatabase);
}

inline constexpr int kForReading = dbForwardOnly | dbReadOnly;
inline constexpr int kForWriting = 0;

// `Rows` is the record set, for tests another one that records how it is called.
template <class Record, class Rows = CDaoRecordset>
class RecordTable {
public:
    // Both must outlive the table; the database pointer may change and may be null.
    RecordTable(const TableMapping<Record>& mapping, CDaoDatabase* const& database)
        : mapping_(mapping), database_(database) {}
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    // `record` is the filter and receives the first row. An empty result leaves the cursor open.
    HRESULT EnumFirst(Record* record) {
        if (!is_usable(database_)) return refuse_unusable(database_);
        if (record == nullptr && mapping_.null_record == NullRecord::kFailsAtOnce) return refuse_unusable(database_);
        return guarded(
            [&] {
                open_cursor();
                cursor_->Open(dbOpenDynaset, mapping_.statement(record).c_str(), kForReading);
                return cursor_->GetRecordCount() >= 1 ? deliver(record) : db::refuse(db::Refusal::kNoRows);
            },
            [&] { close_cursor(); });
    }

    // `record` is only filled. The cursor is closed before EnumFirst and after the end.
    HRESULT EnumNext(Record* record) {
        if (!is_usable(database_)) return refuse_unusable(database_);
        if (cursor_ == nullptr || !cursor_->IsOpen()) return db::refuse(db::Refusal::kNotBegun);
        if (record == nullptr && mapping_.null_next == NullNext::kStays) return refuse_unusable(database_);
        return guarded(
            [&] {
                const auto off_the_rows = [&] { return cursor_->IsBOF() || cursor_->IsEOF(); };
                if (!off_the_rows()) {
                    cursor_->MoveNext();
                    if (!off_the_rows()) return deliver(record);
                }
                cursor_->Close();
                return db::refuse(db::Refusal::kNoMoreRows);
            },
            [&] { close_cursor(); });
    }

    // A missing row leaves the record unchanged.
    HRESULT Find(Record* record) {
        if (!is_usable(database_) || record == nullptr) return refuse_unusable(database_);
        return guarded(
            [&] {
                const std::string statement = find_statement(*record);
                if (statement.empty()) return db::refuse(db::Refusal::kNoRow);
                Rows rows(database_);
                rows.Open(dbOpenDynaset, statement.c_str(), kForReading);
                if (rows.GetRecordCount() < 1) return db::refuse(db::Refusal::kNoRow, sought_key(*record));
                return read_columns(rows, mapping_.read, *record);
            },
            [] {});
    }

    // Returns the new key in the record.
    HRESULT Add(Record* record) {
        if (!is_usable(database_) || record == nullptr) return refuse_unusable(database_);
        return guarded(
            [&] {
                Rows rows(database_);
                rows.Open(dbOpenDynaset, add_statement(*record).c_str(), kForWriting);
                if (mapping_.add_opens == AddOpens::kNamedRowsIfNone && rows.GetRecordCount() >= 1) return S_OK;
                rows.AddNew();
                // Must be between AddNew and the first column: the bookmark is that of the pending row.
                rows.SetBookmark(rows.GetLastModifiedBookmark());
                const HRESULT result = write_columns(rows, mapping_.write, *record);
                // The auto-number is already in the buffer.
                read_value(rows, rows.GetFieldPosition(mapping_.key.column), record->*mapping_.key.member);
                // Deliberate: after a failed mapping the columns set before the failure are still saved. No other
                // failure gets here.
                rows.Update();
                rows.Close();
                return saved(result);
            },
            [] {});
    }

    HRESULT Update(Record* record) {
        if (!is_usable(database_) || record == nullptr) return refuse_unusable(database_);
        return guarded(
            [&] {
                Rows rows(database_);
                rows.Open(dbOpenDynaset, change_statement(*record).c_str(), kForWriting);
                if (rows.GetRecordCount() < 1) return db::refuse(db::Refusal::kNoRow, changed_key(*record));
                rows.Edit();
                rows.SetBookmark(rows.GetLastModifiedBookmark());
                const HRESULT result = write_columns(rows, mapping_.write, *record);
                rows.Update();  // even after a failed mapping, as in Add
                rows.Close();
                return saved(result);
            },
            [] {});
    }

    HRESULT Delete(LONG key) { return delete_first(rows_where(mapping_.table, mapping_.key.column, key), key); }

    // By the record's key, or by its filter if the table uses that.
    HRESULT Delete(const Record* record) {
        if (!is_usable(database_) || record == nullptr) return refuse_unusable(database_);
        return guarded([&] { return delete_first(change_statement(*record), changed_key(*record)); }, [] {});
    }

    // Closes and frees the cursor.
    void ReleaseCursor() {
        close_cursor();
        cursor_.reset();
    }

    // For words about a failure: the table's name, null where it has none, and whether its rows are in that database.
    const char* table() const { return mapping_.table; }
    bool is_in(CDaoDatabase* const& database) const { return &database_ == &database; }

private:
    void open_cursor() {
        if (cursor_ != nullptr && cursor_->m_pDatabase == database_) return close_cursor();
        ReleaseCursor();
        cursor_ = std::make_unique<Rows>(database_);
    }
    void close_cursor() {
        if (cursor_ != nullptr && cursor_->IsOpen()) cursor_->Close();
    }

    HRESULT deliver(Record* record) {
        if (record == nullptr) return refuse_unusable(database_);
        if (mapping_.read_row != nullptr) return mapping_.read_row(*cursor_, *record);
        return read_columns(*cursor_, mapping_.enum_read.empty() ? mapping_.read : mapping_.enum_read, *record);
    }

    std::string key_statement(const Record& record) const {
        return rows_where(mapping_.table, mapping_.key.column, record.*mapping_.key.member);
    }
    std::string name_statement(const Record& record) const {
        return rows_named(mapping_.table, mapping_.name.column, record.*mapping_.name.member);
    }

    std::string find_statement(const Record& record) const {
        switch (mapping_.find_by) {
            case FindBy::kKey: return key_statement(record);
            case FindBy::kKeyOrName:
                if (record.*mapping_.key.member != 0) return key_statement(record);
                return (record.*mapping_.name.member).IsEmpty() ? std::string() : name_statement(record);
            case FindBy::kFilter: return mapping_.statement(&record);
            case FindBy::kFilterOrNothing: return mapping_.statement(&record, WhenNothingIsSet::kNoRows);
        }
        return {};
    }
    std::string change_statement(const Record& record) const {
        return mapping_.change_by == ChangeBy::kFilter ? mapping_.statement(&record) : key_statement(record);
    }
    std::string add_statement(const Record& record) const {
        switch (mapping_.add_opens) {
            case AddOpens::kWholeTable: break;
            case AddOpens::kParentRows:
                return rows_where(mapping_.table, mapping_.parent.column, record.*mapping_.parent.member);
            case AddOpens::kNamedRows:
            case AddOpens::kNamedRowsIfNone: return name_statement(record);
        }
        return whole_table(mapping_.table);
    }

    // The key of a row that is not there, where one was asked for; else 0.
    LONG sought_key(const Record& record) const {
        const bool by_key = mapping_.find_by == FindBy::kKey || mapping_.find_by == FindBy::kKeyOrName;
        return by_key ? record.*mapping_.key.member : 0;
    }
    LONG changed_key(const Record& record) const {
        return mapping_.change_by == ChangeBy::kKey ? record.*mapping_.key.member : 0;
    }

    // What the columns' mapping gave, of a row that has been saved.
    static HRESULT saved(HRESULT mapped) { return mapped == S_OK ? S_OK : db::refuse(db::Refusal::kSavedInPart); }

    HRESULT delete_first(const std::string& statement, LONG key) {
        if (!is_usable(database_)) return refuse_unusable(database_);
        return guarded(
            [&] {
                Rows rows(database_);
                rows.Open(dbOpenDynaset, statement.c_str(), kForWriting);
                if (rows.GetRecordCount() < 1) return db::refuse(db::Refusal::kNoRow, key);
                rows.MoveFirst();
                rows.Delete();
                rows.Close();
                return S_OK;
            },
            [] {});
    }

    const TableMapping<Record>& mapping_;
    CDaoDatabase* const& database_;
    std::unique_ptr<Rows> cursor_;
};

}  // namespace studio
