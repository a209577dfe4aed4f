#include "tests/gates/model_studio.h"

#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <type_traits>
#include <utility>
#include <vector>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tests/gates/bookings_cases.h"
#include "tests/gates/contacts_cases.h"
#include "tests/gates/gear_cases.h"
#include "tests/gates/invoices_cases.h"
#include "tests/gates/projects_cases.h"
#include "tests/gates/sessions_cases.h"
#include "tests/gates/songs_cases.h"
#include "tests/gates/stock_cases.h"

namespace testing_support {
namespace {

constexpr int kStepsFromCloseToClose = 250;

CTime new_year(LONG year) { return CTime(year, 1, 1, 0, 0, 0); }
// A span of years; the rows' are 2004 to 2033.
CTime span_begins(LONG value) { return new_year(2001 + 4 * value); }
CTime span_ends(LONG value) { return new_year(2013 + 4 * value); }

Question<BookingInfo> bookings_of_a_span(bool descending) {
    return {[=](BookingInfo& filter, LONG value) {
                filter.DateStart = span_begins(value);
                filter.DateEnd = span_ends(value);
                filter.ExData = descending ? 8 : 4;
            },
            [](const BookingInfo& row, LONG value) {
                return row.DateStart >= span_begins(value) && row.DateStart <= span_ends(value);
            },
            &BookingInfo::DateStart, descending};
}

Question<InvoiceInfo> invoices_of_a_span() {
    return {[](InvoiceInfo& filter, LONG value) {
                filter.FromDate = span_begins(value);
                filter.ToDate = span_ends(value);
            },
            [](const InvoiceInfo& row, LONG value) {
                return row.Date >= span_begins(value) && row.Date <= span_ends(value);
            },
            &InvoiceInfo::Date};
}

// Computing what is in stock writes the type's price, too, and every writing of an amount deliberately loses
// the sign of its fraction.
float written_again(float amount) {
    const float whole = std::trunc(amount);
    return whole + std::abs(amount - whole);
}

// A studio, three gates to it, and a second main gate.
class ThreeGates final : public ModelStudio {
public:
    ThreeGates() {
        EXPECT_EQ(main_->OpenDB(), S_OK);
        EXPECT_EQ(second_main_->CreateDB(nullptr), S_OK);
        EXPECT_EQ(gear2_->OpenDB(), S_OK);
        EXPECT_EQ(gear3_->OpenDB(), S_OK);
        for (IDBgate1* const gate : {main_.get(), second_main_.get()}) add_main_doors(*gate);
        add_gear_doors(*gear2_);
        add_gear_doors(*gear3_);
        door(*gear2_, kPartialGearRentals, rentals_, {everything<GearRentInfo>(), equal(&GearRentInfo::ProjID)},
             &GearRentInfo::ProjID);
        door(*gear3_, kGearRentals, rentals_,
             {everything<GearRentInfo>(), equal(&GearRentInfo::ProjID), equal(&GearRentInfo::ProjID)},
             &GearRentInfo::ProjID);
    }

    const std::string& folder() const override { return host_.folder(); }
    const ModelCounts& counts() const override { return counts_; }

    void step(Random& random) override {
        const int choice = random.below(kStepsFromCloseToClose * 2);
        if (choice < 2) return close_and_open(random);
        if (choice == 2) return open_anew(random);
        if (choice == 3) return open_what_is_open(random);
        if (choice < 8) return compute_in_stock(random);
        doors_[static_cast<std::size_t>(random.below(doors_.size()))]->step(random);
    }

    void expect_all_rows() override {
        for (const auto& door : doors_) door->expect_all_rows();
    }

    void close(Random& random) override {
        switch (random.below(4)) {
            case 0: EXPECT_EQ(main_->CloseDB(), S_OK); break;
            case 1: EXPECT_EQ(second_main_->CloseDB(), S_OK); break;
            case 2: EXPECT_EQ(gear2_->CloseDB(), S_OK); break;
            default: EXPECT_EQ(gear3_->CloseDB(), S_OK);
        }
        for (const auto& door : doors_) door->closed(counts_);
    }

    void open(Random& random) override {
        switch (random.below(5)) {
            case 0: EXPECT_EQ(main_->OpenDB(), S_OK); break;
            case 1: EXPECT_EQ(second_main_->OpenDB(), S_OK); break;
            case 2: EXPECT_EQ(second_main_->CreateDB(nullptr), S_OK); break;
            case 3: EXPECT_EQ(gear2_->OpenDB(), S_OK); break;
            default: EXPECT_EQ(gear3_->OpenDB(), S_OK);
        }
    }

    // Copies the files to where the comparison with another system wants them.
    void keep_files() const override {
        const char* const folder = std::getenv("KVDB_KEEP_FILES");
        if (folder == nullptr) return;
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
            std::filesystem::copy_file(host_.file(name), std::filesystem::path(folder) / name);
        }
    }

    void expect_sound_files() const override {
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
            jet::OpenOptions options;
            options.read_only = true;
            options.ignore_password = true;
            const auto database = jet::Database::open(host_.file(name), options);
            for (const jet::Violation& violation : jet::check_structure(*database)) {
                ADD_FAILURE() << name << ": page " << violation.page << ": " << violation.rule << ": "
                              << violation.detail;
            }
        }
    }

private:
    template <class Gate, class Record>
    void door(Gate& gate, RecordCase<Gate, Record> table, const std::shared_ptr<Rows<Record>>& rows,
              std::vector<Question<Record>> questions, std::type_identity_t<LONG Record::*> parent = nullptr,
              LONG kept = 0) {
        table.parents.clear();  // the questions say whose rows they ask for
        doors_.push_back(std::make_unique<Door<Gate, Record>>(gate, std::move(table), rows, counts_,
                                                              std::move(questions), parent, kept));
    }

    void add_main_doors(IDBgate1& gate) {
        door(gate, kProjects, projects_, {everything<ProjInfo>(), equal(&ProjInfo::ClientID)}, &ProjInfo::ClientID);
        door(gate, kSongs, songs_, {everything<SongInfo>(), equal(&SongInfo::ProjID)}, &SongInfo::ProjID);
        door(gate, kTracks, tracks_, {everything<TrackInfo>(), equal(&TrackInfo::SongID)}, &TrackInfo::SongID);
        door(gate, kSessions, sessions_, {everything<SessionInfo>(), equal(&SessionInfo::ProjID)},
             &SessionInfo::ProjID);
        door(gate, kClients, clients_, {everything<ClientInfo>()});
        door(gate, kServices, services_, {everything<ServiceInfo>(), equal(&ServiceInfo::ContactID)},
             &ServiceInfo::ContactID);
        door(gate, kStock, stock_, {everything<StockInfo>(), equal(&StockInfo::TypeID)}, &StockInfo::TypeID);
        door(gate, kSupply, supply_, {everything<SupplyAct>(), equal(&SupplyAct::StockID)}, &SupplyAct::StockID);
        door(gate, kStockTypes, stock_types_, {everything<StockTypeInfo>()}, nullptr, kParents);
        door(gate, kBookings, bookings_,
             {everything<BookingInfo>(), equal(&BookingInfo::RoomID), bookings_of_a_span(false),
              bookings_of_a_span(true)},
             &BookingInfo::RoomID);
        door(gate, kInvoices, invoices_, {invoices_of_a_span()});
        door(gate, kInvoiceLines, invoice_lines_, {equal(&InvParamsInfo::InvoiceID)}, &InvParamsInfo::InvoiceID);
    }

    template <class Gate>
    void add_gear_doors(Gate& gate) {
        door(gate, gear_case<Gate>(), gear_, {everything<GearInfo>(), equal(&GearInfo::CategoryID)},
             &GearInfo::CategoryID);
        door(gate, gear_service_case<Gate>(), gear_services_,
             {everything<GearServInfo>(), equal(&GearServInfo::GearID)}, &GearServInfo::GearID);
    }

    void close_and_open(Random& random) {
        close(random);
        for (const auto& door : doors_) door->expect_nothing_works(random);
        open(random);
    }

    // The main gate's OpenDB closes what is open.
    void open_anew(Random& random) {
        EXPECT_EQ((random.below(2) == 0 ? main_ : second_main_)->OpenDB(), S_OK);
        for (const auto& door : doors_) door->closed(counts_);
    }

    // These leave an open studio, and all enumerations, alone.
    void open_what_is_open(Random& random) {
        switch (random.below(3)) {
            case 0: EXPECT_EQ(main_->CreateDB(nullptr), S_OK); break;
            case 1: EXPECT_EQ(gear2_->OpenDB(), S_OK); break;
            default: EXPECT_EQ(gear3_->OpenDB(), S_OK);
        }
    }

    void compute_in_stock(Random& random) {
        const LONG type = 1 + random.below(kParents);
        LONG in_stock = 0;
        for (const auto& [key, row] : *stock_) in_stock += row.TypeID == type ? row.Quantity : 0;
        for (const auto& [key, row] : *supply_) in_stock -= row.StockID == type ? row.Quantity : 0;
        const auto row = stock_types_->find(type);
        LONG computed = 12345;
        EXPECT_EQ(main_->ComputeInStock(type, &computed), row != stock_types_->end() ? S_OK : E_FAIL);
        EXPECT_EQ(computed, in_stock);
        if (row == stock_types_->end()) return;
        row->second.InStock = in_stock;
        row->second.ItemPrice = written_again(row->second.ItemPrice);
    }

    template <class Record>
    static std::shared_ptr<Rows<Record>> no_rows() {
        return std::make_shared<Rows<Record>>();
    }

    GateHost host_;
    ComPtr<IDBgate1> main_ = host_.create<IDBgate1>();
    ComPtr<IDBgate1> second_main_ = host_.create<IDBgate1>();
    ComPtr<IDBgate2> gear2_ = host_.create<IDBgate2>();
    ComPtr<IDBGate3> gear3_ = host_.create<IDBGate3>();
    ModelCounts counts_;
    const std::shared_ptr<Rows<ProjInfo>> projects_ = no_rows<ProjInfo>();
    const std::shared_ptr<Rows<SongInfo>> songs_ = no_rows<SongInfo>();
    const std::shared_ptr<Rows<TrackInfo>> tracks_ = no_rows<TrackInfo>();
    const std::shared_ptr<Rows<SessionInfo>> sessions_ = no_rows<SessionInfo>();
    const std::shared_ptr<Rows<ClientInfo>> clients_ = no_rows<ClientInfo>();
    const std::shared_ptr<Rows<ServiceInfo>> services_ = no_rows<ServiceInfo>();
    const std::shared_ptr<Rows<StockInfo>> stock_ = no_rows<StockInfo>();
    const std::shared_ptr<Rows<SupplyAct>> supply_ = no_rows<SupplyAct>();
    const std::shared_ptr<Rows<StockTypeInfo>> stock_types_ = no_rows<StockTypeInfo>();
    const std::shared_ptr<Rows<BookingInfo>> bookings_ = no_rows<BookingInfo>();
    const std::shared_ptr<Rows<InvoiceInfo>> invoices_ = no_rows<InvoiceInfo>();
    const std::shared_ptr<Rows<InvParamsInfo>> invoice_lines_ = no_rows<InvParamsInfo>();
    const std::shared_ptr<Rows<GearInfo>> gear_ = no_rows<GearInfo>();
    const std::shared_ptr<Rows<GearServInfo>> gear_services_ = no_rows<GearServInfo>();
    const std::shared_ptr<Rows<GearRentInfo>> rentals_ = no_rows<GearRentInfo>();
    std::vector<std::unique_ptr<AnyDoor>> doors_;
};

}  // namespace

std::unique_ptr<ModelStudio> ModelStudio::make() { return std::make_unique<ThreeGates>(); }

}  // namespace testing_support
