#include "db/upgrade/contact_model.h"

#include <cstring>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>

#include "db/rows.h"
#include "db/schema.h"
#include "db/upgrade/date_reader.h"
#include "db/upgrade/duration.h"
#include "db/values.h"

namespace db {
namespace {

// The key of the category of engineers, as number and as list of categories.
constexpr LONG kEngineers = 6;
constexpr char kEngineersList[] = "6";
constexpr char kEngineering[] = "Engineering";

void set_zero(CDaoRecordset& rows, std::initializer_list<const char*> fields) {
    const COleVariant zero = long_value(0);
    for (const char* const field : fields) rows.SetFieldValue(field, zero);
}

CString text_of(CDaoRecordset& rows, const char* field) { return value_to_text(rows.GetFieldValue(field)); }

LONG integer_of(CDaoRecordset& rows, const char* field) { return value_to_integer(rows.GetFieldValue(field)); }

bool is_blank(const CString& text) {
    return std::string_view(text.GetString()).find_first_not_of(' ') == std::string_view::npos;
}

// In the delimiters of a statement.
std::string quoted(const CString& text) {
    std::string result = "\"";
    for (const char c : std::string_view(text.GetString())) result += c == '"' ? "\"\"" : std::string(1, c);
    return result + "\"";
}

// The value of `field` in the statement's first row; 0 when there is none.
LONG first_integer(CDaoDatabase& database, const std::string& statement, const char* field) {
    CDaoRecordset rows(&database);
    rows.Open(dbOpenDynaset, statement.c_str(), dbForwardOnly | dbReadOnly);
    return rows.GetRecordCount() < 1 ? 0 : integer_of(rows, field);
}

// Whether the contact's text survived conversion to the narrow code page: characters that it lacks have become "?".
bool is_whole(CDaoDatabase& database, CDaoRecordset& rows, const char* field) {
    const CString text = text_of(rows, field);
    if (std::strchr(text.GetString(), '?') == nullptr) return true;
    const std::string key = std::to_string(integer_of(rows, "ClientID"));
    return first_integer(database,
                         "SELECT * FROM [Clients] WHERE [ClientID]=" + key + " AND [" + field + "]=" + quoted(text),
                         "ClientID") != 0;
}

// ---- Engineers

LONG find_engineer(CDaoDatabase& database, const CString& name) {
    return first_integer(
        database,
        "SELECT * FROM [Clients] WHERE [CategoryID]=" + std::to_string(kEngineers) + " AND [Name]=" + quoted(name),
        "ClientID");
}

LONG add_engineer(CDaoDatabase& database, const CString& name) {
    CDaoRecordset rows(&database);
    open_table(rows, "Clients");
    rows.AddNew();
    for (const FieldSchema& field : find_table(studio_tables(), "Clients")->fields) {
        if (field.kind == FieldKind::kText || field.kind == FieldKind::kMemo) rows.SetFieldValue(field.name, "");
    }
    rows.SetFieldValue("Name", name.GetString());
    rows.SetFieldValue("Title", "Imported Sound Engineer");
    rows.SetFieldValue("CategoryID", long_value(kEngineers));
    rows.SetFieldValue("CatIDs", kEngineersList);
    const LONG contact = integer_of(rows, "ClientID");
    rows.Update();
    return contact;
}

LONG find_or_add_engineer(CDaoDatabase& database, const CString& name) {
    const LONG contact = find_engineer(database, name);
    return contact != 0 ? contact : add_engineer(database, name);
}

struct Engineer {
    LONG contact = 0;
    LONG service = 0;
};

// The engineers of sessions. There are many sessions and few engineers, so each name is looked up once.
class Engineers {
public:
    explicit Engineers(CDaoDatabase& database) : database_(database) {}

    Engineer named(const CString& name) {
        const auto [place, is_new] = known_.try_emplace(name.GetString());
        if (is_new) place->second = look_up(name);
        return place->second;
    }

private:
    Engineer look_up(const CString& name) {
        const LONG contact = find_or_add_engineer(database_, name);
        const std::string services = "SELECT * FROM [Services] WHERE [ContactID]=" + std::to_string(contact) +
                                     " AND [Name]=\"" + kEngineering + "\"";
        return {contact, first_integer(database_, services, "RecID")};
    }

    CDaoDatabase& database_;
    std::map<std::string, Engineer> known_;
};

// ---- Songs

struct Song {
    LONG song = 0;
    LONG artist = 0;
};

// The songs of sessions, each pair of project and name looked up once.
class Songs {
public:
    explicit Songs(CDaoDatabase& database) : database_(database) {}

    Song named(LONG project, const CString& name) {
        const auto [place, is_new] = known_.try_emplace({project, name.GetString()});
        if (is_new) place->second = look_up(project, name);
        return place->second;
    }

private:
    // The name is inserted into the statement unescaped; a name that the engine refuses, such as one with a quote, has
    // no song.
    Song look_up(LONG project, const CString& name) {
        Song found;
        attempt([&] {
            CDaoRecordset rows(&database_);
            rows.Open(dbOpenDynaset,
                      ("SELECT * FROM [Songs] WHERE [ProjID]=" + std::to_string(project) + " AND [Name] LIKE \"" +
                       name.GetString() + "\"")
                          .c_str(),
                      dbForwardOnly | dbReadOnly);
            if (rows.GetRecordCount() < 1) return;
            found = {integer_of(rows, "SongID"), integer_of(rows, "ArtistID")};
        });
        return found;
    }

    CDaoDatabase& database_;
    std::map<std::pair<LONG, std::string>, Song> known_;
};

void add_participant(CDaoRecordset& rows, LONG session, const Engineer& engineer, const CString& total) {
    rows.AddNew();
    rows.SetFieldValue("SessionID", long_value(session));
    rows.SetFieldValue("ContactID", long_value(engineer.contact));
    rows.SetFieldValue("CategoryID", long_value(kEngineers));
    rows.SetFieldValue("ServiceID", long_value(engineer.service));
    rows.SetFieldValue("Duration", COleVariant(hours_of(total.GetString())));
    rows.SetFieldValue("Communicate", "");
    rows.SetFieldValue("Notes", "");
    set_zero(rows, {"ExData"});
    rows.Update();
}

}  // namespace

void convert_bookings(CDaoDatabase& database) {
    edit_each_row(database, "Bookings", [](CDaoRecordset& rows) { set_zero(rows, {"StatusID"}); });
}

void convert_contacts(CDaoDatabase& database) {
    edit_each_row(database, "Clients", [&](CDaoRecordset& rows) {
        // A name that is not whole, or would become too long, stays; the last name keeps its own column.
        if (is_whole(database, rows, "Name") && is_whole(database, rows, "LastName")) {
            const CString name = text_of(rows, "Name") + " " + text_of(rows, "LastName");
            attempt([&] { rows.SetFieldValue("Name", name.GetString()); });
        }
        set_zero(rows, {"CategoryID"});
        rows.SetFieldValue("CatIDs", "1");
        rows.SetFieldValue("Phone1Descript", "Phone 1");
        rows.SetFieldValue("Phone2Descript", "Phone 2");
        rows.SetFieldValue("Phone3Descript", "Phone 3");
        rows.SetFieldValue("Phone4Descript", "Phone 4");
        rows.SetFieldValue("Phone5Descript", "Fax");
        rows.SetFieldValue("Phone5", text_of(rows, "Fax").GetString());
    });
}

void convert_projects(CDaoDatabase& database) {
    const COleVariant today = date_value(CTime::GetCurrentTime(), TimeOfDay::kDropped);
    const COleVariant no_discount(COleCurrency(0, 0));
    edit_each_row(database, "Projects", [&](CDaoRecordset& rows) {
        rows.SetFieldValue("ProjCreateDate", today);
        set_zero(rows, {"ProjTypeID", "ProducerID", "DirectorID", "DiscountType"});
        rows.SetFieldValue("DiscountVal", no_discount);
    });
}

void convert_engineers(CDaoDatabase& database) {
    CDaoRecordset services(&database);
    open_table(services, "Services");
    for_each_row(database, engineers_table().name, [&](CDaoRecordset& rows) {
        const CString name = text_of(rows, "Name");
        if (is_blank(name)) return;
        const LONG contact = find_or_add_engineer(database, name);
        services.AddNew();
        services.SetFieldValue("Name", kEngineering);
        services.SetFieldValue("ContactID", long_value(contact));
        services.SetFieldValue("CategoryID", long_value(kEngineers));
        set_zero(services, {"TimeUnit", "RoomID", "ExData"});
        services.SetFieldValue("Price", rows.GetFieldValue("Price"));
        services.Update();
    });
}

void convert_sessions(CDaoDatabase& database) {
    Songs songs(database);
    Engineers engineers(database);
    CDaoRecordset participants(&database);
    open_table(participants, "Participants");
    edit_each_row(database, "Sessions", [&](CDaoRecordset& rows) {
        const Song song = songs.named(integer_of(rows, "ProjID"), text_of(rows, "SongName"));
        rows.SetFieldValue("SongID", long_value(song.song));
        rows.SetFieldValue("ArtistID", long_value(song.artist));
        if (rows.GetFieldValue("RoomID").vt == VT_NULL) set_zero(rows, {"RoomID"});
        const CString engineer = text_of(rows, "Engineer");
        if (is_blank(engineer)) return;
        add_participant(participants, integer_of(rows, "SessionID"), engineers.named(engineer), text_of(rows, "Total"));
    });
}

void convert_songs(CDaoDatabase& database) {
    edit_each_row(database, "Songs", [](CDaoRecordset& rows) {
        set_zero(rows, {"ArtistID", "CopyrightsID", "ProducerID", "ComposerID", "WriterID"});
    });
}

void convert_stock(CDaoDatabase& database) {
    edit_each_row(database, "Stock", [](CDaoRecordset& rows) {
        set_zero(rows, {"SupplierID"});
        rows.SetFieldValue("Cost", COleVariant(0.0f));
    });
}

void convert_tracks(CDaoDatabase& database) {
    const DateReader reader;
    edit_each_row(database, "Tracks", [&](CDaoRecordset& rows) {
        set_zero(rows, {"TypeID", "PerformerID", "DestinationID", "EngineerID", "ProducerID", "Status", "Mode"});
        const auto date = reader.read(text_of(rows, "Date").GetString());
        if (date) rows.SetFieldValue("TDate", COleVariant(*date));
    });
}

void convert_mix_files(CDaoDatabase& database) {
    CDaoRecordset mixes(&database);
    open_table(mixes, "MixFiles");
    for_each_row(database, "Songs", [&](CDaoRecordset& songs) {
        const CString path = text_of(songs, "MixFile");
        if (path.IsEmpty()) return;
        mixes.AddNew();
        mixes.SetFieldValue("SongID", songs.GetFieldValue("SongID"));
        mixes.SetFieldValue("Path", path.GetString());
        mixes.SetFieldValue("Descript", "");
        set_zero(mixes, {"ExData"});
        mixes.Update();
    });
}

}  // namespace db
