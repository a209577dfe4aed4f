// Helpers shared by the operations on the component's own rows.
#pragma once

#include <string>
#include <utility>

#include "afx/dao_recordset.h"
#include "afx/engine_errors.h"

namespace db {

// Whether the work ran out of memory; then no part of it may be kept.
inline bool is_lack_of_memory(const CDaoException& error) {
    return error.m_pErrorInfo->m_lErrorCode == afx::errors::kOutOfMemory;
}

// Runs `work`; false when it throws an engine error, which is deleted. Out-of-memory errors propagate.
template <class Work>
[[nodiscard]] bool succeeds(Work&& work) {
    try {
        work();
        return true;
    } catch (CDaoException* e) {
        if (is_lack_of_memory(*e)) throw;
        e->Delete();
        return false;
    }
}

// Runs `work`; ignores an engine error.
template <class Work>
void attempt(Work&& work) {
    static_cast<void>(succeeds(std::forward<Work>(work)));
}

// Runs independent pieces of work: a failed one does not stop the others, and its error is thrown at the end.
class EachForItself {
public:
    EachForItself() = default;
    ~EachForItself() {
        if (first_ != nullptr) first_->Delete();
    }
    EachForItself(const EachForItself&) = delete;
    EachForItself& operator=(const EachForItself&) = delete;

    // Out-of-memory errors propagate at once.
    template <class Work>
    void run(Work&& work) {
        try {
            work();
        } catch (CDaoException* e) {
            if (is_lack_of_memory(*e)) throw;
            if (first_ == nullptr) {
                first_ = e;
            } else {
                e->Delete();
            }
        }
    }
    // Throws the first error, if there was one.
    void finish() {
        if (first_ != nullptr) throw std::exchange(first_, nullptr);
    }

private:
    CDaoException* first_ = nullptr;
};

inline COleVariant long_value(LONG value) { return COleVariant(value, VT_I4); }

inline void open_table(CDaoRecordset& rows, const char* table, int options = 0) {
    rows.Open(dbOpenDynaset, ("SELECT * FROM [" + std::string(table) + "]").c_str(), options);
}

// Calls visit(rows) on every row of the table.
template <class Visit>
void for_each_row(CDaoDatabase& database, const char* table, Visit&& visit) {
    CDaoRecordset rows(&database);
    for (open_table(rows, table, dbForwardOnly | dbReadOnly); !rows.IsEOF(); rows.MoveNext()) visit(rows);
}

// Calls visit(rows) on every row, between Edit and Update.
template <class Visit>
void edit_each_row(CDaoDatabase& database, const char* table, Visit&& visit) {
    CDaoRecordset rows(&database);
    for (open_table(rows, table); !rows.IsEOF(); rows.MoveNext()) {
        rows.Edit();
        visit(rows);
        rows.Update();
    }
}

}  // namespace db
