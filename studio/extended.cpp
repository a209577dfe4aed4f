#include "studio/extended.h"

#include <algorithm>
#include <array>

#include "studio/sessions.h"
#include "studio/stock.h"

namespace studio {
namespace {

// Bits of DateFlags: which of the two dates applies.
constexpr DWORD kFromDateApplies = 1;
constexpr DWORD kToDateApplies = 2;

// The clauses, then the dates; both bounds are inclusive.
template <class Record, std::size_t kClauses>
constexpr auto within_dates(const std::array<Clause<Record>, kClauses>& clauses, const char* column) {
    std::array<Clause<Record>, kClauses + 2> all{};
    std::copy(clauses.begin(), clauses.end(), all.begin());
    all[kClauses] = filter::on_or_after(column, &Record::FromDate, &Record::DateFlags, kFromDateApplies);
    all[kClauses + 1] = filter::on_or_before(column, &Record::ToDate, &Record::DateFlags, kToDateApplies);
    return all;
}

// ---- Sessions

constexpr auto kSessionExFilter = within_dates(session_clauses<SessionExInfo>(), "RecDate");

// Deliberate: no column fills `Reserved`, so it takes the empty value of a fresh record.
HRESULT read_session(CDaoRecordset& rows, SessionExInfo& record) {
    SessionInfo row;
    const HRESULT result = read_columns(rows, kSessions.read, row);
    if (result != S_OK) return result;
    record.ProjID = row.ProjID;
    record.SessionID = row.SessionID;
    record.SongName = row.SongName;
    record.SongID = row.SongID;
    record.Engineer = row.Engineer;
    record.ArtistID = row.ArtistID;
    record.Reserved = row.Reserved;
    record.RecDate = row.RecDate;
    record.StartTime = row.StartTime;
    record.EndTime = row.EndTime;
    record.Total = row.Total;
    record.Notes = row.Notes;
    record.Client = row.Client;
    record.ClientID = row.ClientID;
    record.RoomID = row.RoomID;
    record.ExData = row.ExData;
    return S_OK;
}

// ---- Supply

constexpr auto kSupplyExFilter = within_dates(
    std::array{
        filter::equals("ClientID", &SupplyExInfo::ClientID),
        filter::equals("ProjID", &SupplyExInfo::ProjID),
        filter::equals("StockID", &SupplyExInfo::StockID),
    },
    "Date");

HRESULT read_supply(CDaoRecordset& rows, SupplyExInfo& record) {
    SupplyAct row;
    const HRESULT result = read_columns(rows, kSupply.read, row);
    if (result != S_OK) return result;
    record.ActionID = row.ActionID;
    record.StockID = row.StockID;
    record.ProjID = row.ProjID;
    record.StockName = row.StockName;
    record.StockType = row.StockType;
    record.Client = row.Client;
    record.ClientID = row.ClientID;
    record.Date = row.Date;
    record.Quantity = row.Quantity;
    record.ExData = row.ExData;
    return S_OK;
}

// ---- The custom query: no table, and no row that fills anything

constinit const TableMapping<CustomInfo> kCustomQuery{
    .null_record = NullRecord::kFailsAtOnce,
    .read_row = [](CDaoRecordset&, CustomInfo&) -> HRESULT { return S_OK; },
};

}  // namespace

constinit const TableMapping<SessionExInfo> kSessionsWithin{
    .table = "Sessions",
    .key = {"SessionID", &SessionExInfo::SessionID},
    .filter = kSessionExFilter,
    .null_record = NullRecord::kFailsAtOnce,
    .read_row = read_session,
};

constinit const TableMapping<SupplyExInfo> kSupplyWithin{
    .table = "Supply",
    .key = {"ActionID", &SupplyExInfo::ActionID},
    .filter = kSupplyExFilter,
    .null_record = NullRecord::kFailsAtOnce,
    .read_row = read_supply,
};

CustomQuery::CustomQuery(CDaoDatabase* const& database) : database_(database), rows_(kCustomQuery, database) {}

HRESULT CustomQuery::EnumFirst(CustomInfo* record, LONG type) {
    if (!is_usable(database_) || record == nullptr) return refuse_unusable(database_);
    type_ = type;
    return rows_.EnumFirst(record);
}

}  // namespace studio
