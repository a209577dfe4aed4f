// The component with all its tables, as a host has it.
#include "bench/record_store.h"
#include "tools/studio.h"

namespace bench {
namespace {

using tools::address_of;

class KvdbRecordStore final : public RecordStore {
public:
    explicit KvdbRecordStore(const std::string& folder) : studio_(folder, tools::Studio::Purpose::kUpgrade) {}

    void open() override {
        gate_ = &studio_.open();
        gear_ = &studio_.open_gear();
    }
    void close() override { studio_.close(); }

    bool add(SongInfo& song) override { return gate_->AddSong(address_of(song)) == S_OK; }
    bool add(ClientInfo& client) override { return gate_->AddClient(address_of(client)) == S_OK; }
    bool add(SessionInfo& session) override { return gate_->AddSession(address_of(session)) == S_OK; }
    bool add(BookingInfo& booking) override { return gate_->AddBooking(address_of(booking)) == S_OK; }
    bool add(StockInfo& stock) override { return gate_->AddStock(address_of(stock)) == S_OK; }
    bool add(SupplyAct& supply) override { return gate_->AddSupplyAct(address_of(supply)) == S_OK; }
    bool add(StockTypeInfo& type) override { return gate_->AddStockType(address_of(type)) == S_OK; }
    bool add(InvParamsInfo& line) override { return gate_->AddInvParams(address_of(line)) == S_OK; }
    bool add(GearInfo& gear) override { return gear_->AddGear(address_of(gear)) == S_OK; }
    void begin_filling() override {}
    void end_filling() override {}

    std::int64_t songs_of(std::int32_t project) override {
        SongInfo song;
        song.ProjID = project;
        return rows(song, &IDBgate1::EnumFirstSong, &IDBgate1::EnumNextSong);
    }
    std::int64_t clients(std::int32_t category, const char* part_of_name) override {
        ClientInfo client;
        client.CategoryID = category;
        client.SearchName = part_of_name;
        return rows(client, &IDBgate1::EnumFirstClient, &IDBgate1::EnumNextClient);
    }
    std::int64_t sessions_within(std::int32_t first_day, std::int32_t last_day) override {
        SessionExInfo session;
        session.FromDate = sample_day(first_day);
        session.ToDate = sample_day(last_day);
        session.DateFlags = 3;
        return rows(session, &IDBgate1::EnumEx_FirstSession, &IDBgate1::EnumEx_NextSession);
    }
    std::int64_t bookings_within(std::int32_t first_day, std::int32_t last_day) override {
        BookingInfo booking;
        booking.DateStart = sample_day(first_day);
        booking.DateEnd = sample_day(last_day);
        booking.ExData = 4;
        return rows(booking, &IDBgate1::EnumFirstBooking, &IDBgate1::EnumNextBooking);
    }
    std::int64_t lines_of(std::int32_t invoice) override {
        InvParamsInfo line;
        line.InvoiceID = invoice;
        return rows(line, &IDBgate1::EnumFirstInvParams, &IDBgate1::EnumNextInvParams);
    }
    bool find_gear(std::int32_t category, const char* part_of_model) override {
        GearInfo gear;
        gear.CategoryID = category;
        gear.Model = part_of_model;
        return gear_->FindGear(address_of(gear)) == S_OK;
    }
    bool compute_in_stock(std::int32_t type, std::int32_t& in_stock) override {
        LONG result = 0;
        const bool done = gate_->ComputeInStock(type, &result) == S_OK;
        in_stock = result;
        return done;
    }

private:
    using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LONG_PTR);

    template <class Record>
    std::int64_t rows(Record& record, Method first, Method next) {
        std::int64_t count = 0;
        for (HRESULT result = (gate_->*first)(address_of(record)); result == S_OK;
             result = (gate_->*next)(address_of(record))) {
            ++count;
        }
        return count;
    }

    tools::Studio studio_;
    IDBgate1* gate_ = nullptr;
    IDBGate3* gear_ = nullptr;
};

}  // namespace

std::unique_ptr<RecordStore> make_kvdb_record_store(const std::string& folder) {
    return std::make_unique<KvdbRecordStore>(folder);
}

}  // namespace bench
