// CDaoRecordset: the rows of a statement, a current row, and an edit buffer.
//
// Membership is fixed when the set opens; values are those that a row has when they are read; rows deleted
// meanwhile by others are passed over. New rows of the set's own join it at its end.
#pragma once

#include <memory>
#include <span>

#include "afx/dao_database.h"
#include "afx/exchanged_member.h"
#include "afx/ole_variant.h"

// The engine's side of an open record set.
class DAORecordset {
public:
    virtual ~DAORecordset() = default;
};

namespace afx {
class RecordsetState;
class FieldExchange;
}  // namespace afx

class CDaoRecordset : public CObject, private afx::DatabaseUser {
public:
    explicit CDaoRecordset(CDaoDatabase* database = nullptr);
    ~CDaoRecordset() override;

    // Runs a statement (or takes a table by its name); the first row is current. Closes what was open; a
    // failure leaves the set closed. `type` and `options` decide whether the set can be changed
    // (dbReadOnly, snapshots) and scrolled back (dbForwardOnly). Every error of the statement surfaces
    // here: 3061, 3075, 3078, 3117, 3122, 3129, 3131, 3138, 3141, 3142, 3145, 3464; 3420 without an open
    // database.
    virtual void Open(int type = AFX_DAO_USE_DEFAULT_TYPE, const char* sql = nullptr, int options = 0);
    // Discards pending edits. Nothing when closed; never throws.
    virtual void Close();
    BOOL IsOpen() const { return m_pDAORecordset != nullptr; }

    // All of these throw 3420 on a closed set.
    BOOL IsBOF() const;
    BOOL IsEOF() const;
    // Rows visited so far: 0 only when the set is empty.
    LONG GetRecordCount();
    // 3021 on an empty set, 3251 on a forward-only one. Like every move it drops a pending edit.
    void MoveFirst();
    // From the last row to the end without an error; 3021 from there.
    void MoveNext();

    // 0-based position of a field; 3265.
    int GetFieldPosition(const char* name) const;

    // The current row's value, or that of the pending new or edited row. By name without regard to case, or
    // by 0-based position: 3265. 3021 without a current row, 3167 when another set has deleted it.
    virtual void GetFieldValue(const char* name, COleVariant& value);
    virtual void GetFieldValue(int index, COleVariant& value);
    virtual COleVariant GetFieldValue(const char* name);
    virtual COleVariant GetFieldValue(int index);

    // The exchange of a list of columns with the fields here, bound once for each table: whatever stands at the list's
    // address stays the same. `members_of(columns)` gives the members in their order, when they are bound.
    template <class Columns, class MembersOf>
    const afx::FieldExchange& GetFieldExchange(const Columns& columns, MembersOf&& members_of) const {
        const afx::FieldExchange* const known = known_exchange(columns.data(), columns.size());
        return known != nullptr ? *known : learn_exchange(columns.data(), members_of(columns));
    }
    // Position of the field that member number `i` of the exchange goes with; 3265.
    int GetExchangedField(const afx::FieldExchange& exchange, std::size_t i) const;
    // Takes the current row's fields into the members of `record` from number `from` of the exchange on, as the values
    // would give them, and gives the number of the first that has to go by its value; that of members when there is
    // none. 3021 and 3167 as above.
    std::size_t ReadFields(const afx::FieldExchange& exchange, std::size_t from, void* record);

    // 3020 without a pending AddNew or Edit, 3265, 3163 text too long, 3421 no conversion, 3164 an
    // auto-number; the buffer is then as it was. Zero length and Null are checked by Update.
    virtual void SetFieldValue(const char* name, const COleVariant& value);
    virtual void SetFieldValue(int index, const COleVariant& value);
    void SetFieldValue(const char* name, const char* text);
    void SetFieldValue(int index, const char* text);

    // Sets the pending row's fields from the members of `record`, as ReadFields goes the other way. A column that does
    // not take its member's value is left to its value, which says why.
    std::size_t WriteFields(const afx::FieldExchange& exchange, std::size_t from, const void* record);

    // A pending new row; its auto-number is there at once and is not given out again.
    virtual void AddNew();
    virtual void Edit();
    // Stores the pending row: 3314, 3315, 3047; the edit is then still pending. A new row does not become
    // current, an edited one stays so.
    virtual void Update();
    // Deletes the current row, which stays current but unusable.
    virtual void Delete();
    short GetEditMode() const;

    // Bookmarks are opaque, belong to this opening of this set, and copy by value. While a row is pending,
    // the last modified one is that row; moving to it changes nothing. A bookmark of a pending new row
    // denotes the stored row after Update. 3021 when there is none, 3159, 3167.
    COleVariant GetBookmark();
    COleVariant GetLastModifiedBookmark();
    void SetBookmark(COleVariant bookmark);

    virtual CString GetDefaultDBName() { return {}; }
    virtual CString GetDefaultSQL() { return {}; }

    CDaoDatabase* m_pDatabase;
    DAORecordset* m_pDAORecordset = nullptr;  // null when closed

private:
    afx::RecordsetState& state() const;
    const afx::FieldExchange* known_exchange(const void* list, std::size_t size) const;
    const afx::FieldExchange& learn_exchange(const void* list, std::span<const afx::ExchangedMember> members) const;
    void database_closing() noexcept override { CDaoRecordset::Close(); }
    void database_destroyed() noexcept override { m_pDatabase = nullptr; }

    std::unique_ptr<afx::RecordsetState> state_;
};
