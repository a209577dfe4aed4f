// What the second table measures: selections of the record tables, done by this component and by its peer.
#pragma once

#include <kvdb/kvdb.h>

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

// ---- The fixed data. A store of size n has n rows in each table, but for the songs.

inline constexpr std::int32_t kLargeProject = 2;  // n songs
inline constexpr std::int32_t kProject = 7;       // 100 songs, as each project from 3 to 12 has
inline constexpr std::int32_t kFirstSmallProject = 100;
inline constexpr std::int32_t kSmallProjects = 1000;  // 10 songs each
inline constexpr std::int32_t kSongsOfProject = 100;
inline constexpr std::int32_t kDays = 3650;  // over which sessions and bookings spread
inline constexpr std::int32_t kStockTypes = 100;
inline constexpr std::int32_t kLinesOfInvoice = 10;
inline constexpr std::int32_t kGearCategories = 1000;

SongInfo sample_song(std::int32_t project, std::int32_t n);
ClientInfo sample_client(std::int32_t n);
SessionInfo sample_session(std::int32_t n);
BookingInfo sample_booking(std::int32_t n);
StockInfo sample_stock(std::int32_t n);
SupplyAct sample_supply(std::int32_t n);
StockTypeInfo sample_stock_type(std::int32_t n);
InvParamsInfo sample_line(std::int32_t n);
GearInfo sample_gear(std::int32_t n);
// Midnight of a day of the fixed data, from 0 on.
CTime sample_day(std::int32_t day);

class RecordStore {
public:
    virtual ~RecordStore() = default;

    virtual void open() = 0;
    virtual void close() = 0;

    // One committed call each; false when it did not succeed.
    virtual bool add(SongInfo& song) = 0;
    virtual bool add(ClientInfo& client) = 0;
    virtual bool add(SessionInfo& session) = 0;
    virtual bool add(BookingInfo& booking) = 0;
    virtual bool add(StockInfo& stock) = 0;
    virtual bool add(SupplyAct& supply) = 0;
    virtual bool add(StockTypeInfo& type) = 0;
    virtual bool add(InvParamsInfo& line) = 0;
    virtual bool add(GearInfo& gear) = 0;
    // What is added between these need not be safe before the end.
    virtual void begin_filling() = 0;
    virtual void end_filling() = 0;

    // Deliver every row, all members each, into one record; give their number.
    virtual std::int64_t songs_of(std::int32_t project) = 0;
    virtual std::int64_t clients(std::int32_t category, const char* part_of_name) = 0;
    virtual std::int64_t sessions_within(std::int32_t first_day, std::int32_t last_day) = 0;
    virtual std::int64_t bookings_within(std::int32_t first_day, std::int32_t last_day) = 0;  // by their start
    virtual std::int64_t lines_of(std::int32_t invoice) = 0;
    // The first piece of gear of that category whose model holds the text.
    virtual bool find_gear(std::int32_t category, const char* part_of_model) = 0;
    // Purchases less hand-outs of a type, stored in the type's row.
    virtual bool compute_in_stock(std::int32_t type, std::int32_t& in_stock) = 0;
};

// Both keep their files in `folder`, which exists.
std::unique_ptr<RecordStore> make_kvdb_record_store(const std::string& folder);
std::unique_ptr<RecordStore> make_sqlite_record_store(const std::string& folder);

// The measuring process, and the table of its figures for stores of `size`.
int measure_records(const std::string& kind, std::int32_t size, const std::string& folder);
void print_record_table(const char* program, std::int32_t size, const std::string& folder);

// The mode of the measuring process.
inline constexpr const char* kMeasureRecords = "--measure-records";

}  // namespace bench
