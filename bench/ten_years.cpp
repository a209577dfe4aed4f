// A studio of ten years: it is opened, a day's work is done in it, and it is closed.
#include <filesystem>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "bench/measure.h"
#include "bench/ten_years_stores.h"
#include "bench/whole_studio.h"

namespace bench {
namespace {

template <class Store>
void fill_ten_years(Store& store) {
    store.begin_filling();
    for (const StudioNames& list : kStudioNames) {
        for (std::int32_t n = 0; n < kNamesOfList; ++n) {
            CString name;
            name.Format("Name %d", static_cast<int>(n));
            require(store.add_name(list, name), list.table);
        }
    }
    const auto fill_rows = [&](const auto& table) {
        for (std::int32_t n = 0; n < table.rows; ++n) {
            auto record = studio_row(table, n);
            // The keys are those that children refer to; a name that is there already would add nothing.
            require(store.add(table, record) && record.*table.mapping.key.member == n + 1, table.mapping.table);
        }
    };
    std::apply([&](const auto&... tables) { (fill_rows(tables), ...); }, kTenYears);
    store.end_filling();
}

// The days after the ten years. What is added belongs to what came last; what is looked up is of any year.
template <class Store>
class DaysWork {
public:
    explicit DaysWork(Store& store) : store_(store) {}

    // The seconds of a day's calls.
    double work() {
        seconds_ = 0;
        ++day_;
        add_rows<BookingInfo>(20);
        add_rows<SessionInfo>(20);
        add_rows<ParticInfo>(40);
        add_rows<SongInfo>(10);
        add_rows<TrackInfo>(60);
        add_rows<ProjPayInfo>(5);
        add_invoices(5);
        look_up_and_change<ProjInfo>(10);
        look_up_and_change<SongInfo>(10);
        look_up_and_change<ClientInfo>(10);
        look_up_and_change<BookingInfo>(10);
        list_children<SongInfo>(10);
        list_children<TrackInfo>(10);
        list_children<InvParamsInfo>(10);
        for (int i = 0; i < 10; ++i) {
            const CTime day = sample_day(below(kDays));
            timed([&] { rows_listed_ += store_.bookings_on(day); });
        }
        return seconds_;
    }
    std::int64_t rows_listed() const { return rows_listed_; }

private:
    std::int32_t below(std::int32_t count) {
        return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(count));
    }
    template <class Call>
    void timed(Call&& call) {
        seconds_ += seconds_of(call);
    }

    template <class Record>
    void add_rows(int count) {
        const StudioTable<Record>& table = studio_table<Record>();
        for (int i = 0; i < count; ++i) {
            Record record = studio_row(table, table.rows + day_);
            record.*table.parent = table.parents - below(table.parents / 10);
            timed([&] { require(store_.add(table, record), table.mapping.table); });
        }
    }
    void add_invoices(int count) {
        const auto& lines = studio_table<InvParamsInfo>();
        for (int i = 0; i < count; ++i) {
            InvoiceInfo invoice = studio_row(studio_table<InvoiceInfo>(), kStudioInvoices + invoices_++);
            timed([&] { require(store_.add(studio_table<InvoiceInfo>(), invoice), "adding an invoice"); });
            for (int k = 0; k < kLinesOfStudioInvoice; ++k) {
                InvParamsInfo line = studio_row(lines, lines.rows + k);
                line.InvoiceID = invoice.InvoiceID;
                timed([&] { require(store_.add(lines, line), "adding a line"); });
            }
        }
    }
    template <class Record>
    void look_up_and_change(int count) {
        const StudioTable<Record>& table = studio_table<Record>();
        for (int i = 0; i < count; ++i) {
            Record record;
            record.*table.mapping.key.member = 1 + below(table.rows);
            timed([&] { require(store_.find(table, record), table.mapping.table); });
            record.Notes.Format("Notes as they are on day %d of the eleventh year.", day_);
            timed([&] { require(store_.update(table, record), table.mapping.table); });
        }
    }
    template <class Record>
    void list_children(int count) {
        const StudioTable<Record>& table = studio_table<Record>();
        for (int i = 0; i < count; ++i) {
            const std::int32_t parent = 1 + below(table.parents);
            timed([&] { rows_listed_ += store_.children(table, parent); });
        }
    }

    Store& store_;
    std::mt19937 random_{13};
    double seconds_ = 0;
    int day_ = 0;
    std::int32_t invoices_ = 0;
    std::int64_t rows_listed_ = 0;
};

template <class Store>
int measure_days(Store&& store) {
    store.create();
    fill_ten_years(store);
    store.close();
    DaysWork<Store> days(store);
    std::vector<double> opening;
    std::vector<double> working;
    std::vector<double> closing;
    for (int day = 0; day < kRepetitions; ++day) {
        opening.push_back(seconds_of([&] { store.open(); }));
        working.push_back(days.work());
        closing.push_back(seconds_of([&] { store.close(); }));
    }
    tell(kStudioOperations[2], 1 / median_of(opening));
    tell(kStudioOperations[3], 1 / median_of(working));
    tell(kStudioOperations[4], 1 / median_of(closing));
    tell("rows listed", static_cast<double>(days.rows_listed()));
    double bytes = 0;
    for (const std::string& file : store.files()) bytes += static_cast<double>(std::filesystem::file_size(file));
    tell("bytes", bytes);
    tell_peak();
    return 0;
}

}  // namespace

int measure_ten_years(const std::string& kind, const std::string& folder) {
    return kind == kOurs ? measure_days(KvdbTenYears(folder)) : measure_days(SqliteTenYears(folder));
}

}  // namespace bench
