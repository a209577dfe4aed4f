// The second table of figures: selections of the record tables at one size, and their ratio to the peer.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>

#include "bench/jet3_studio.h"
#include "bench/measure.h"
#include "bench/record_store.h"

namespace bench {
namespace {

constexpr const char* kOperations[] = {
    "AddSong, project of 10",   "AddSong, large project",  "songs of a project",
    "clients by cat. and name", "sessions within 10 days", "bookings, 10 days",
    "ComputeInStock",           "lines of an invoice",     "FindGear by filter",
};
constexpr std::int32_t kSpan = 10;  // days

template <class Sample>
void fill_table(RecordStore& store, std::int32_t count, const char* what, Sample&& sample) {
    for (std::int32_t n = 0; n < count; ++n) {
        auto record = sample(n);
        require(store.add(record), what);
    }
}

void fill(RecordStore& store, std::int32_t size) {
    store.begin_filling();
    fill_table(store, 10 * kSmallProjects, "small projects",
               [](std::int32_t n) { return sample_song(kFirstSmallProject + n % kSmallProjects, n); });
    fill_table(store, size, "large project", [](std::int32_t n) { return sample_song(kLargeProject, n); });
    fill_table(store, 10 * kSongsOfProject, "projects", [](std::int32_t n) { return sample_song(3 + n % 10, n); });
    fill_table(store, size, "clients", sample_client);
    fill_table(store, size, "sessions", sample_session);
    fill_table(store, size, "bookings", sample_booking);
    fill_table(store, size, "stock", sample_stock);
    fill_table(store, size, "supply", sample_supply);
    fill_table(store, kStockTypes, "stock types", [](std::int32_t n) { return sample_stock_type(n); });
    fill_table(store, size, "lines", sample_line);
    fill_table(store, size, "gear", sample_gear);
    store.end_filling();
}

// How many of the rows 0 to size - 1 have a day of the span.
std::int64_t rows_within(std::int32_t size, std::int32_t first_day) {
    std::int64_t rows = 0;
    for (std::int32_t n = 0; n < size; ++n) rows += n % kDays >= first_day && n % kDays <= first_day + kSpan - 1;
    return rows;
}

}  // namespace

int measure_records(const std::string& kind, std::int32_t size, const std::string& folder) {
    if (kind == kJet3) make_jet3_studio(folder);
    const auto store = kind == "sqlite" ? make_sqlite_record_store(folder) : make_kvdb_record_store(folder);
    store->open();
    tell("seconds to fill", seconds_of([&] { fill(*store, size); }));

    std::mt19937 random(11);
    const auto below = [&](std::int32_t count) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count));
    };
    const auto add_song = [&](std::int32_t project) {
        SongInfo song = sample_song(project, below(size));
        return seconds_of([&] { require(store->add(song), "AddSong"); });
    };
    const std::int32_t first_day = std::min(size, kDays) / 2;
    const std::int64_t within = rows_within(size, first_day);
    const std::int64_t clients = store->clients(5, "number 00");
    require(clients > 0, "clients");
    // One song a repetition for each of the small projects, so that they stay small.
    std::int32_t calls = 0;
    add_benchmark(kOperations[0], kSmallProjects,
                  [&] { return add_song(kFirstSmallProject + calls++ % kSmallProjects); });
    add_benchmark(kOperations[1], kSmallProjects, [&] { return add_song(kLargeProject); });
    add_benchmark(kOperations[2], 100,
                  [&] { return seconds_of([&] { require(store->songs_of(kProject) == kSongsOfProject, "songs"); }); });
    add_benchmark(kOperations[3], 5, [&, clients] {
        return seconds_of([&] { require(store->clients(5, "number 00") == clients, "clients"); });
    });
    add_benchmark(kOperations[4], 20, [&, first_day, within] {
        return seconds_of(
            [&] { require(store->sessions_within(first_day, first_day + kSpan - 1) == within, "sessions"); });
    });
    add_benchmark(kOperations[5], 20, [&, first_day, within] {
        return seconds_of(
            [&] { require(store->bookings_within(first_day, first_day + kSpan - 1) == within, "bookings"); });
    });
    const std::int32_t types = std::min(size, kStockTypes);  // of which something was bought
    add_benchmark(kOperations[6], 20, [&, types] {
        std::int32_t in_stock = 0;
        const double seconds =
            seconds_of([&] { require(store->compute_in_stock(1 + below(types), in_stock), "ComputeInStock"); });
        // Every purchase of the fixed data is one more than the hand-out of its number.
        require(in_stock > 0, "in stock");
        return seconds;
    });
    add_benchmark(kOperations[7], 200, [&] {
        const std::int32_t invoice = 1 + below(size / kLinesOfInvoice);
        return seconds_of([&] { require(store->lines_of(invoice) == kLinesOfInvoice, "lines"); });
    });
    add_benchmark(kOperations[8], 50, [&] {
        const std::int32_t n = below(size);
        const GearInfo gear = sample_gear(n);
        return seconds_of([&] { require(store->find_gear(gear.CategoryID, gear.Model.GetString() + 6), "FindGear"); });
    });
    run_benchmarks();
    store->close();
    tell_peak();
    return 0;
}

void print_record_table(const char* program, std::int32_t size, const std::string& folder) {
    const std::filesystem::path place = folder;
    std::fprintf(stderr, "measuring tables of %d rows ...\n", size);
    Figures ours = run_child(program, kMeasureRecords, kOurs, size, place / kOurs);
    Figures jet3 = run_child(program, kMeasureRecords, kJet3, size, place / kJet3);
    Figures peers = run_child(program, kMeasureRecords, "sqlite", size, place / "sqlite");
    std::printf("\noperations a second; an enumeration with all its rows is one operation\n\n");
    std::printf("%-26s | %16s | %16s | %7s | %16s | %7s\n", ("tables of " + std::to_string(size) + " rows").c_str(),
                "kvdb", "SQLite, indexed", "ratio", "kvdb, Jet 3", "ratio");
    for (const char* operation : kOperations) {
        const double peer = peers[operation];
        std::printf("%-26s | %16.0f | %16.0f | %7.2f | %16.0f | %7.2f\n", operation, ours[operation], peer,
                    ours[operation] / peer, jet3[operation], jet3[operation] / peer);
    }
    const double peak = peers["peak"];
    std::printf("%-26s | %13.1f MB | %13.1f MB | %7.2f | %13.1f MB | %7.2f\n", "peak memory", ours["peak"] / 1e6,
                peak / 1e6, ours["peak"] / peak, jet3["peak"] / 1e6, jet3["peak"] / peak);
}

}  // namespace bench
