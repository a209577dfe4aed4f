// The statements of contacts, categories, messages and services.
#include "studio/contacts.h"

#include <gtest/gtest.h>

namespace {

using studio::WhenNothingIsSet;

TEST(ContactStatements, nothing_set_enumerates_the_whole_table_and_finds_key_0) {
    ClientInfo client;
    EXPECT_EQ(studio::kClients.statement(&client), "SELECT * FROM [Clients]");
    EXPECT_EQ(studio::kClients.statement(&client, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [Clients] WHERE [ClientID]=0");
    ConCatInfo category;
    EXPECT_EQ(studio::kContactCategories.statement(&category), "SELECT * FROM [ContactCategories]");
    EXPECT_EQ(studio::kContactCategories.statement(&category, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [ContactCategories] WHERE [RecID]=0");
    ServiceInfo service;
    EXPECT_EQ(studio::kServices.statement(&service), "SELECT * FROM [Services]");
    EXPECT_EQ(studio::kServices.statement(&service, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [Services] WHERE [RecID]=0");
}

TEST(ContactStatements, key_replaces_every_clause) {
    ClientInfo client;
    client.ClientID = 12;
    client.Company = "x";
    client.CatIDs = "2;5";
    EXPECT_EQ(studio::kClients.statement(&client), "SELECT * FROM [Clients] WHERE [ClientID]=12");
    EXPECT_EQ(studio::kClients.statement(&client, WhenNothingIsSet::kNoRows),
              "SELECT * FROM [Clients] WHERE [ClientID]=12");
    ConCatInfo category;
    category.RecID = 3;
    category.Name = "x";
    EXPECT_EQ(studio::kContactCategories.statement(&category), "SELECT * FROM [ContactCategories] WHERE [RecID]=3");
    ServiceInfo service;
    service.RecID = -4;
    service.RoomID = 3;
    EXPECT_EQ(studio::kServices.statement(&service), "SELECT * FROM [Services] WHERE [RecID]=-4");
}

TEST(ContactStatements, category_list_makes_a_group) {
    ClientInfo client;
    client.CatIDs = "2;5";
    EXPECT_EQ(studio::kClients.statement(&client),
              "SELECT * FROM [Clients] WHERE ([CatIDs] LIKE \"*2*\" OR [CatIDs] LIKE \"*5*\")");
    client.CatIDs = "12";
    EXPECT_EQ(studio::kClients.statement(&client), "SELECT * FROM [Clients] WHERE ([CatIDs] LIKE \"*12*\")");
    client.CatIDs = ";x";  // an empty piece and one without digits are the number 0
    EXPECT_EQ(studio::kClients.statement(&client),
              "SELECT * FROM [Clients] WHERE ([CatIDs] LIKE \"*0*\" OR [CatIDs] LIKE \"*0*\")");
}

TEST(ContactStatements, clauses_have_their_order) {
    ClientInfo client;
    client.Name = client.LastName = client.Address = client.Email = client.Notes = client.Phone1 = "x";
    client.Company = "c";
    client.Title = "t";
    client.CategoryID = 1;
    client.CatIDs = "2;5";
    client.SearchName = "n";
    EXPECT_EQ(studio::kClients.statement(&client),
              "SELECT * FROM [Clients] WHERE [CatIDs] LIKE \"*1*\" AND [Company] LIKE \"*c*\" AND [Title] LIKE \"*t*\" "
              "AND [Name] LIKE \"*n*\" AND ([CatIDs] LIKE \"*2*\" OR [CatIDs] LIKE \"*5*\")");
    EXPECT_EQ(studio::kClients.statement(&client, WhenNothingIsSet::kNoRows), studio::kClients.statement(&client));
}

TEST(CategoryStatements, clauses_have_their_order) {
    ConCatInfo category;
    category.Name = "art";
    category.Type = 2;
    category.ExData = 9;
    EXPECT_EQ(studio::kContactCategories.statement(&category),
              "SELECT * FROM [ContactCategories] WHERE [Type]=2 AND [Name] LIKE \"*art*\"");
}

TEST(ServiceStatements, clauses_have_their_order) {
    ServiceInfo service;
    service.Name = "mix";
    service.ContactID = 1;
    service.CategoryID = 2;
    service.TimeUnit = service.ExData = 9;
    service.RoomID = 3;
    service.Price = 4;
    EXPECT_EQ(studio::kServices.statement(&service),
              "SELECT * FROM [Services] WHERE [CategoryID]=2 AND [ContactID]=1 AND ([RoomID]=3 OR [RoomID]=0) AND "
              "[Name] LIKE \"*mix*\"");
}

TEST(MessageStatements, contact_alone_also_when_it_is_0) {
    MsgInfo message;
    message.RecID = 7;
    message.Descript = "x";
    EXPECT_EQ(studio::kMessages.statement(&message), "SELECT * FROM [Messages] WHERE [ContactID]=0");
    message.ContactID = 3;
    EXPECT_EQ(studio::kMessages.statement(&message), "SELECT * FROM [Messages] WHERE [ContactID]=3");
}

TEST(ContactStatements, null_record_gives_the_empty_statement) {
    EXPECT_EQ(studio::kClients.statement(nullptr), "");
    EXPECT_EQ(studio::kContactCategories.statement(nullptr), "");
    EXPECT_EQ(studio::kMessages.statement(nullptr), "");
    EXPECT_EQ(studio::kServices.statement(nullptr), "");
}

}  // namespace
