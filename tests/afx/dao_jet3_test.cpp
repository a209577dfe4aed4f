// Records exchanged with tables of Jet 3, whose texts are in a code page.
#include <array>
#include <cstddef>
#include <vector>

#include "jet/tables/database.h"
#include "tests/afx/dao_test_support.h"

namespace {

using afx::ExchangedMember;

struct Song {
    LONG number = 0;
    CString name;
    CString notes;
};

constexpr std::array<const char*, 3> kColumns = {"Number", "Name", "Notes"};

std::vector<ExchangedMember> members_of(const std::array<const char*, 3>& columns) {
    std::vector<ExchangedMember> members(3);
    for (std::size_t i = 0; i < 3; ++i) {
        members[i].column = columns[i];
        members[i].type = i == 0 ? ExchangedMember::Type::kInteger : ExchangedMember::Type::kText;
    }
    members[0].offset = offsetof(Song, number);
    members[1].offset = offsetof(Song, name);
    members[2].offset = offsetof(Song, notes);
    return members;
}

class DaoJet3 : public FolderTest {
protected:
    DaoJet3() : rows_(&database_) {
        jet::CreateOptions options;
        options.format = &jet::kJet3;
        jet::NewColumn columns[3];
        columns[0].name = u"Number";
        columns[1].name = u"Name";
        columns[1].type = jet::ColumnType::kText;
        columns[1].text_characters = 20;
        columns[2].name = u"Notes";
        columns[2].type = jet::ColumnType::kMemo;
        auto database = jet::Database::create(path("songs.mdb"), options);
        database->create_table(u"Songs", columns);
        database->close();
        database_.Open(path("songs.mdb").c_str(), TRUE);
        rows_.Open(dbOpenDynaset, "SELECT * FROM [Songs]", 0);
    }
    // As the gates do it: what the exchange leaves goes by value.
    void write(const Song& song) {
        const afx::FieldExchange& exchange = rows_.GetFieldExchange(kColumns, members_of);
        const CString* const texts[] = {nullptr, &song.name, &song.notes};
        for (std::size_t i = 0; (i = rows_.WriteFields(exchange, i, &song)) < kColumns.size(); ++i) {
            rows_.SetFieldValue(rows_.GetExchangedField(exchange, i), texts[i]->GetString());
        }
    }
    Song read() {
        const afx::FieldExchange& exchange = rows_.GetFieldExchange(kColumns, members_of);
        Song song;
        CString* const texts[] = {nullptr, &song.name, &song.notes};
        for (std::size_t i = 0; (i = rows_.ReadFields(exchange, i, &song)) < kColumns.size(); ++i) {
            const COleVariant value = rows_.GetFieldValue(rows_.GetExchangedField(exchange, i));
            *texts[i] = V_BSTRT(&value);
        }
        return song;
    }

    CDaoDatabase database_;
    CDaoRecordset rows_;
};

TEST_F(DaoJet3, record_comes_back_as_it_was_written) {
    for (const char* name : {"Night Trains", "M\xFCller", "x"}) {
        rows_.AddNew();
        write({7, name, "Caf\xE9 notes, some more of them than stay in the row"});
        rows_.Update();
        rows_.SetBookmark(rows_.GetLastModifiedBookmark());
        const Song song = read();
        EXPECT_EQ(song.number, 7);
        EXPECT_EQ(song.name, name);
        EXPECT_EQ(song.notes, "Caf\xE9 notes, some more of them than stay in the row");
    }
}

TEST_F(DaoJet3, each_byte_of_the_code_page_reads_as_by_value) {
    for (int byte = 1; byte < 256; ++byte) {
        const char text[] = {'a', static_cast<char>(byte), 'b', '\0'};
        rows_.AddNew();
        write({byte, text, text});
        rows_.Update();
        rows_.SetBookmark(rows_.GetLastModifiedBookmark());
        const Song song = read();
        const COleVariant name = rows_.GetFieldValue("Name");
        const COleVariant notes = rows_.GetFieldValue("Notes");
        EXPECT_STREQ(song.name.GetString(), V_BSTRT(&name)) << byte;
        EXPECT_STREQ(song.notes.GetString(), V_BSTRT(&notes)) << byte;
    }
}

TEST_F(DaoJet3, text_may_have_as_many_characters_as_the_column) {
    rows_.AddNew();
    write({1, "exactly 20 letters..", ""});
    EXPECT_EQ(error_of([&] { write({1, "these are 21 letters.", ""}); }), 3163);
}

}  // namespace
