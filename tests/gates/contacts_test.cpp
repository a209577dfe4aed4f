// Contacts, categories, messages and services through the gate.
#include <gtest/gtest.h>

#include "os/system.h"
#include "tests/gates/contacts_cases.h"
#include "tests/gates/record_round_trip.h"

using namespace testing_support;

namespace {

void add_client(IDBgate1& gate, const char* name, const char* company, const char* categories) {
    ClientInfo client;
    client.Name = name;
    client.Company = company;
    client.CatIDs = categories;
    EXPECT_EQ(call(gate, &IDBgate1::AddClient, client), S_OK);
}

void add_service(IDBgate1& gate, const char* name, LONG contact, LONG room) {
    ServiceInfo service;
    service.Name = name;
    service.ContactID = contact;
    service.RoomID = room;
    EXPECT_EQ(call(gate, &IDBgate1::AddService, service), S_OK);
}

// The names that an enumeration beginning with this record delivers, each behind a blank.
template <class Record>
std::string names(const RecordCase<IDBgate1, Record>& table, IDBgate1& gate, Record filter) {
    std::string names;
    HRESULT result = call(gate, table.first, filter);
    while (result == S_OK) {
        names += std::string(" ") + filter.Name.GetString();
        result = call(gate, table.next, filter);
    }
    EXPECT_EQ(result, E_FAIL);
    return names;
}

TEST(ClientsGate, members_make_the_round_trip) { expect_round_trip(kClients); }
TEST(ClientsGate, columns_hold_the_members_of_their_name) { expect_columns(kClients); }
TEST(ClientsGate, failure_leaves_the_record_alone) { expect_failures(kClients); }
TEST(ClientsGate, mappings_go_in_their_order) { expect_orders(kClients); }
TEST(ClientsGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kClients); }

TEST(CategoriesGate, members_make_the_round_trip) { expect_round_trip(kCategories); }
TEST(CategoriesGate, columns_hold_the_members_of_their_name) { expect_columns(kCategories); }
TEST(CategoriesGate, failure_leaves_the_record_alone) { expect_failures(kCategories); }
TEST(CategoriesGate, mappings_go_in_their_order) { expect_orders(kCategories); }
TEST(CategoriesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kCategories); }

TEST(MessagesGate, members_make_the_round_trip) { expect_round_trip(kMessages); }
TEST(MessagesGate, columns_hold_the_members_of_their_name) { expect_columns(kMessages); }
TEST(MessagesGate, failure_leaves_the_record_alone) { expect_failures(kMessages); }
TEST(MessagesGate, mappings_go_in_their_order) { expect_orders(kMessages); }
TEST(MessagesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kMessages); }

TEST(ServicesGate, members_make_the_round_trip) { expect_round_trip(kServices); }
TEST(ServicesGate, columns_hold_the_members_of_their_name) { expect_columns(kServices); }
TEST(ServicesGate, failure_leaves_the_record_alone) { expect_failures(kServices); }
TEST(ServicesGate, mappings_go_in_their_order) { expect_orders(kServices); }
TEST(ServicesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kServices); }

// ---- Contacts

// One byte a character: a row of eight full texts has no more than half a page.
TEST(ClientsGate, texts_of_full_width_are_kept_together) {
    OpenGate<IDBgate1> gate;
    CString ClientInfo::*const texts[] = {&ClientInfo::Name,    &ClientInfo::LastName, &ClientInfo::Company,
                                          &ClientInfo::Title,   &ClientInfo::Address,  &ClientInfo::Country,
                                          &ClientInfo::WebSite, &ClientInfo::Email};
    ClientInfo client;
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        client.*texts[i] = std::string(255, static_cast<char>('a' + i)).c_str();
    }
    ASSERT_EQ(call(*gate, &IDBgate1::AddClient, client), S_OK);
    ClientInfo found;
    found.ClientID = client.ClientID;
    ASSERT_EQ(call(*gate, &IDBgate1::FindClient, found), S_OK);
    for (CString ClientInfo::*const text : texts) EXPECT_EQ(found.*text, client.*text);
}

// Every text but the last at its full width of two-byte characters: longer than a page.
TEST(ClientsGate, row_that_cannot_fit_is_refused_and_nothing_is_saved) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "there", "before", "1");
    std::string wide;
    for (int i = 0; i < 255; ++i) wide += os::narrow(u"\u20ac");
    ClientInfo client = filled(kClients, 0, 1);
    for (const Member<ClientInfo>& member : kClients.members) {
        if (member.store == Store::kText) client.*std::get<CString ClientInfo::*>(member.place) = wide.c_str();
    }
    EXPECT_EQ(call(*gate, &IDBgate1::AddClient, client), E_FAIL);
    client.ClientID = 1;
    EXPECT_EQ(call(*gate, &IDBgate1::UpdateClient, client), E_FAIL);
    EXPECT_EQ(names(kClients, *gate, ClientInfo()), " there");
    ClientInfo found;
    found.ClientID = 1;
    ASSERT_EQ(call(*gate, &IDBgate1::FindClient, found), S_OK);
    EXPECT_EQ(found.Company, "before");
}

TEST(ClientsGate, record_with_nothing_set_enumerates_every_contact_but_finds_none) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "A", "", "");
    add_client(*gate, "B", "", "");
    EXPECT_EQ(names(kClients, *gate, ClientInfo()), " A B");
    ClientInfo client;
    client.LastName = "not a member of the filter";
    EXPECT_EQ(call(*gate, &IDBgate1::FindClient, client), E_FAIL);
    EXPECT_EQ(client.LastName, "not a member of the filter");
    EXPECT_EQ(client.ClientID, 0);
}

TEST(ClientsGate, find_without_key_gives_the_first_contact_whose_company_contains_the_text) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "A", "Light and Vision", "");
    add_client(*gate, "B", "Deep Sound Ltd", "");
    add_client(*gate, "C", "Sound", "");
    ClientInfo client;
    client.Company = "Sound";
    ASSERT_EQ(call(*gate, &IDBgate1::FindClient, client), S_OK);
    EXPECT_EQ(client.ClientID, 2);
    EXPECT_EQ(client.Name, "B");
    EXPECT_EQ(client.Company, "Deep Sound Ltd");
}

TEST(ClientsGate, key_replaces_every_other_clause) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "A", "One", "");
    add_client(*gate, "B", "Two", "");
    ClientInfo client;
    client.ClientID = 2;
    client.Company = "One";
    EXPECT_EQ(names(kClients, *gate, client), " B");
    ASSERT_EQ(call(*gate, &IDBgate1::FindClient, client), S_OK);
    EXPECT_EQ(client.Company, "Two");
}

TEST(ClientsGate, category_matches_every_list_that_contains_its_digits) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "one", "", "1");
    add_client(*gate, "list", "", "3;12;7");
    add_client(*gate, "ten", "", "10");
    add_client(*gate, "two", "", "2");
    add_client(*gate, "none", "", "");
    ClientInfo client;
    client.CategoryID = 1;
    EXPECT_EQ(names(kClients, *gate, client), " one list ten");
    client.CategoryID = 12;
    EXPECT_EQ(names(kClients, *gate, client), " list");
}

TEST(ClientsGate, category_list_matches_contacts_of_any_of_them) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "two", "", "2");
    add_client(*gate, "five", "", "4;5");
    add_client(*gate, "three", "", "3");
    ClientInfo client;
    client.CatIDs = "2;5";
    EXPECT_EQ(names(kClients, *gate, client), " two five");
    client.CategoryID = 4;
    EXPECT_EQ(names(kClients, *gate, client), " five");
    client = ClientInfo();
    client.CatIDs = "2;";  // the empty piece is the number 0
    add_client(*gate, "ten", "", "10");
    EXPECT_EQ(names(kClients, *gate, client), " two ten");
}

TEST(ClientsGate, search_name_and_title_are_contained) {
    OpenGate<IDBgate1> gate;
    ClientInfo client;
    client.Name = "Ann Peters";
    client.Title = "Head of sales";
    ASSERT_EQ(call(*gate, &IDBgate1::AddClient, client), S_OK);
    add_client(*gate, "Peter", "", "");
    client = ClientInfo();
    client.SearchName = "peter";
    EXPECT_EQ(names(kClients, *gate, client), " Ann Peters Peter");
    client.Title = "sale";
    EXPECT_EQ(names(kClients, *gate, client), " Ann Peters");
    client = ClientInfo();
    client.Name = "Peter";  // no member of the filter
    EXPECT_EQ(names(kClients, *gate, client), " Ann Peters Peter");
}

TEST(ClientsGate, quote_in_a_search_fails) {
    OpenGate<IDBgate1> gate;
    add_client(*gate, "A", "The \"Sound\"", "");
    ClientInfo client;
    client.Company = "\"Sound";
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstClient, client), E_FAIL);
    EXPECT_EQ(call(*gate, &IDBgate1::FindClient, client), E_FAIL);
    EXPECT_EQ(client.Company, "\"Sound");
}

TEST(ClientsGate, null_category_list_matches_no_category) {
    OpenGate<IDBgate1> gate;
    ClientInfo client;
    client.Name = "half";
    client.LastName = CString(std::string(256, 'x').c_str());  // the columns behind stay Null
    client.CatIDs = "1";
    EXPECT_EQ(call(*gate, &IDBgate1::AddClient, client), E_FAIL);
    add_client(*gate, "whole", "", "1");
    ClientInfo filter;
    filter.CategoryID = 1;
    EXPECT_EQ(names(kClients, *gate, filter), " whole");
    EXPECT_EQ(names(kClients, *gate, ClientInfo()), " half whole");
}

// ---- Categories

TEST(CategoriesGate, filter_goes_by_type_and_contained_name) {
    OpenGate<IDBgate1> gate;
    for (const auto& [name, type] : {std::pair{"Artists", 1}, {"Clients", 2}, {"Art directors", 2}}) {
        ConCatInfo category;
        category.Name = name;
        category.Type = type;
        ASSERT_EQ(call(*gate, &IDBgate1::AddConCat, category), S_OK);
    }
    ConCatInfo category;
    EXPECT_EQ(names(kCategories, *gate, category), " Artists Clients Art directors");
    EXPECT_EQ(call(*gate, &IDBgate1::FindConCat, category), E_FAIL);
    category.Name = "art";
    EXPECT_EQ(names(kCategories, *gate, category), " Artists Art directors");
    category.Type = 2;
    ASSERT_EQ(call(*gate, &IDBgate1::FindConCat, category), S_OK);
    EXPECT_EQ(category.RecID, 3);
    EXPECT_EQ(category.Name, "Art directors");
}

TEST(CategoriesGate, category_without_a_name_is_refused) {
    OpenGate<IDBgate1> gate;
    ConCatInfo category;
    EXPECT_EQ(call(*gate, &IDBgate1::AddConCat, category), E_FAIL);
    category = ConCatInfo();
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstConCat, category), E_FAIL);  // nothing was saved
}

// ---- Messages

TEST(MessagesGate, first_message_of_a_contact_without_messages_fails) {
    OpenGate<IDBgate1> gate;
    MsgInfo message;
    message.ContactID = 3;
    ASSERT_EQ(call(*gate, &IDBgate1::AddMsg, message), S_OK);
    message = MsgInfo();
    message.ContactID = 4;
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstMsg, message), E_FAIL);
    message.ContactID = 0;  // 0 is a contact like any other here
    EXPECT_EQ(call(*gate, &IDBgate1::EnumFirstMsg, message), E_FAIL);
}

TEST(MessagesGate, find_goes_by_the_key_alone) {
    OpenGate<IDBgate1> gate;
    MsgInfo message;
    message.ContactID = 3;
    ASSERT_EQ(call(*gate, &IDBgate1::AddMsg, message), S_OK);
    message.RecID = 0;
    EXPECT_EQ(call(*gate, &IDBgate1::FindMsg, message), E_FAIL);
}

// ---- Services

TEST(ServicesGate, room_matches_its_services_and_those_of_no_room) {
    OpenGate<IDBgate1> gate;
    add_service(*gate, "here", 1, 3);
    add_service(*gate, "elsewhere", 1, 4);
    add_service(*gate, "anywhere", 1, 0);
    ServiceInfo service;
    service.RoomID = 3;
    EXPECT_EQ(names(kServices, *gate, service), " here anywhere");
    service.Name = "any";
    EXPECT_EQ(names(kServices, *gate, service), " anywhere");
}

TEST(ServicesGate, null_room_matches_no_room) {
    OpenGate<IDBgate1> gate;
    add_service(*gate, "anywhere", 1, 0);
    ServiceInfo service;
    service.Name = CString(std::string(256, 'x').c_str());  // the columns behind stay Null
    EXPECT_EQ(call(*gate, &IDBgate1::AddService, service), E_FAIL);
    service = ServiceInfo();
    service.RoomID = 3;
    EXPECT_EQ(names(kServices, *gate, service), " anywhere");
    service = ServiceInfo();
    service.RecID = 2;
    ASSERT_EQ(call(*gate, &IDBgate1::FindService, service), S_OK);
    EXPECT_EQ(service.RoomID, 0);  // Null reads as 0 all the same
}

TEST(ServicesGate, find_without_key_gives_the_first_service_that_matches) {
    OpenGate<IDBgate1> gate;
    add_service(*gate, "mixing", 1, 3);
    add_service(*gate, "mastering", 2, 3);
    ServiceInfo service;
    EXPECT_EQ(call(*gate, &IDBgate1::FindService, service), E_FAIL);
    service.ContactID = 2;
    ASSERT_EQ(call(*gate, &IDBgate1::FindService, service), S_OK);
    EXPECT_EQ(service.Name, "mastering");
}

TEST(ServicesGate, update_and_delete_go_by_the_key_alone) {
    OpenGate<IDBgate1> gate;
    add_service(*gate, "mixing", 1, 3);
    ServiceInfo service;
    service.ContactID = 1;
    EXPECT_EQ(call(*gate, &IDBgate1::UpdateService, service), E_FAIL);
    EXPECT_EQ(call(*gate, &IDBgate1::DeleteService, service), E_FAIL);
    EXPECT_EQ(names(kServices, *gate, ServiceInfo()), " mixing");
}

}  // namespace
