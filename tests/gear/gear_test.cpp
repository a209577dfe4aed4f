// Statements and columns of the gear tables.
#include "gear/gear.h"

#include <gtest/gtest.h>

#include "os/system.h"
#include "tests/studio/mapping_columns.h"

namespace {

using namespace gear;

class Gear : public testing::Test {
protected:
    Gear() { os::set_date_format_for_test("/", os::DateOrder::kDayMonthYear); }
    ~Gear() override { os::set_date_format_for_test("", os::DateOrder::kMonthDayYear); }
};

TEST_F(Gear, item_conditions_have_their_order) {
    GearInfo record;
    EXPECT_EQ(kGear.statement(&record), "SELECT * FROM [Gear]");
    record.SerialNo = "s";
    record.Model = "m";
    record.Manufacturer = "Yam";
    EXPECT_EQ(kGear.statement(&record),
              "SELECT * FROM [Gear] WHERE [Manufacturer] LIKE \"*Yam*\" AND [Model] LIKE \"*m*\" AND "
              "[SerialNo] LIKE \"*s*\"");
    record = GearInfo();
    record.StatusID = 3;
    record.RoomID = 2;
    record.CategoryID = 1;
    record.Model = "m";
    EXPECT_EQ(kGear.statement(&record),
              "SELECT * FROM [Gear] WHERE [CategoryID]=1 AND [RoomID]=2 AND [StatusID]=3 AND [Model] LIKE \"*m*\"");
    record.RecID = 9;
    EXPECT_EQ(kGear.statement(&record), "SELECT * FROM [Gear] WHERE [RecID]=9");
    EXPECT_EQ(kGear.statement(nullptr), "");
}

TEST_F(Gear, service_conditions_have_their_order) {
    GearServInfo record;
    record.ServiceTypeID = record.ExData = 5;
    EXPECT_EQ(kServices.statement(&record), "SELECT * FROM [GearServices]");
    record.Name = "hour";
    record.TimeUnitID = 3;
    record.RoomID = 2;
    record.GearID = 1;
    EXPECT_EQ(kServices.statement(&record),
              "SELECT * FROM [GearServices] WHERE [GearID]=1 AND [RoomID]=2 AND [TimeUnitID]=3 AND "
              "[Name] LIKE \"*hour*\"");
    record.RecID = -1;
    EXPECT_EQ(kServices.statement(&record), "SELECT * FROM [GearServices] WHERE [RecID]=-1");
    EXPECT_EQ(kServices.statement(nullptr), "");
}

TEST_F(Gear, repair_conditions_have_their_order) {
    GRepairsInfo record;
    record.Technician = record.Description = "no condition";
    EXPECT_EQ(kRepairs.statement(&record), "SELECT * FROM [GearRepairs]");
    record.GearName = "Desk";
    record.ClaimNo = "17";
    record.TechID = 2;
    record.GearID = 1;
    EXPECT_EQ(kRepairs.statement(&record),
              "SELECT * FROM [GearRepairs] WHERE [GearID]=1 AND [TechID]=2 AND [ClaimNo] LIKE \"*17*\" AND "
              "[GearName] LIKE \"*Desk*\"");
    record.RecID = 7;
    EXPECT_EQ(kRepairs.statement(&record), "SELECT * FROM [GearRepairs] WHERE [RecID]=7");
    EXPECT_EQ(kRepairs.statement(nullptr), "");
}

TEST_F(Gear, categories_have_no_condition) {
    GearCatInfo record;
    record.RecID = 4;
    record.Name = "Microphones";
    EXPECT_EQ(kCategories.statement(&record), "SELECT * FROM [GearCategories]");
}

TEST_F(Gear, older_rental_conditions_leave_out_room_client_and_dates) {
    GearRentInfo record;
    record.GearID = record.RoomID = record.ClientID = 5;
    record.DateFlags = 3;
    EXPECT_EQ(kRentalsInPart.statement(&record), "SELECT * FROM [GearRentals]");
    record.ServiceName = "mic";
    record.ProjID = 12;
    record.ServiceID = 3;
    EXPECT_EQ(kRentalsInPart.statement(&record),
              "SELECT * FROM [GearRentals] WHERE [ServiceID]=3 AND [ProjID]=12 AND [ServiceName] LIKE \"*mic*\"");
    record.RecID = 7;
    EXPECT_EQ(kRentalsInPart.statement(&record), "SELECT * FROM [GearRentals] WHERE [RecID]=7");
    EXPECT_EQ(kRentalsInPart.statement(nullptr), "");
}

TEST_F(Gear, rental_conditions_have_their_order) {
    GearRentInfo record;
    record.GearID = 5;  // not a condition
    EXPECT_EQ(kRentals.statement(&record), "SELECT * FROM [GearRentals]");
    record.ProjID = 12;
    record.ServiceName = "mic";
    record.DateFrom = CTime(2005, 3, 1, 15, 0, 0);
    record.DateTo = CTime(2005, 3, 2, 15, 0, 0);
    record.DateFlags = 1;
    const std::string base = "SELECT * FROM [GearRentals] WHERE [ProjID]=12 AND [ServiceName] LIKE \"*mic*\"";
    EXPECT_EQ(kRentals.statement(&record), base + " AND [Date]>=#03/01/2005#");
    record.DateFlags = 2;
    EXPECT_EQ(kRentals.statement(&record), base + " AND [Date]<=#03/02/2005#");
    record.DateFlags = 3;
    EXPECT_EQ(kRentals.statement(&record), base + " AND [Date]>=#03/01/2005# AND [Date]<=#03/02/2005#");
    record.DateFlags = 0;
    record.ClientID = 4;
    record.RoomID = 3;
    record.ServiceID = 2;
    EXPECT_EQ(kRentals.statement(&record),
              "SELECT * FROM [GearRentals] WHERE [ServiceID]=2 AND [ProjID]=12 AND [RoomID]=3 AND [ClientID]=4 AND "
              "[ServiceName] LIKE \"*mic*\"");
    record = GearRentInfo();
    record.DateTo = CTime(2005, 3, 2, 0, 0, 0);
    record.DateFlags = 2;  // a date alone is a condition, too
    EXPECT_EQ(kRentals.statement(&record), "SELECT * FROM [GearRentals] WHERE [Date]<=#03/02/2005#");
    record.RecID = 7;
    EXPECT_EQ(kRentals.statement(&record), "SELECT * FROM [GearRentals] WHERE [RecID]=7");
    EXPECT_EQ(kRentals.statement(nullptr), "");
}

TEST_F(Gear, text_conditions_are_inserted_as_they_stand) {
    GearInfo record;
    record.Model = "19\" ?*[";
    EXPECT_EQ(kGear.statement(&record), "SELECT * FROM [Gear] WHERE [Model] LIKE \"*19\" ?*[*\"");
}

TEST_F(Gear, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kGear.read),
              "RecID Manufacturer Model SerialNo StatusID RoomID CategoryID WarrantyDate PurchaseDate Cost ExData");
    EXPECT_EQ("RecID " + column_names(kGear.write), column_names(kGear.read));
    EXPECT_EQ(column_names(kServices.read), "RecID GearID RoomID Name TimeUnitID ServiceTypeID Price ExData");
    EXPECT_EQ("RecID " + column_names(kServices.write), column_names(kServices.read));
    EXPECT_EQ(
        column_names(kRepairs.read),
        "RecID GearID GearName ClaimNo SendDate ReturnDate WarrantyDate Technician TechID Cost Description ExData");
    EXPECT_EQ("RecID " + column_names(kRepairs.write), column_names(kRepairs.read));
    EXPECT_EQ(column_names(kCategories.read), "RecID Name ExData");
    EXPECT_EQ("RecID " + column_names(kCategories.write), column_names(kCategories.read));
    EXPECT_EQ(column_names(kRentalsInPart.read), "RecID ServiceID ProjID ServiceName Date Quantity QuantType ExData");
    EXPECT_EQ("RecID " + column_names(kRentalsInPart.write), column_names(kRentalsInPart.read));
    EXPECT_EQ(column_names(kRentals.read),
              "RecID GearID ServiceID ProjID ServiceName Date Quantity QuantType ClientID RoomID ExData");
    EXPECT_EQ("RecID " + column_names(kRentals.write), column_names(kRentals.read));
}

}  // namespace
