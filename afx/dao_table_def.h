// CDaoTableDef: a table's definition, being made or stored. CDaoFieldInfo: one field of it.
#pragma once

#include <memory>

#include "afx/dao_database.h"

// A field as the full form of CreateField takes it and GetFieldInfo gives it. The engine keeps name, type,
// size, the auto-number attribute and the zero-length flag; a required field, a default value or a
// validation rule is refused.
struct CDaoFieldInfo {
    CString m_strName;
    std::int16_t m_nType = 0;
    LONG m_lSize = 0;  // text: characters
    LONG m_lAttributes = 0;
    std::int16_t m_nOrdinalPosition = 0;
    BOOL m_bRequired = FALSE;
    BOOL m_bAllowZeroLength = FALSE;
    LONG m_lCollatingOrder = 0;
    CString m_strForeignName;
    CString m_strSourceField;
    CString m_strSourceTable;
    CString m_strValidationRule;
    CString m_strValidationText;
    CString m_strDefaultValue;
};

class CDaoTableDef : public CObject, private afx::DatabaseUser {
public:
    explicit CDaoTableDef(CDaoDatabase* database);
    ~CDaoTableDef() override;

    // Begins a new definition in memory; it is stored by Append. `attributes` 0, no source, no connect text.
    virtual void Create(const char* name, LONG attributes = 0, const char* source_table = nullptr,
                        const char* connect = nullptr);
    // Stores the new table; the definition stays open as an existing one. 3010, 3012, 3125, 3264; then
    // nothing is stored.
    virtual void Append();
    // The definition of an existing table; 3265 when there is none.
    virtual void Open(const char* name);
    // Forgets a definition that was not appended. Nothing when closed.
    virtual void Close();
    BOOL IsOpen() const { return open_ ? TRUE : FALSE; }

    // Adds a field: to a new definition in memory, to an existing table at once, in which every row then
    // reads Null (an auto-number: 1, 2, ... in row order). The short form disallows zero-length text. 3191
    // doubled name, 3259 type, 3017 text size, 3190, 3211 while a record set is open on the table. Texts and memos get
    // the format's compression flag.
    void CreateField(const char* name, short type, LONG size, LONG attributes = 0);
    void CreateField(CDaoFieldInfo& info);
    // 3265 unknown, 3280 indexed, 3211.
    void DeleteField(const char* name);
    void DeleteField(int index);

    short GetFieldCount();
    // 3265 when there is no such field.
    void GetFieldInfo(int index, CDaoFieldInfo& info);
    void GetFieldInfo(const char* name, CDaoFieldInfo& info);

    CDaoDatabase* m_pDatabase;

private:
    struct Definition;
    void database_closing() noexcept override { CDaoTableDef::Close(); }
    void database_destroyed() noexcept override { m_pDatabase = nullptr; }
    void require_open() const;

    bool open_ = false;
    std::unique_ptr<Definition> definition_;
};
