// Shows that the exchange of fields gives what going through values gives: for every member of a record, both ways, for
// records and rows made at random.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>

#include "jet/base/jet4.h"
#include "studio/record_table.h"
#include "tests/studio/studio_test_support.h"

class BothWays : public StudioTest {
protected:
    BothWays() {
        invoices_.Create(path("invoices.mdb").c_str());
        db::create_tables(invoices_, db::invoice_tables());
        db::create_tables(invoices_, std::span(&db::engineers_table(), 1));
    }

    // As the exchange maps them, but each column by its value.
    template <class Record>
    static HRESULT read_values(CDaoRecordset& rows, std::span<const studio::Column<Record>> columns, Record& record) {
        return studio::mapped([&] {
            for (const auto& column : columns) {
                studio::read_by_value(rows, rows.GetFieldPosition(column.name), column, record);
            }
        });
    }
    template <class Record>
    static HRESULT write_values(CDaoRecordset& rows, std::span<const studio::Column<Record>> columns,
                                const Record& record) {
        return studio::mapped([&] {
            for (const auto& column : columns) {
                studio::write_by_value(rows, rows.GetFieldPosition(column.name), column, record);
            }
        });
    }

    template <class Record>
    void compare(const studio::TableMapping<Record>& mapping, int rounds = 60) {
        SCOPED_TRACE(mapping.table);
        for (const auto columns : {mapping.read, mapping.enum_read, mapping.write}) {
            if (!columns.empty()) compare_lists(database_with(mapping.table), mapping.table, columns, rounds);
        }
    }

    // Adds and changes rows of records made at random in a file and in its twin, in one through the exchange and in the
    // other by values.
    template <class Record>
    void write_both(const studio::TableMapping<Record>& mapping, int rounds = 40) {
        SCOPED_TRACE(mapping.table);
        open_twins();
        CDaoDatabase& file = database_with(mapping.table);
        CDaoRecordset exchanged(&file);
        CDaoRecordset valued(&file == &file_ ? &twin_ : &invoice_twin_);
        int rows = 0;
        for (int round = 0; round < rounds; ++round) {
            Record record;
            for (const auto& column : mapping.write) {
                studio::visit_member(column, record, [&](auto& m) { make_up(m); });
            }
            const int changed = below(2) == 0 || rows == 0 ? -1 : static_cast<int>(below(rows));
            for (CDaoRecordset* set : {&exchanged, &valued}) {
                set->Open(dbOpenDynaset, mapping.table, 0);
                for (int i = 0; i < changed; ++i) set->MoveNext();
                changed < 0 ? set->AddNew() : set->Edit();
            }
            EXPECT_EQ(studio::write_columns(exchanged, mapping.write, record),
                      write_values(valued, mapping.write, record));
            const int failure = error_of([&] { exchanged.Update(); });
            EXPECT_EQ(error_of([&] { valued.Update(); }), failure) << "round " << round;
            if (failure == 0 && changed < 0) ++rows;
        }
        EXPECT_GT(rows, 0);
    }
    void expect_same_files() {
        for (CDaoDatabase* file : {&file_, &twin_, &invoices_, &invoice_twin_}) file->Close();
        EXPECT_TRUE(bytes_of("studio.mdb") == bytes_of("twin.mdb"));
        EXPECT_TRUE(bytes_of("invoices.mdb") == bytes_of("invoice_twin.mdb"));
    }

private:
    void open_twins() {
        if (twin_.IsOpen()) return;
        const auto open_twin = [&](CDaoDatabase& file, const char* name, CDaoDatabase& twin, const char* twin_name) {
            file.Close();
            std::filesystem::copy_file(path(name), path(twin_name));
            file.Open(path(name).c_str());
            twin.Open(path(twin_name).c_str());
        };
        open_twin(file_, "studio.mdb", twin_, "twin.mdb");
        open_twin(invoices_, "invoices.mdb", invoice_twin_, "invoice_twin.mdb");
    }
    // Without the change counter, which starts at random.
    std::string bytes_of(const char* name) const {
        std::ifstream file(path(name), std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        constexpr std::size_t kCounter = jet::jet4::kObjectsPage * jet::jet4::kPageSize + jet::jet4::tdef::kFiller;
        return bytes.replace(kCounter, 8, 8, '\0');
    }

    CDaoDatabase& database_with(const char* table) {
        CDaoRecordset rows(&file_);
        return error_of([&] { rows.Open(dbOpenDynaset, table, 0); }) == 0 ? file_ : invoices_;
    }

    template <class Record>
    void compare_lists(CDaoDatabase& database, const char* table, std::span<const studio::Column<Record>> columns,
                       int rounds) {
        CDaoRecordset rows(&database);
        rows.Open(dbOpenDynaset, table, 0);
        for (int round = 0; round < rounds; ++round) {
            Record record;
            for (const auto& column : columns) studio::visit_member(column, record, [&](auto& m) { make_up(m); });
            rows.AddNew();
            const HRESULT by_exchange = studio::write_columns(rows, columns, record);
            const std::vector<COleVariant> exchanged = values_of(rows);
            rows.AddNew();
            EXPECT_EQ(by_exchange, write_values(rows, columns, record));
            EXPECT_EQ(describe(exchanged), describe(values_of(rows))) << "round " << round;
            rows.AddNew();
            make_up_row(rows);
            error_of([&] { rows.Update(); });  // some columns want a value
        }
        rows.Close();
        rows.Open(dbOpenDynaset, table, dbForwardOnly | dbReadOnly);
        Record exchanged;
        Record valued;
        for (int count = 0; !rows.IsEOF(); rows.MoveNext(), ++count) {
            EXPECT_EQ(studio::read_columns(rows, columns, exchanged), read_values(rows, columns, valued));
            for (const auto& column : columns) {
                const auto text = [&](Record& of) {
                    std::string result;
                    studio::visit_member(column, of, [&](const auto& m) { result = describe(m); });
                    return result;
                };
                EXPECT_EQ(text(exchanged), text(valued)) << column.name << " of row " << count;
            }
        }
    }

    static std::string describe(const CString& member) { return member.GetString(); }
    static std::string describe(LONG member) { return std::to_string(member); }
    static std::string describe(CTime member) { return std::to_string(member.GetTime()); }
    static std::string describe(float member) { return std::to_string(std::bit_cast<std::uint32_t>(member)); }
    static std::string describe(const std::vector<COleVariant>& values) {
        std::string all;
        for (const COleVariant& value : values) {
            all += std::to_string(value.vt) + ":";
            all += value.vt == VT_BSTR ? std::string(afx::variant_text(value)) : std::to_string(value.llVal);
            all += '\n';
        }
        return all;
    }

    int fields_of(CDaoRecordset& rows) {
        COleVariant value;
        for (int count = 0;; ++count) {
            if (error_of([&] { rows.GetFieldValue(count, value); }) != 0) return count;
        }
    }
    // Auto-numbers differ from row to row.
    std::vector<COleVariant> values_of(CDaoRecordset& rows) {
        std::vector<COleVariant> values;
        const int count = fields_of(rows);
        for (int i = 0; i < count; ++i) {
            const COleVariant value = rows.GetFieldValue(i);
            values.push_back(is_autonumber(rows, i) ? COleVariant() : value);
        }
        return values;
    }
    bool is_autonumber(CDaoRecordset& rows, int field) {
        const COleVariant value = rows.GetFieldValue(field);
        return value.vt == VT_I4 && error_of([&] { rows.SetFieldValue(field, value); }) == 3164;
    }

    // ---- Made up

    std::uint32_t any() { return static_cast<std::uint32_t>(random_()); }
    std::uint32_t below(std::uint32_t end) { return any() % end; }

    std::string made_up_text() {
        static constexpr const char* kOdd[] = {"",     " ",    "a",        "ab", "x\xE4y", "\x80\x81\x9F",
                                               "#\"'", "12.5", "-7 pieces"};
        if (below(3) == 0) return kOdd[below(std::size(kOdd))];
        static constexpr std::uint32_t kLengths[] = {8, 40, 255, 256, 5000};
        std::string text(below(kLengths[below(8) == 0 ? 3 + below(2) : below(3)]) + 1, ' ');
        const bool ascii = below(4) != 0;
        for (char& c : text) c = static_cast<char>(1 + below(ascii ? 127 : 255));
        return text;
    }
    void make_up(CString& member) { member = made_up_text().c_str(); }
    void make_up(LONG& member) { member = static_cast<LONG>(below(4) == 0 ? any() : below(1000)); }
    void make_up(CTime& member) {
        static constexpr LONG kOdd[] = {-1, 0, 1, 86399, 86400, std::numeric_limits<LONG>::max()};
        member = CTime(below(5) == 0 ? kOdd[below(std::size(kOdd))] : static_cast<LONG>(any() >> 1));
    }
    void make_up(float& member) {
        static constexpr float kOdd[] = {0, -0.0f, 1e30f, -1e30f, 12.99996f, -1.25f, 4e9f, 0.00004f};
        member = below(4) == 0   ? kOdd[below(std::size(kOdd))]
                 : below(8) == 0 ? std::bit_cast<float>(any())
                                 : static_cast<float>(below(2000000)) / 100 - 1000;
    }
    double made_up_days() {
        static constexpr double kOdd[] = {0, 0.5, -1.25, -657434, 2958465.99, 25568.99, 25569, 50424.13, 37000.0000057};
        if (below(4) == 0) return kOdd[below(std::size(kOdd))];
        const double day = 25000 + below(26000);
        return below(2) == 0 ? day : day + below(86400) / 86400.0;
    }
    // What no record would write, but other programs may have: any value, or none, in any column that takes it.
    void make_up_row(CDaoRecordset& rows) {
        const int count = fields_of(rows);
        for (int i = 0; i < count; ++i) {
            if (below(5) == 0) continue;
            CY amount;
            amount.int64 = static_cast<std::int64_t>(std::uint64_t{any()} << 32 | any()) >> below(60);
            const COleVariant tries[] = {
                COleVariant(COleDateTime(made_up_days())),
                COleVariant(made_up_text().c_str()),
                COleVariant(COleCurrency(amount)),
                COleVariant(static_cast<int>(any())),
            };
            const std::uint32_t first = below(4);
            for (std::uint32_t t = 0; t < 4; ++t) {
                if (error_of([&] { rows.SetFieldValue(i, tries[(first + t) % 4]); }) == 0) break;
            }
        }
    }

    CDaoDatabase invoices_;
    CDaoDatabase twin_;
    CDaoDatabase invoice_twin_;
    std::mt19937 random_{11};
};
