// Statements and columns of engineers, sequencers and rooms.
#include "studio/engineers.h"

#include <gtest/gtest.h>

#include "tests/studio/mapping_columns.h"

namespace {

using namespace studio;

TEST(Engineers, enumerations_cover_the_whole_table) {
    EngineerInfo engineer;
    engineer.RecID = 4;
    engineer.Name = "Dan";
    EXPECT_EQ(kEngineers.statement(&engineer), "SELECT * FROM [Def_Engineers]");
    SeqInfo sequencer;
    sequencer.Name = "n";
    EXPECT_EQ(kSequencers.statement(&sequencer), "SELECT * FROM [Def_Sequencer]");
    RoomInfo room;
    room.Name = "A";
    EXPECT_EQ(kRooms.statement(&room), "SELECT * FROM [Def_Rooms]");
}

TEST(Engineers, mappings_list_their_columns_in_order) {
    EXPECT_EQ(column_names(kEngineers.read), "RecID Name Price");
    EXPECT_EQ(column_names(kEngineers.write), "Name Price");
    EXPECT_EQ(column_names(kSequencers.read), "RecID Name Path");
    EXPECT_EQ(column_names(kSequencers.write), "Name Path");
    EXPECT_EQ(column_names(kRooms.read), "RecID Name BasePrice FullPrice ExData");
    EXPECT_EQ(column_names(kRooms.write), "Name BasePrice FullPrice ExData");
}

}  // namespace
