// The upgrade of the invoice file.
#include "tests/db/upgrade/upgrade_fixture.h"

namespace {

using namespace testing_support;
using jet::Null;

class InvoiceUpgrade : public UpgradeTest {
protected:
    void make_filled(std::int32_t version, const Oddities& oddities = {}) const {
        std::filesystem::remove(invoices());
        OldFile file = make_invoices(version, oddities);
        fill_invoices(file);
        file.close();
    }
    static Oddities without(const char* name) {
        Oddities oddities;
        oddities.without = {name};
        return oddities;
    }
};

TEST_F(InvoiceUpgrade, file_at_the_current_version_is_left_untouched) {
    OldFile file = make_invoices(210000);
    file.add("Invoices", {{"Total", amount(10)}, {"Paymetns", 4.0f}, {"Balance", 6.0f}, {"fTax", amount(1)}});
    file.close();
    const Content before = content_of(invoices());
    EXPECT_EQ(upgrade_invoices(), 0);
    EXPECT_EQ(difference(before, content_of(invoices())), "");
}

TEST_F(InvoiceUpgrade, invoices_show_no_payments_and_lines_their_invoices_date) {
    for (const std::int32_t version : {100005, 100006, 200000, 200010}) {
        std::filesystem::remove(invoices());
        OldFile file = make_invoices(version);
        file.add("Invoices", {{"InvoiceID", 70}, {"Date", day(2005, 3, 5)}, {"Total", amount(12, 3400)}, {"Tax", 3}});
        file.add("Invoices", {{"InvoiceID", 71}, {"Date", Null{}}, {"Total", Null{}}});
        file.add("Invoices", {{"InvoiceID", 72}, {"Date", day(2004, 12, 31)}, {"Total", amount(-7, -5000)}});
        // Lines name the key of their invoice, not its number.
        for (const std::int32_t invoice : {1, 3, 2, 70, 1}) file.add("InvoiceParams", {{"InvoiceID", invoice}});
        file.add("InvoiceParams", {{"InvoiceID", Null{}}});
        file.close();
        EXPECT_EQ(upgrade_invoices(), 1) << version;
        const Content after = content_of(invoices());
        EXPECT_EQ(version_in(after), "210000") << version;
        EXPECT_EQ(column(after, "Invoices", "Paymetns"), "0.000000f 0.000000f 0.000000f ");
        EXPECT_EQ(column(after, "Invoices", "Balance"), "12.340000f 0.000000f -7.500000f ");
        EXPECT_EQ(column(after, "Invoices", "fTax"), "0.0000 0.0000 0.0000 ");
        EXPECT_EQ(column(after, "Invoices", "fDiscount"), "0.0000 0.0000 0.0000 ");
        EXPECT_EQ(column(after, "Invoices", "Total"), "12.3400 null -7.5000 ");
        EXPECT_EQ(column(after, "Invoices", "Tax"), "3 null null ");
        EXPECT_EQ(column(after, "InvoiceParams", "Date"), "2005-03-05 2004-12-31 null null 2005-03-05 null ");
        EXPECT_EQ(column(after, "InvoiceParams", "Details"), "null null null null null null ");
    }
}

TEST_F(InvoiceUpgrade, every_version_gets_every_field_and_keeps_every_row) {
    for (const std::int32_t version : kOldVersions) {
        make_filled(version);
        const Content before = content_of(invoices());
        EXPECT_EQ(upgrade_invoices(), 1) << version;
        const Content after = content_of(invoices());
        const std::map<std::string, std::string> invoice_columns = {{"RecID", "key"},
                                                                    {"InvoiceID", "long"},
                                                                    {"ClientName", "text"},
                                                                    {"ClientInfo", "text"},
                                                                    {"InvTaxIDs", "text"},
                                                                    {"Date", "date"},
                                                                    {"SubTotal", "currency"},
                                                                    {"Tax", "long"},
                                                                    {"fTax", "currency"},
                                                                    {"Discount", "long"},
                                                                    {"Tax_SubTotal", "currency"},
                                                                    {"fDiscount", "currency"},
                                                                    {"Total", "currency"},
                                                                    {"Discount_SubTotal", "currency"},
                                                                    {"Paymetns", "single"},
                                                                    {"Balance", "single"},
                                                                    {"Notes", "memo"},
                                                                    {"ExData", "long"}};
        EXPECT_EQ(after.at("Invoices").columns, invoice_columns);
        const std::map<std::string, std::string> line_columns = {
            {"RecID", "key"},   {"InvoiceID", "long"},     {"Type", "long"},      {"Name", "text"},
            {"TaxIDs", "text"}, {"DWQuantity", "long"},    {"Total", "currency"}, {"FQuantity", "currency"},
            {"ExData", "long"}, {"ItemPrice", "currency"}, {"Date", "date"},      {"Details", "text"}};
        EXPECT_EQ(after.at("InvoiceParams").columns, line_columns);
        for (const auto& [name, table] : before) {
            ASSERT_EQ(table.rows.size(), rows_in(after, name));
            for (std::size_t i = 0; i < table.rows.size(); ++i) {
                for (const auto& [field, value] : table.rows[i]) {
                    if (field == "DBversion") continue;
                    ASSERT_EQ(after.at(name).rows[i].at(field), value) << name << "." << field;
                }
            }
        }
        EXPECT_EQ(rows_in(after, "InvoiceParams"), 120u);
        EXPECT_EQ(upgrade_invoices(), 0);
        EXPECT_EQ(difference(after, content_of(invoices())), "");
    }
}

TEST_F(InvoiceUpgrade, version_200010_skips_the_tax_lists) {
    Oddities oddities = without("Invoices.InvTaxIDs");
    oddities.without.insert("InvoiceParams.TaxIDs");
    make_invoices(200010, oddities).close();
    EXPECT_EQ(upgrade_invoices(), 1);
    const Content after = content_of(invoices());
    EXPECT_FALSE(has_column(after, "Invoices", "InvTaxIDs"));
    EXPECT_FALSE(has_column(after, "InvoiceParams", "TaxIDs"));
    EXPECT_TRUE(has_column(after, "Invoices", "fTax"));
}

TEST_F(InvoiceUpgrade, version_above_the_current_one_gets_the_number_only) {
    make_invoices(220000).close();
    EXPECT_EQ(upgrade_invoices(), 1);
    EXPECT_EQ(version_in(content_of(invoices())), "210000");
}

TEST_F(InvoiceUpgrade, empty_header_fails) {
    Oddities oddities;
    oddities.header_row = false;
    make_filled(200010, oddities);
    EXPECT_EQ(upgrade_invoices(), -1);
    EXPECT_EQ(rows_in(content_of(invoices()), "DBHeader"), 0u);
}

TEST_F(InvoiceUpgrade, only_the_header_decides_the_result) {
    std::filesystem::remove(invoices());
    make_invoices(100006, without("Invoices")).close();
    EXPECT_EQ(upgrade_invoices(), 1);
    Content after = content_of(invoices());
    EXPECT_EQ(version_in(after), "210000");
    for (const char* const field : {"TaxIDs", "Date", "Details"}) {
        EXPECT_TRUE(has_column(after, "InvoiceParams", field)) << field;
    }
    std::filesystem::remove(invoices());
    OldFile file = make_invoices(100006, without("InvoiceParams"));
    file.add("Invoices", {{"Total", amount(5)}});
    file.close();
    EXPECT_EQ(upgrade_invoices(), 1);
    after = content_of(invoices());
    EXPECT_EQ(version_in(after), "210000");
    EXPECT_EQ(column(after, "Invoices", "Balance"), "5.000000f ");
    EXPECT_TRUE(has_column(after, "Invoices", "InvTaxIDs"));
}

TEST_F(InvoiceUpgrade, fields_that_are_there_already_keep_their_kind) {
    Oddities oddities;
    oddities.kinds = {{"Invoices.Balance", "currency"}, {"InvoiceParams.Details", "memo"}};
    OldFile file = make_invoices(100006, oddities);
    file.add("Invoices", {{"Total", amount(5, 2500)}});
    file.close();
    EXPECT_EQ(upgrade_invoices(), 1);
    const Content after = content_of(invoices());
    EXPECT_EQ(column(after, "Invoices", "Balance"), "5.2500 ");
    EXPECT_EQ(after.at("InvoiceParams").columns.at("Details"), "memo");
}

TEST_F(InvoiceUpgrade, field_of_another_kind_ends_only_its_own_step) {
    Oddities oddities;
    oddities.kinds = {{"Invoices.Total", "memo"}, {"Invoices.fTax", "date"}};
    OldFile file = make_invoices(200010, oddities);
    file.add("Invoices", {{"Date", day(2005, 3, 5)}, {"Total", "dear"}});
    file.add("InvoiceParams", {{"InvoiceID", 1}});
    file.close();
    EXPECT_EQ(upgrade_invoices(), 1);
    const Content after = content_of(invoices());
    EXPECT_EQ(column(after, "InvoiceParams", "Date"), "2005-03-05 ");
    EXPECT_EQ(column(after, "Invoices", "Total"), "'dear' ");
}

}  // namespace
