#include "afx/dao_recordset.h"

#include "afx/dao_error.h"
#include "afx/dao_value.h"
#include "afx/recordset_state.h"
#include "os/system.h"

namespace {

const char* text_or_empty(const char* text) { return text != nullptr ? text : ""; }

}  // namespace

CDaoRecordset::CDaoRecordset(CDaoDatabase* database) : m_pDatabase(database) { link(database); }

CDaoRecordset::~CDaoRecordset() { CDaoRecordset::Close(); }

void CDaoRecordset::Open(int type, const char* sql, int options) {
    Close();
    afx::translated([&] {
        afx::EngineDatabase& database = afx::require_open(m_pDatabase);
        const CString standard = sql != nullptr ? CString() : GetDefaultSQL();
        state_ =
            std::make_unique<afx::RecordsetState>(database, sql != nullptr ? sql : standard.GetString(), type, options);
        m_pDAORecordset = state_.get();
        link(m_pDatabase);
    });
}

void CDaoRecordset::Close() {
    m_pDAORecordset = nullptr;
    state_.reset();
}

afx::RecordsetState& CDaoRecordset::state() const {
    if (state_ == nullptr) jet::fail(jet::errors::kObjectClosed, "The record set is not open.");
    return *state_;
}

BOOL CDaoRecordset::IsBOF() const {
    return afx::translated([&] { return state().at_begin() ? TRUE : FALSE; });
}

BOOL CDaoRecordset::IsEOF() const {
    return afx::translated([&] { return state().at_end() ? TRUE : FALSE; });
}

LONG CDaoRecordset::GetRecordCount() {
    return afx::translated([&] { return static_cast<LONG>(state().record_count()); });
}

void CDaoRecordset::MoveFirst() {
    afx::translated([&] { state().move_first(); });
}

void CDaoRecordset::MoveNext() {
    afx::translated([&] { state().move_next(); });
}

int CDaoRecordset::GetFieldPosition(const char* name) const {
    return afx::translated([&] { return static_cast<int>(state().field(text_or_empty(name))); });
}

const afx::FieldExchange* CDaoRecordset::known_exchange(const void* list, std::size_t size) const {
    return afx::translated([&] { return state().fields().known(list, size); });
}

const afx::FieldExchange& CDaoRecordset::learn_exchange(const void* list,
                                                        std::span<const afx::ExchangedMember> members) const {
    return afx::translated([&]() -> const afx::FieldExchange& { return state().fields().learn(list, members); });
}

void CDaoRecordset::GetFieldValue(const char* name, COleVariant& value) {
    afx::translated([&] { state().get(state().field(text_or_empty(name)), value); });
}

void CDaoRecordset::GetFieldValue(int index, COleVariant& value) {
    afx::translated([&] { state().get(state().field(index), value); });
}

int CDaoRecordset::GetExchangedField(const afx::FieldExchange& exchange, std::size_t i) const {
    return afx::translated([&] { return exchange.field(i); });
}

std::size_t CDaoRecordset::ReadFields(const afx::FieldExchange& exchange, std::size_t from, void* record) {
    return afx::translated([&] { return state().read(exchange, from, record); });
}

COleVariant CDaoRecordset::GetFieldValue(const char* name) {
    COleVariant value;
    GetFieldValue(name, value);
    return value;
}

COleVariant CDaoRecordset::GetFieldValue(int index) {
    COleVariant value;
    GetFieldValue(index, value);
    return value;
}

void CDaoRecordset::SetFieldValue(const char* name, const COleVariant& value) {
    afx::translated([&] { state().set(state().field(text_or_empty(name)), afx::to_value(value)); });
}

void CDaoRecordset::SetFieldValue(int index, const COleVariant& value) {
    afx::translated([&] { state().set(state().field(index), afx::to_value(value)); });
}

void CDaoRecordset::SetFieldValue(const char* name, const char* text) {
    afx::translated([&] { state().set(state().field(text_or_empty(name)), os::widen(text_or_empty(text))); });
}

void CDaoRecordset::SetFieldValue(int index, const char* text) {
    afx::translated([&] { state().set(state().field(index), os::widen(text_or_empty(text))); });
}

std::size_t CDaoRecordset::WriteFields(const afx::FieldExchange& exchange, std::size_t from, const void* record) {
    return afx::translated([&] { return state().write(exchange, from, record); });
}

void CDaoRecordset::AddNew() {
    afx::translated([&] { state().add_new(); });
}

void CDaoRecordset::Edit() {
    afx::translated([&] { state().edit(); });
}

void CDaoRecordset::Update() {
    afx::translated([&] { state().update(); });
}

void CDaoRecordset::Delete() {
    afx::translated([&] { state().erase(); });
}

short CDaoRecordset::GetEditMode() const {
    return afx::translated([&] { return static_cast<short>(state().edit_mode()); });
}

COleVariant CDaoRecordset::GetBookmark() {
    return afx::translated([&] { return state().bookmark(); });
}

COleVariant CDaoRecordset::GetLastModifiedBookmark() {
    return afx::translated([&] { return state().last_modified_bookmark(); });
}

void CDaoRecordset::SetBookmark(COleVariant bookmark) {
    afx::translated([&] { state().set_bookmark(bookmark); });
}
