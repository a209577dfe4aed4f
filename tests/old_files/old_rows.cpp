// The rows of a studio that has been used for years. Values depend on the row's number, so that every table has
// ordinary and odd ones in a fixed mixture.
#include <array>

#include "tests/old_files/old_files.h"

namespace testing_support {
namespace {

using jet::Null;

// The value for the number, cyclically.
template <class Value, std::size_t kCount>
const Value& pick(const std::array<Value, kCount>& values, std::int32_t number) {
    return values[static_cast<std::size_t>(number) % kCount];
}

constexpr std::array kFirstNames = {"Jürgen", "Anna", "Renée", "Zoë", "Bob", "Ines"};
constexpr std::array kLastNames = {"Groß", "Müller", "O'Hara", "", "van der Berg", "Smith"};
constexpr std::array kTypes = {"Album", "Single", "Jingle", "Hörspiel"};

std::string numbered(const char* text, std::int32_t number) { return text + (" " + std::to_string(number)); }

// A date as files below version 200000 store it: mostly in the system's format, sometimes no date at all.
jet::Value old_date(std::int32_t number) {
    switch (number % 10) {
        case 3: return jet::Value(std::u16string());
        case 5: return Null{};
        case 7: return jet::from_utf8("next week");
        case 8: return jet::from_utf8("2003:05:06");
        case 9: return jet::from_utf8(date_text(2001, 13, 32));
        default: return jet::from_utf8(date_text(1998 + number % 8, 1 + number % 12, 1 + number % 28));
    }
}

jet::Date new_date(std::int32_t number) { return day(1998 + number % 8, 1 + number % 12, 1 + number % 28); }

std::string engineer_name(std::int32_t number) {
    return std::string(pick(kFirstNames, number)) + " \"Fader\" " + std::to_string(number);
}

std::string song_name(std::int32_t number) {
    switch (number % 15) {
        case 4: return "Grüße aus Köln " + std::to_string(number);
        case 7: return "What? #" + std::to_string(number) + "*";
        case 9: return "The \"Quoted\" One " + std::to_string(number);
        case 11: return "Take [" + std::to_string(number);
        default: return numbered("Song", number);
    }
}

jet::Value mix_file(std::int32_t number) {
    switch (number % 3) {
        case 0: return jet::from_utf8("D:\\Mixe\\Straße\\" + std::to_string(number) + ".wav");
        case 1: return jet::Value(std::u16string());
        default: return Null{};
    }
}

void fill_lists(OldFile& file) {
    for (const char* const table : {"Def_TrackDestination", "Def_TrackTypes", "Def_ProjTypes", "Def_EquipActs"}) {
        for (std::int32_t i = 0; i < 5; ++i) file.add(table, {{"Name", numbered("Eintrag für", i)}});
    }
    for (std::int32_t i = 0; i < 4; ++i) {
        file.add("Def_StockTypes", {{"TypeName", numbered("Tape", i)},
                                    {"InStock", i},
                                    {"ItemPrice", amount(12 + i, 5000)},
                                    {"ExData", i % 2 == 0 ? jet::Value(0) : jet::Value()}});
        file.add("Def_Sequencer", {{"Name", numbered("Sequencer", i)}, {"Path", "C:\\Seq\\" + std::to_string(i)}});
    }
}

// The tables of version 200000 and later.
void fill_newer_tables(OldFile& file, const StudioSize& size) {
    if (file.has("LibGroups")) {
        for (std::int32_t i = 1; i <= 3; ++i) {
            const std::int32_t group = file.add("LibGroups", {{"Name", numbered("Gruppe", i)}});
            const std::int32_t library =
                file.add("MediaLibs", {{"GroupID", group}, {"Name", numbered("Bibliothek", i)}, {"Descript", Null{}}});
            file.add("MediaFiles", {{"LibID", library}, {"Descript", "Möwen"}, {"Path", "E:\\Ton\\möwen.wav"}});
        }
        for (std::int32_t i = 1; i <= 3; ++i) {
            file.add("Def_Rooms", {{"Name", numbered("Room", i)}, {"BasePrice", amount(40)}, {"FullPrice", Null{}}});
        }
        file.add("Def_Invoice", {{"StudioName", "Tonstudio Süd"}, {"BaseCounter", 100}, {"VAT1", 17}});
        for (std::int32_t i = 0; i < size.contacts; ++i) {
            file.add("Bookings", {{"DateStart", new_date(i)},
                                  {"DateEnd", i % 4 == 0 ? jet::Value() : jet::Value(new_date(i + 1))},
                                  {"ClientID", 1 + i % 7},
                                  {"ClientName", pick(kLastNames, i)},
                                  {"Notes", i % 3 == 0 ? jet::Value() : jet::from_utf8("mit Chor")}});
        }
    }
    if (file.has("Def_Tax")) file.add("Def_Tax", {{"TaxName", "MwSt"}, {"TaxSymbol", "%"}, {"TaxVal", amount(17)}});
}

void fill_projects(OldFile& file, const StudioSize& size) {
    for (std::int32_t i = 1; i <= size.projects; ++i) {
        file.add("Projects", {{"Name", numbered("Projekt", i)},
                              {"Type", pick(kTypes, i)},
                              {"Producer", i % 3 == 0 ? jet::Value() : jet::from_utf8("Große Produktion")},
                              {"Client", pick(kLastNames, i)},
                              {"ClientID", 1 + i % size.contacts},
                              {"Director", ""},
                              {"Folder", "D:\\Projekte"},
                              {"ExData", 0},
                              {"Notes", std::string(i % 4 == 0 ? 3000 : 20, 'n')}});
    }
    for (std::int32_t i = 1; i <= size.songs; ++i) {
        file.add("Songs", {{"ProjID", 1 + i % size.projects},
                           {"Name", song_name(i)},
                           {"Artist", pick(kFirstNames, i)},
                           {"Copyrights", Null{}},
                           {"Notes", i % 5 == 0 ? std::string(600, 's') : std::string()},
                           {"MixFile", mix_file(i)},
                           {"Folder", ""},
                           {"ClientID", 1 + i % size.contacts},
                           {"ExData", i % 2 == 0 ? jet::Value(i) : jet::Value()}});
    }
    for (std::int32_t i = 1; i <= size.tracks; ++i) {
        file.add("Tracks", {{"SongID", 1 + i % size.songs},
                            {"Number", i % 24},
                            {"Name", numbered("Spur", i)},
                            {"Type", pick(kTypes, i)},
                            {"Date", old_date(i)},
                            {"Performer", pick(kFirstNames, i)},
                            {"Notes", Null{}}});
    }
}

void fill_contacts(OldFile& file, const StudioSize& size) {
    for (std::int32_t i = 1; i <= size.contacts; ++i) {
        file.add("Clients", {{"Name", pick(kFirstNames, i)},
                             {"LastName", i % 9 == 0 ? jet::Value() : jet::from_utf8(pick(kLastNames, i))},
                             {"Address", "Straße " + std::to_string(i)},
                             {"Email", i % 2 == 0 ? "" : "post@example.org"},
                             {"Fax", i % 4 == 0 ? jet::Value() : jet::from_utf8("0221-" + std::to_string(i))},
                             {"Phone1", "0221-" + std::to_string(1000 + i)},
                             {"Phone2", Null{}},
                             {"Notes", i % 6 == 0 ? std::string(900, 'c') : std::string()}});
    }
    for (std::int32_t i = 1; i <= size.engineers; ++i) {
        file.add("Def_Engineers",
                 {{"Name", engineer_name(i)}, {"Price", i % 3 == 0 ? jet::Value() : jet::Value(amount(20 + i, 2500))}});
    }
}

void fill_stock(OldFile& file) {
    for (std::int32_t i = 1; i <= 30; ++i) {
        file.add("Stock", {{"Name", numbered("Band", i)},
                           {"Type", "DAT"},
                           {"TypeID", 1 + i % 4},
                           {"Quantity", i},
                           {"Supplier", i % 2 == 0 ? jet::Value() : jet::from_utf8("Händler")},
                           {"InStock", i % 5}});
        file.add("Supply", {{"ProjID", 1 + i % 3}, {"StockID", i}, {"Client", ""}, {"Date", new_date(i)}});
        file.add("Equipment", {{"Name", numbered("Gerät", i)},
                               {"Action", "Repair"},
                               {"Date", old_date(i)},
                               {"ActDate", i % 4 == 0 ? jet::Value() : jet::Value(new_date(i))},
                               {"Cost", "$ " + std::to_string(i)},
                               {"Notes", Null{}}});
    }
}

jet::Value total(std::int32_t number) {
    constexpr std::array kTotals = {"2:30", "1.5", "", "long", "0:20", "12", "3:75"};
    return number % 8 == 7 ? jet::Value() : jet::from_utf8(pick(kTotals, number % 8));
}

// Each session is in the project of the song of the same number; its engineer is in the list or not.
void fill_sessions(OldFile& file, const StudioSize& size) {
    for (std::int32_t i = 1; i <= size.sessions; ++i) {
        const std::int32_t song = 1 + i % size.songs;
        jet::Value engineer = jet::from_utf8(engineer_name(1 + i % size.engineers));
        if (i % 11 == 0) engineer = jet::from_utf8("Gast " + std::to_string(i % 3));
        if (i % 13 == 0) engineer = jet::from_utf8("");
        if (i % 17 == 0) engineer = Null{};
        file.add("Sessions", {{"ProjID", 1 + song % size.projects},
                              {"SongName", i % 19 == 0 ? jet::Value() : jet::from_utf8(song_name(song))},
                              {"Engineer", engineer},
                              {"Date", old_date(i)},
                              {"RecDate", new_date(i)},
                              {"StartTime", "10:00"},
                              {"EndTime", ""},
                              {"Total", total(i)},
                              {"Notes", i % 10 == 0 ? std::string(400, 'a') : std::string()},
                              {"Client", "Müller"},
                              {"ClientID", 1 + i % size.contacts},
                              {"RoomID", i % 3 == 0 ? jet::Value() : jet::Value(i % 3)},
                              {"ExData", i % 2 == 0 ? jet::Value(0) : jet::Value()}});
    }
}

}  // namespace

void fill_studio(OldFile& file, const StudioSize& size) {
    fill_lists(file);
    fill_newer_tables(file, size);
    fill_contacts(file, size);
    fill_projects(file, size);
    fill_stock(file);
    fill_sessions(file, size);
}

void fill_invoices(OldFile& file, const StudioSize& size) {
    for (std::int32_t i = 1; i <= size.invoices; ++i) {
        const std::int32_t key =
            file.add("Invoices", {{"InvoiceID", 1000 + i},
                                  {"ClientName", pick(kLastNames, i)},
                                  {"InvTaxIDs", "1;2"},
                                  {"Date", i % 5 == 0 ? jet::Value() : jet::Value(new_date(i))},
                                  {"SubTotal", amount(i, 5000)},
                                  {"Tax", i % 3},
                                  {"Total", i % 6 == 0 ? jet::Value() : jet::Value(amount(2 * i, 2500))},
                                  {"Notes", i % 2 == 0 ? jet::Value() : jet::from_utf8("bezahlt")}});
        for (std::int32_t line = 0; line < 3; ++line) {
            file.add("InvoiceParams", {{"InvoiceID", line == 2 && i % 7 == 0 ? 9999 : key},
                                       {"Type", line},
                                       {"Name", numbered("Position", line)},
                                       {"TaxIDs", ""},
                                       {"ItemPrice", amount(line, 100)},
                                       {"Total", Null{}}});
        }
    }
}

}  // namespace testing_support
