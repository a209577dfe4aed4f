// The two files that the component creates: every table and column is as an application expects it, and the other
// readers find in them what was written through the gate.
#include <chrono>
#include <sstream>

#include "jet/check/check.h"
#include "os/system.h"
#include "tests/frame/gate_host.h"
#include "tests/interop/agreement.h"
#include "tests/interop/expected_schema.h"
#include "tests/interop/interop_fixture.h"
#include "tests/interop/sample_values.h"

namespace interop {
namespace {

using testing_support::address_of;
using testing_support::Component;

struct ExpectedColumn {
    std::string name;
    std::string kind;
};

std::vector<ExpectedColumn> columns_of(const ExpectedTable& table) {
    std::vector<ExpectedColumn> columns;
    std::istringstream words(table.columns);
    for (ExpectedColumn column; words >> column.name >> column.kind;) {
        if (column.kind.back() == ',') column.kind.pop_back();
        columns.push_back(column);
    }
    return columns;
}

// The kind of a column in the words of the expectation.
std::string kind_of(const jet::ColumnDef& column) {
    if (column.required) return "required";
    switch (column.type) {
        case jet::ColumnType::kLong: return column.is_autonumber() ? "key" : "long";
        case jet::ColumnType::kDate: return "date";
        case jet::ColumnType::kCurrency: return "currency";
        case jet::ColumnType::kSingle: return "single";
        case jet::ColumnType::kText:
            if (column.length_bytes != 510) return "text of another size";
            return column.allow_zero_length ? "text" : "short";
        case jet::ColumnType::kMemo: return column.allow_zero_length ? "memo" : "memo that must not be empty";
        default: return "another type";
    }
}

template <std::size_t kCount>
void expect_schema(const std::vector<OurTable>& tables, const ExpectedTable (&expected)[kCount]) {
    std::vector<std::string> names, expected_names;
    for (const OurTable& table : tables) {
        if (!table.system) names.push_back(jet::to_utf8(table.def.name));
    }
    for (const ExpectedTable& table : expected) expected_names.push_back(table.name);
    ASSERT_EQ(names, expected_names);

    for (const ExpectedTable& table : expected) {
        const auto& def = std::find_if(tables.begin(), tables.end(), [&](const OurTable& ours) {
                              return jet::to_utf8(ours.def.name) == table.name;
                          })->def;
        const auto columns = columns_of(table);
        ASSERT_EQ(def.columns.size(), columns.size()) << table.name;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            EXPECT_EQ(jet::to_utf8(def.columns[i].name), columns[i].name) << table.name;
            EXPECT_EQ(kind_of(def.columns[i]), columns[i].kind) << table.name << "." << columns[i].name;
        }
        EXPECT_TRUE(def.real_indexes.empty()) << table.name;
        EXPECT_TRUE(def.logical_indexes.empty()) << table.name;
    }
}

class StudioFilesInterop : public InteropTest {
protected:
    std::string studio() const { return folder_.file("sldb.mdb"); }
    std::string invoices() const { return folder_.file("kvinvdb.mdb"); }

    // Opens both files through a gate, does the work and unloads the component.
    template <class Work>
    void with_gate(Work&& work) {
        const Component component(folder_.path());
        const auto gate = component.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        work(*gate, component);
        EXPECT_EQ(gate->CloseDB(), S_OK);
    }

    // The engine's content of a closed file; checks that it is sound and that the other readers agree.
    std::vector<OurTable> compare(const std::string& path) {
        jet::OpenOptions options;
        options.ignore_password = true;
        options.read_only = true;
        const auto database = jet::Database::open(path, options);
        for (const jet::Violation& violation : jet::check_structure(*database)) {
            ADD_FAILURE() << path << ", page " << violation.page << ", row " << violation.row << ": " << violation.rule
                          << ": " << violation.detail;
        }
        auto tables = read_with_engine(*database);
        database->close();
        compare_with_other_readers(path, tables);
        compare_definitions(path, tables);
        return tables;
    }

    // A table as mdb-reader reads it.
    ForeignTable read(const std::string& path, const std::string& table) {
        const auto file = read_with_mdb_reader(path);
        const ForeignTable* found = file ? file->find_table(table) : nullptr;
        EXPECT_TRUE(found) << table;
        return found ? *found : ForeignTable();
    }
};

// The value of a row in a column, by name.
Field field(const ForeignTable& table, std::size_t row, const std::string& column) {
    const auto position = table.find_column(column);
    if (!position || row >= table.rows.size()) return "no such value";
    return table.rows[row][*position];
}

TEST_F(StudioFilesInterop, new_files_have_the_expected_tables_and_columns) {
    with_gate([](IDBgate1&, const Component&) {});
    expect_schema(compare(studio()), kStudioTables);
    expect_schema(compare(invoices()), kInvoiceTables);
    EXPECT_EQ(std::size(kStudioTables), 34u);
    EXPECT_EQ(std::size(kInvoiceTables), 3u);
    EXPECT_FALSE(std::filesystem::exists(studio() + "-journal"));
}

TEST_F(StudioFilesInterop, new_files_have_passwords_of_their_own) {
    with_gate([](IDBgate1&, const Component&) {});
    const auto main = read_with_mdb_reader(studio());
    const auto invoice = read_with_mdb_reader(invoices());
    ASSERT_TRUE(main && invoice);
    ASSERT_TRUE(main->password && invoice->password);
    EXPECT_NE(*main->password, *invoice->password);
    // The password that the other reader finds opens the file.
    jet::OpenOptions options;
    EXPECT_EQ(error_number([&] { jet::Database::open(studio(), options); }), jet::errors::kWrongPassword);
    options.password = jet::from_utf8(*main->password);
    EXPECT_EQ(error_number([&] { jet::Database::open(studio(), options)->close(); }), 0);
}

TEST_F(StudioFilesInterop, projects_written_through_the_gate_read_back_equal_in_other_readers) {
    const std::size_t note_lengths[] = {0, 1, 32, 33, 64, 65, 2038, 2039, 4076, 8200, 100000};
    const auto narrow_text = [](std::uint32_t number, std::size_t characters) {
        return os::narrow(text_of(2 * number, characters));  // even: umlauts, and only characters of every code page
    };
    const auto wide_form = [](const std::string& narrow) { return jet::to_utf8(os::widen(narrow)); };
    constexpr std::uint32_t kCount = 60;
    with_gate([&](IDBgate1& gate, const Component&) {
        for (std::uint32_t i = 0; i < kCount; ++i) {
            ProjInfo project;
            project.Name = narrow_text(i, 1 + i * 4).c_str();
            project.Client = os::narrow(u"M\u00fcller & S\u00f6hne").c_str();
            project.ClientID = static_cast<LONG>(i) - 30;
            project.Folder = "";
            project.ProjCreateDate = CTime(1970 + static_cast<int>(i), 1 + static_cast<int>(i % 12), 17, 0, 0, 0);
            project.DiscountVal = i % 2 ? -12.25f : 1e6f;
            project.Notes = narrow_text(i, note_lengths[i % std::size(note_lengths)]).c_str();
            ASSERT_EQ(gate.AddProj(address_of(project)), S_OK) << i;
        }
        for (LONG id = 3; id < 60; id += 7) ASSERT_EQ(gate.DeleteProj(id), S_OK) << id;
    });
    compare(studio());
    compare(invoices());

    const ForeignTable projects = read(studio(), "Projects");
    std::size_t row = 0;
    for (std::uint32_t i = 0; i < kCount; ++i) {
        const LONG id = static_cast<LONG>(i) + 1;
        if (id >= 3 && (id - 3) % 7 == 0) continue;
        EXPECT_EQ(field(projects, row, "ProjID"), std::to_string(id));
        EXPECT_EQ(field(projects, row, "Name"), wide_form(narrow_text(i, 1 + i * 4)));
        EXPECT_EQ(field(projects, row, "Client"), "M\u00fcller & S\u00f6hne");
        EXPECT_EQ(field(projects, row, "ClientID"), std::to_string(id - 31));
        EXPECT_EQ(field(projects, row, "Folder"), "");
        EXPECT_EQ(field(projects, row, "Notes"), wide_form(narrow_text(i, note_lengths[i % std::size(note_lengths)])));
        const Field amount = field(projects, row, "DiscountVal");
        // Amounts of records: the fraction counts upward from the whole part, below zero as well.
        EXPECT_EQ(amount ? std::stod(*amount) : 0, i % 2 ? -12 + 0.25 : 1e6);
        // A calendar date, in every time zone: the reader gives it as milliseconds since 1970.
        const auto day =
            std::chrono::sys_days(std::chrono::year{1970 + static_cast<int>(i)} / static_cast<int>(1 + i % 12) / 17);
        const Field created = field(projects, row, "ProjCreateDate");
        EXPECT_EQ(created.value_or(""), std::to_string(std::chrono::milliseconds(day.time_since_epoch()).count())) << i;
        ++row;
    }
    EXPECT_EQ(projects.rows.size(), row);
}

TEST_F(StudioFilesInterop, rows_of_both_files_written_through_gates_read_back_equal_in_other_readers) {
    with_gate([](IDBgate1& gate, const Component& component) {
        for (int i = 0; i < 40; ++i) {
            SongInfo song;
            song.ProjID = 1 + i % 3;
            song.Name = "Song";
            song.Artist = os::narrow(u"Bj\u00f6rk").c_str();
            song.SongFile = os::narrow(text_of(0, 100u * static_cast<std::size_t>(i))).c_str();
            ASSERT_EQ(gate.AddSong(address_of(song)), S_OK);
            InvoiceInfo invoice;
            invoice.InvoiceID = 1000 + i;
            invoice.ClientName = "Client";
            invoice.Date = CTime(2038 - i, 1, 18, 0, 0, 0);
            invoice.SubTotal = 99.5f * static_cast<float>(i);
            invoice.Total = -0.25f * static_cast<float>(i);
            invoice.Balance = 0.1f * static_cast<float>(i);
            ASSERT_EQ(gate.AddInvoice(address_of(invoice)), S_OK);
        }
        const auto gear_gate = component.create<IDBgate2>();
        ASSERT_EQ(gear_gate->OpenDB(), S_OK);
        GearInfo gear;
        gear.Manufacturer = os::narrow(u"Ger\u00e4tebau").c_str();
        gear.Cost = 1234.5f;
        ASSERT_EQ(gear_gate->AddGear(address_of(gear)), S_OK);
    });
    compare(studio());
    compare(invoices());
    const ForeignTable songs = read(studio(), "Songs");
    ASSERT_EQ(songs.rows.size(), 40u);
    EXPECT_EQ(field(songs, 39, "Artist"), "Bj\u00f6rk");
    EXPECT_EQ(field(songs, 39, "SongFile"), jet::to_utf8(text_of(0, 3900)));
    const ForeignTable written = read(invoices(), "Invoices");
    ASSERT_EQ(written.rows.size(), 40u);
    EXPECT_EQ(field(written, 4, "InvoiceID"), "1004");
    EXPECT_EQ(field(written, 4, "SubTotal"), "398.0000");
    EXPECT_EQ(field(written, 4, "Total"), "-1.0000");
    const ForeignTable gear = read(studio(), "Gear");
    ASSERT_EQ(gear.rows.size(), 1u);
    EXPECT_EQ(field(gear, 0, "Manufacturer"), "Ger\u00e4tebau");
    EXPECT_EQ(field(gear, 0, "Cost"), "1234.5");
}

}  // namespace
}  // namespace interop
