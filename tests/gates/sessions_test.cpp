// Sessions, participants, payments and activities through the gate.
#include <gtest/gtest.h>

#include "tests/gates/record_round_trip.h"
#include "tests/gates/sessions_cases.h"

using namespace testing_support;

namespace {

LONG add_session(IDBgate1& gate, LONG project, const char* engineer) {
    SessionInfo session;
    session.ProjID = project;
    session.Engineer = engineer;
    EXPECT_EQ(call(gate, &IDBgate1::AddSession, session), S_OK);
    return session.SessionID;
}

TEST(SessionsGate, members_make_the_round_trip) { expect_round_trip(kSessions); }
TEST(SessionsGate, columns_hold_the_members_of_their_name) { expect_columns(kSessions); }
TEST(SessionsGate, failure_leaves_the_record_alone) { expect_failures(kSessions); }
TEST(SessionsGate, mappings_go_in_their_order) { expect_orders(kSessions); }
TEST(SessionsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kSessions); }

TEST(ParticipantsGate, members_make_the_round_trip) { expect_round_trip(kPartics); }
TEST(ParticipantsGate, columns_hold_the_members_of_their_name) { expect_columns(kPartics); }
TEST(ParticipantsGate, failure_leaves_the_record_alone) { expect_failures(kPartics); }
TEST(ParticipantsGate, mappings_go_in_their_order) { expect_orders(kPartics); }
TEST(ParticipantsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kPartics); }

TEST(PaymentsGate, members_make_the_round_trip) { expect_round_trip(kPayments); }
TEST(PaymentsGate, columns_hold_the_members_of_their_name) { expect_columns(kPayments); }
TEST(PaymentsGate, failure_leaves_the_record_alone) { expect_failures(kPayments); }
TEST(PaymentsGate, mappings_go_in_their_order) { expect_orders(kPayments); }
TEST(PaymentsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kPayments); }

TEST(ActivitiesGate, members_make_the_round_trip) { expect_round_trip(kActivities); }
TEST(ActivitiesGate, columns_hold_the_members_of_their_name) { expect_columns(kActivities); }
TEST(ActivitiesGate, failure_leaves_the_record_alone) { expect_failures(kActivities); }
TEST(ActivitiesGate, mappings_go_in_their_order) { expect_orders(kActivities); }
TEST(ActivitiesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kActivities); }

TEST(SessionsGate, first_session_with_nothing_set_enumerates_all_sessions) {
    OpenGate<IDBgate1> gate;
    for (const LONG project : {4, 0, 5}) add_session(*gate, project, "Dan");
    SessionInfo session;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSession, session), S_OK);
    EXPECT_EQ(session.SessionID, 1);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSession, session), S_OK);
    EXPECT_EQ(session.SessionID, 2);
    ASSERT_EQ(call(*gate, &IDBgate1::EnumNextSession, session), S_OK);
    EXPECT_EQ(session.SessionID, 3);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSession, session), E_FAIL);
}

TEST(SessionsGate, first_session_with_project_and_engineer_selects_by_both) {
    OpenGate<IDBgate1> gate;
    add_session(*gate, 4, "Daniel");
    add_session(*gate, 5, "Dan");
    add_session(*gate, 4, "Dan");
    SessionInfo session;
    session.ProjID = 4;
    session.Engineer = "Dan";
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstSession, session), S_OK);
    EXPECT_EQ(session.SessionID, 3);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextSession, session), E_FAIL);
}

TEST(SessionsGate, key_is_the_second_member_and_not_the_first) {
    OpenGate<IDBgate1> gate;
    SessionInfo session;
    session.ProjID = 4;
    session.SessionID = 55;
    ASSERT_EQ(call(*gate, &IDBgate1::AddSession, session), S_OK);
    EXPECT_EQ(session.ProjID, 4);
    EXPECT_EQ(session.SessionID, 1);
    session.ProjID = 1;
    session.SessionID = 4;
    EXPECT_EQ(call(*gate, &IDBgate1::FindSession, session), E_FAIL);
    EXPECT_EQ(gate->DeleteSession(4), E_FAIL);
    EXPECT_EQ(gate->DeleteSession(1), S_OK);
}

TEST(SessionsGate, times_of_day_come_back_as_the_same_texts_and_the_total_is_not_computed) {
    OpenGate<IDBgate1> gate;
    SessionInfo session;
    session.StartTime = "10:00";
    session.EndTime = "13:30";
    ASSERT_EQ(call(*gate, &IDBgate1::AddSession, session), S_OK);
    session.StartTime = session.EndTime = session.Total = "?";
    ASSERT_EQ(call(*gate, &IDBgate1::FindSession, session), S_OK);
    EXPECT_EQ(session.StartTime, "10:00");
    EXPECT_EQ(session.EndTime, "13:30");
    EXPECT_EQ(session.Total, "");
}

TEST(SessionsGate, member_7_keeps_what_the_caller_put_there_across_find) {
    OpenGate<IDBgate1> gate;
    SessionInfo session;
    session.SessionID = add_session(*gate, 4, "Dan");
    session.Reserved = "the caller's own";
    ASSERT_EQ(call(*gate, &IDBgate1::FindSession, session), S_OK);
    EXPECT_EQ(session.Reserved, "the caller's own");
    EXPECT_EQ(session.Engineer, "Dan");
}

TEST(SessionsGate, deleting_a_session_leaves_its_participants) {
    OpenGate<IDBgate1> gate;
    ParticInfo partic;
    partic.SessionID = add_session(*gate, 4, "Dan");
    ASSERT_EQ(call(*gate, &IDBgate1::AddPartic, partic), S_OK);
    ASSERT_EQ(gate->DeleteSession(partic.SessionID), S_OK);
    EXPECT_EQ(call(*gate, &IDBgate1::FindPartic, partic), S_OK);
}

TEST(ParticipantsGate, filter_selects_by_every_number_that_is_set) {
    OpenGate<IDBgate1> gate;
    for (LONG i = 0; i < 16; ++i) {
        ParticInfo partic;
        partic.SessionID = 1 + i % 2;
        partic.ContactID = 1 + i / 2 % 2;
        partic.CategoryID = 1 + i / 4 % 2;
        partic.ServiceID = 1 + i / 8;
        ASSERT_EQ(call(*gate, &IDBgate1::AddPartic, partic), S_OK);
    }
    ParticInfo partic;
    partic.SessionID = 2;
    partic.ContactID = 1;
    partic.CategoryID = 2;
    partic.ServiceID = 1;
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstPartic, partic), S_OK);
    EXPECT_EQ(partic.RecID, 6);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextPartic, partic), E_FAIL);
}

TEST(PaymentsGate, pay_is_stored_as_currency) {
    OpenGate<IDBgate1> gate;
    ProjPayInfo payment;
    payment.ProjID = 4;
    payment.Pay = 150.25f;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjPay, payment), S_OK);
    payment.Pay = 0;
    ASSERT_EQ(call(*gate, &IDBgate1::FindProjPay, payment), S_OK);
    EXPECT_EQ(payment.Pay, 150.25f);
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file("sldb.mdb"), "ProjPayments", "RecID");
        EXPECT_EQ(rows.at(1).at("Pay").value, jet::Value(jet::Currency{1502500}));
    });
}

TEST(PaymentsGate, first_payment_of_a_project_without_payments_fails) {
    OpenGate<IDBgate1> gate;
    ProjPayInfo payment;
    payment.ProjID = 4;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjPay, payment), S_OK);
    payment = ProjPayInfo();
    payment.ProjID = 5;
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstProjPay, payment), E_FAIL);
    payment.ProjID = 0;  // 0 is a project like any other here
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstProjPay, payment), E_FAIL);
    payment.ProjID = 4;
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstProjPay, payment), S_OK);
}

TEST(ActivitiesGate, activities_of_project_0_are_only_those_of_project_0) {
    OpenGate<IDBgate1> gate;
    ProjActInfo activity;
    activity.ProjID = 4;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjAct, activity), S_OK);
    activity = ProjActInfo();
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstProjAct, activity), E_FAIL);
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjAct, activity), S_OK);
    activity = ProjActInfo();
    ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstProjAct, activity), S_OK);
    EXPECT_EQ(activity.RecID, 2);
    EXPECT_EQ(call(*gate, &IDBgate1::EnumNextProjAct, activity), E_FAIL);
}

TEST(ActivitiesGate, quantity_keeps_four_decimals) {
    OpenGate<IDBgate1> gate;
    ProjActInfo activity;
    activity.Quantity = 2.0625f;
    activity.Fee = 0.0001f;
    ASSERT_EQ(call(*gate, &IDBgate1::AddProjAct, activity), S_OK);
    activity.Quantity = activity.Fee = 9;
    ASSERT_EQ(call(*gate, &IDBgate1::FindProjAct, activity), S_OK);
    EXPECT_EQ(activity.Quantity, 2.0625f);
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file("sldb.mdb"), "ProjActivities", "RecID");
        EXPECT_EQ(rows.at(1).at("Quantity").value, jet::Value(jet::Currency{20625}));
        EXPECT_EQ(rows.at(1).at("Fee").value, jet::Value(jet::Currency{1}));
    });
}

}  // namespace
