// Statements of stock and supply, and the sums that give the number on hand.
#include "studio/stock.h"

#include <gtest/gtest.h>

#include "tests/studio/mapping_columns.h"
#include "tests/studio/studio_test_support.h"

namespace {

using namespace studio;

TEST(Stock, filter_takes_type_and_supplier) {
    StockInfo record;
    EXPECT_EQ(kStock.statement(&record), "SELECT * FROM [Stock]");
    record.TypeID = 3;
    EXPECT_EQ(kStock.statement(&record), "SELECT * FROM [Stock] WHERE [TypeID]=3");
    record.Supplier = "Acme";
    EXPECT_EQ(kStock.statement(&record), "SELECT * FROM [Stock] WHERE [TypeID]=3 AND [Supplier]=\"Acme\"");
    record.TypeID = 0;
    EXPECT_EQ(kStock.statement(&record), "SELECT * FROM [Stock] WHERE [Supplier]=\"Acme\"");
    record.Supplier = "7\" Ltd";  // unescaped
    EXPECT_EQ(kStock.statement(&record), "SELECT * FROM [Stock] WHERE [Supplier]=\"7\" Ltd\"");
    StockInfo other;
    other.StockID = other.Quantity = other.SupplierID = other.InStock = other.ExData = 5;
    other.Name = other.Type = other.Notes = "no condition";
    EXPECT_EQ(kStock.statement(&other), "SELECT * FROM [Stock]");
}

// Deliberate: no join between the client and the conditions before it.
TEST(Supply, filter_does_not_join_the_client) {
    const auto statement = [](LONG stock, LONG project, LONG client) {
        SupplyAct record;
        record.StockID = stock;
        record.ProjID = project;
        record.ClientID = client;
        return kSupply.statement(&record);
    };
    EXPECT_EQ(statement(0, 0, 0), "SELECT * FROM [Supply]");
    EXPECT_EQ(statement(2, 0, 0), "SELECT * FROM [Supply] WHERE [StockID]=2");
    EXPECT_EQ(statement(0, 4, 0), "SELECT * FROM [Supply] WHERE [ProjID]=4");
    EXPECT_EQ(statement(0, 0, 7), "SELECT * FROM [Supply] WHERE [ClientID]=7");
    EXPECT_EQ(statement(2, 4, 0), "SELECT * FROM [Supply] WHERE [StockID]=2 AND [ProjID]=4");
    EXPECT_EQ(statement(0, 4, 7), "SELECT * FROM [Supply] WHERE [ProjID]=4[ClientID]=7");
    EXPECT_EQ(statement(2, 0, 7), "SELECT * FROM [Supply] WHERE [StockID]=2[ClientID]=7");
    EXPECT_EQ(statement(2, 4, 7), "SELECT * FROM [Supply] WHERE [StockID]=2 AND [ProjID]=4[ClientID]=7");
    EXPECT_EQ(kSupply.statement(nullptr), "");
}

TEST(StockTypes, filter_is_none) {
    StockTypeInfo record;
    record.TypeID = 3;
    record.TypeName = "Tape";
    EXPECT_EQ(kStockTypes.statement(&record), "SELECT * FROM [Def_StockTypes]");
}

TEST(Equipment, filter_is_none) {
    EquipInfo record;
    record.RecID = 3;
    record.Name = "Desk";
    EXPECT_EQ(kEquipment.statement(&record), "SELECT * FROM [Equipment]");
}

TEST(Stock, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kStock.read),
              "StockID Name Type TypeID Quantity Supplier SupplierID Date Cost Notes InStock ExData");
    EXPECT_EQ(column_names(kStock.write),
              "Name Type Quantity TypeID Supplier SupplierID Date Cost Notes InStock ExData");
    EXPECT_EQ(column_names(kSupply.read),
              "ActionID ProjID StockID StockName StockType Client ClientID Date Quantity ExData");
    EXPECT_EQ(column_names(kSupply.write), "StockID ProjID StockType StockName Client ClientID Date Quantity ExData");
    EXPECT_EQ(column_names(kStockTypes.read), "TypeName InStock ItemPrice ExData");
    EXPECT_EQ(column_names(kStockTypes.enum_read), "TypeName TypeID InStock ItemPrice ExData");
    EXPECT_EQ(column_names(kStockTypes.write), "TypeName InStock ExData ItemPrice");
    EXPECT_EQ(column_names(kEquipment.read), "RecID Name Action ActDate Cost Notes");
    EXPECT_EQ(column_names(kEquipment.write), "Name Action ActDate Cost Notes");
}

TEST(StatementOfSums, names_the_sum_total) {
    EXPECT_EQ(sum_where("Quantity", "Stock", "TypeID", 3),
              "SELECT SUM(Quantity) AS [total] FROM [Stock] WHERE [TypeID]=3");
}

class InStock : public StudioTest {
protected:
    LONG add_type(float price) {
        StockTypeInfo type;
        type.TypeName = "Tape";
        type.ItemPrice = price;
        EXPECT_EQ(types_.Add(&type), S_OK);
        return type.TypeID;
    }

    RecordTable<StockTypeInfo> types_{kStockTypes, database_};
    RecordTable<StockInfo> stock_{kStock, database_};
};

// Null quantities count as 0, and so does a sum of Nulls only.
TEST_F(InStock, null_quantities_count_as_0) {
    const LONG type = add_type(1);
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "Stock", 0);
    rows.AddNew();
    rows.SetFieldValue("TypeID", COleVariant(type, VT_I4));
    rows.Update();
    LONG in_stock = -1;
    EXPECT_EQ(compute_in_stock(database_, types_, type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, 0);
    StockInfo bought;
    bought.TypeID = type;
    bought.Quantity = 6;
    ASSERT_EQ(stock_.Add(&bought), S_OK);
    EXPECT_EQ(compute_in_stock(database_, types_, type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, 6);
}

// The price passes through the record's float, which cannot hold an amount of many digits.
TEST_F(InStock, price_is_written_back_as_the_float_of_the_record) {
    const LONG type = add_type(0);
    CDaoRecordset rows(&file_);
    rows.Open(dbOpenDynaset, "Def_StockTypes", 0);
    rows.Edit();
    rows.SetFieldValue("ItemPrice", COleVariant(COleCurrency(123456789, 1234)));
    rows.Update();
    rows.Close();
    LONG in_stock = -1;
    ASSERT_EQ(compute_in_stock(database_, types_, type, &in_stock), S_OK);
    EXPECT_EQ(value("Def_StockTypes", "ItemPrice").cyVal.int64, 123456792LL * 10000);
}

TEST_F(InStock, computing_leaves_an_enumeration_of_the_types_alone) {
    const LONG type = add_type(1);
    add_type(2);
    StockTypeInfo record;
    ASSERT_EQ(types_.EnumFirst(&record), S_OK);
    LONG in_stock = -1;
    ASSERT_EQ(compute_in_stock(database_, types_, type, &in_stock), S_OK);
    ASSERT_EQ(types_.EnumNext(&record), S_OK);
    EXPECT_EQ(record.ItemPrice, 2.0f);
}

TEST_F(InStock, no_database_fails_with_0) {
    LONG in_stock = 5;
    EXPECT_EQ(compute_in_stock(nullptr, types_, 1, &in_stock), E_FAIL);
    EXPECT_EQ(in_stock, 0);
    file_.Close();
    in_stock = 5;
    EXPECT_EQ(compute_in_stock(database_, types_, 1, &in_stock), E_FAIL);
    EXPECT_EQ(in_stock, 0);
}

}  // namespace
