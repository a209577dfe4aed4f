// The statements of sessions, participants, payments and activities.
#include "studio/sessions.h"

#include <gtest/gtest.h>

namespace {

TEST(SessionStatements, nothing_set_is_the_whole_table) {
    SessionInfo session;
    EXPECT_EQ(studio::kSessions.statement(&session), "SELECT * FROM [Sessions]");
    ParticInfo partic;
    EXPECT_EQ(studio::kParticipants.statement(&partic), "SELECT * FROM [Participants]");
}

TEST(SessionStatements, engineer_stands_before_the_project) {
    SessionInfo session;
    session.ProjID = 4;
    session.Engineer = "Dan";
    EXPECT_EQ(studio::kSessions.statement(&session),
              "SELECT * FROM [Sessions] WHERE [Engineer] LIKE \"Dan\" AND [ProjID]=4");
}

TEST(SessionStatements, clauses_have_their_order) {
    SessionInfo session;
    session.ProjID = 1;
    session.SessionID = 2;
    session.SongName = "s";
    session.SongID = 3;
    session.Engineer = "e";
    session.ArtistID = 4;
    session.Reserved = "r";
    session.RecDate = CTime(2005, 3, 1, 0, 0, 0);
    session.StartTime = session.EndTime = session.Total = session.Notes = session.Client = "x";
    session.ClientID = 5;
    session.RoomID = 6;
    session.ExData = 7;
    EXPECT_EQ(studio::kSessions.statement(&session),
              "SELECT * FROM [Sessions] WHERE [ClientID]=5 AND [Engineer] LIKE \"e\" AND [ArtistID]=4 AND [ProjID]=1 "
              "AND [RoomID]=6 AND [SongName] LIKE \"s\" AND [SongID]=3");
}

TEST(ParticipantStatements, clauses_have_their_order) {
    ParticInfo partic;
    partic.RecID = 1;
    partic.SessionID = 2;
    partic.ContactID = 3;
    partic.CategoryID = 4;
    partic.ServiceID = 5;
    partic.Duration = 6;
    partic.Communicate = partic.Notes = "x";
    partic.ExData = 7;
    EXPECT_EQ(studio::kParticipants.statement(&partic),
              "SELECT * FROM [Participants] WHERE [SessionID]=2 AND [ContactID]=3 AND [CategoryID]=4 AND "
              "[ServiceID]=5");
}

TEST(PaymentStatements, project_alone_also_when_it_is_0) {
    ProjPayInfo payment;
    payment.RecID = payment.ClientID = payment.ExData = 9;
    payment.Details = "x";
    EXPECT_EQ(studio::kProjPayments.statement(&payment), "SELECT * FROM [ProjPayments] WHERE [ProjID]=0");
    payment.ProjID = 4;
    EXPECT_EQ(studio::kProjPayments.statement(&payment), "SELECT * FROM [ProjPayments] WHERE [ProjID]=4");
}

TEST(ActivityStatements, project_alone_also_when_it_is_0) {
    ProjActInfo activity;
    activity.RecID = activity.CatID = activity.ItemID = 9;
    activity.Category = activity.Item = "x";
    EXPECT_EQ(studio::kProjActivities.statement(&activity), "SELECT * FROM [ProjActivities] WHERE [ProjID]=0");
    activity.ProjID = 4;
    EXPECT_EQ(studio::kProjActivities.statement(&activity), "SELECT * FROM [ProjActivities] WHERE [ProjID]=4");
}

TEST(SessionStatements, null_record_gives_the_empty_statement) {
    EXPECT_EQ(studio::kSessions.statement(nullptr), "");
    EXPECT_EQ(studio::kParticipants.statement(nullptr), "");
    EXPECT_EQ(studio::kProjPayments.statement(nullptr), "");
    EXPECT_EQ(studio::kProjActivities.statement(nullptr), "");
}

}  // namespace
