// Projects through the gate.
#include <gtest/gtest.h>

#include "tests/gates/projects_cases.h"
#include "tests/gates/record_round_trip.h"

using namespace testing_support;

namespace {

TEST(ProjectsGate, members_make_the_round_trip) { expect_round_trip(kProjects); }
TEST(ProjectsGate, columns_hold_the_members_of_their_name) { expect_columns(kProjects); }
TEST(ProjectsGate, failure_leaves_the_record_alone) { expect_failures(kProjects); }
TEST(ProjectsGate, mappings_go_in_their_order) { expect_orders(kProjects); }
TEST(ProjectsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kProjects); }

TEST(ProjectsGate, deleting_a_project_leaves_what_refers_to_it) {
    OpenGate<IDBgate1> gate;
    const LONG key = add_variant(kProjects, *gate, 1);
    SongInfo song;
    song.ProjID = key;
    ASSERT_EQ(call(*gate, &IDBgate1::AddSong, song), S_OK);
    SessionInfo session;
    session.ProjID = key;
    ASSERT_EQ(call(*gate, &IDBgate1::AddSession, session), S_OK);
    ProjPayInfo payment;
    payment.ProjID = key;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjPay, payment), S_OK);
    ProjActInfo activity;
    activity.ProjID = key;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjAct, activity), S_OK);
    ASSERT_EQ(gate->DeleteProj(key), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindSong, song), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindSession, session), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindProjPay, payment), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindProjAct, activity), S_OK);
}

}  // namespace
