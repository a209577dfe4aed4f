// The demonstration: a studio from nothing, a day's work on it through the gates, and what was left on the disk.
#include <filesystem>

#include "jet/check/check.h"
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/demo_folder.h"
#include "tools/errors.h"
#include "tools/gate_table.h"
#include "tools/interrupt.h"
#include "tools/member_text.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

void require(HRESULT result, const char* what) {
    if (FAILED(result)) throw CommandError(std::string(what) + " failed");
}

// The keys of what the day's work made and what the summary asks for again.
struct Keys {
    std::string album, jingle, song, quartet, radio, singer, singers, session, room, tape, invoice, library, microphone;
};

// The work, each step by the methods of the table's gate.
class Day {
public:
    explicit Day(Studio& studio) : studio_(studio) {}

    Keys work() {
        contacts();
        projects();
        sessions();
        store();
        money();
        media();
        gear();
        return keys_;
    }

private:
    std::string add(const char* table, const Assignments& members) {
        require_uninterrupted();
        return gate_table(table).add(studio_, members);
    }

    void contacts() {
        const std::string bands = add("ContactCategories", {{"Name", "Bands"}, {"Type", "1"}});
        keys_.singers = add("ContactCategories", {{"Name", "Singers"}, {"Type", "1"}});
        keys_.quartet = add("Clients", {{"Name", "Aurora Quartet"}, {"CatIDs", bands + ";"}, {"City", "Bergen"}});
        keys_.radio = add("Clients", {{"Name", "North Radio"}, {"Company", "North Radio"}, {"City", "Tromsø"}});
        keys_.singer =
            add("Clients",
                {{"Name", "Jonas"}, {"LastName", "Lindström"}, {"CatIDs", keys_.singers + ";"}, {"City", "Köln"}});
        service_ = add(
            "Services",
            {{"Name", "Lead vocals"}, {"ContactID", keys_.singer}, {"CategoryID", keys_.singers}, {"Price", "85.5"}});
        add("Messages", {{"ContactID", keys_.singer},
                         {"ConnectType", "e-mail"},
                         {"Date", "2026-03-01"},
                         {"Descript", "In on the 12th"}});
    }

    void projects() {
        add("Def_ProjTypes", {{"Name", "Album"}});
        add("Def_TrackTypes", {{"Name", "Vocal"}});
        const std::string producer = "Dana Reuter";
        keys_.album = add("Projects", {{"Name", "Night Trains"},
                                       {"Client", "Aurora Quartet"},
                                       {"ClientID", keys_.quartet},
                                       {"Type", "Album"},
                                       {"ProjCreateDate", "2026-03-02"},
                                       {"DiscountVal", "12.5"},
                                       {"Producer", producer}});
        keys_.jingle = add("Projects", {{"Name", "Harbour Jingle"},
                                        {"Client", "North Radio"},
                                        {"ClientID", keys_.radio},
                                        {"Type", "Jingle"},
                                        {"ProjCreateDate", "2026-03-09"},
                                        {"Producer", producer}});
        const std::string sketches =
            add("Projects", {{"Name", "Sketches"}, {"ClientID", keys_.quartet}, {"Type", "Demo"}});
        add("Projects", {{"Name", "Grüße aus Köln"},
                         {"Client", "Jonas Lindström"},
                         {"ClientID", keys_.singer},
                         {"Type", "Album"},
                         {"ProjCreateDate", "2026-05-20"},
                         {"DiscountVal", "7.25"}});
        gate_table("Projects")
            .set(studio_, keys_.jingle, {{"Name", "Harbour Jingle (long cut)"}, {"DiscountVal", "3"}});
        gate_table("Projects").remove(studio_, sketches);

        keys_.song = add("Songs", {{"ProjID", keys_.album}, {"Name", "Last Departure"}, {"Artist", "Aurora Quartet"}});
        add("Songs", {{"ProjID", keys_.album}, {"Name", "Platform 9"}, {"Artist", "Aurora Quartet"}});
        add("Tracks", {{"SongID", keys_.song},
                       {"Number", "1"},
                       {"Name", "Strings"},
                       {"Performer", "Aurora Quartet"},
                       {"TDate", "2026-03-12"}});
        add("Tracks", {{"SongID", keys_.song},
                       {"Number", "2"},
                       {"Name", "Lead"},
                       {"Type", "Vocal"},
                       {"Performer", "Jonas Lindström"},
                       {"TDate", "2026-03-12"}});
        add("MixFiles", {{"SongID", keys_.song}, {"Descript", "Rough mix"}, {"Path", "D:\\Mixes\\departure-1.wav"}});
    }

    void sessions() {
        keys_.room = add("Def_Rooms", {{"Name", "Studio A"}, {"BasePrice", "40"}, {"FullPrice", "65.5"}});
        add("Def_Sequencer", {{"Name", "Tracker"}, {"Path", "C:\\Tracker\\tracker.exe"}});
        keys_.session = add("Sessions", {{"ProjID", keys_.album},
                                         {"SongID", keys_.song},
                                         {"SongName", "Last Departure"},
                                         {"RecDate", "2026-03-12"},
                                         {"StartTime", "10:00"},
                                         {"EndTime", "14:30"},
                                         {"Total", "4:30"},
                                         {"RoomID", keys_.room}});
        add("Participants", {{"SessionID", keys_.session}, {"ContactID", keys_.quartet}, {"Duration", "4.5"}});
        add("Participants", {{"SessionID", keys_.session},
                             {"ContactID", keys_.singer},
                             {"CategoryID", keys_.singers},
                             {"ServiceID", service_},
                             {"Duration", "2.25"}});
        add("Bookings", {{"DateStart", "2026-03-12T10:00"},
                         {"DateEnd", "2026-03-12T14:30"},
                         {"ClientID", keys_.quartet},
                         {"ClientName", "Aurora Quartet"},
                         {"RoomID", keys_.room},
                         {"SessionID", keys_.session}});
        add("Bookings", {{"DateStart", "2026-04-02T09:15"},
                         {"DateEnd", "2026-04-02T12:00"},
                         {"ClientID", keys_.radio},
                         {"ClientName", "North Radio"},
                         {"RoomID", keys_.room}});
    }

    void store() {
        keys_.tape = add("Def_StockTypes", {{"TypeName", "2\" tape"}, {"ItemPrice", "149.9"}});
        add("Stock", {{"TypeID", keys_.tape},
                      {"Name", "Tape, box of ten"},
                      {"Quantity", "10"},
                      {"Supplier", "Reel & Co"},
                      {"Date", "2026-03-03"},
                      {"Cost", "1240"}});
        add("Supply", {{"StockID", keys_.tape},
                       {"ProjID", keys_.album},
                       {"StockName", "2\" tape"},
                       {"Quantity", "3"},
                       {"Client", "Aurora Quartet"},
                       {"ClientID", keys_.quartet},
                       {"Date", "2026-03-12"}});
        LONG on_hand = 0;
        require(studio_.open().ComputeInStock(parse_number("stock type", keys_.tape), &on_hand), "ComputeInStock");
        add("Equipment",
            {{"Name", "Tape machine"}, {"Action", "Heads cleaned"}, {"ActDate", "2026-03-11"}, {"Cost", "25"}});
    }

    void money() {
        InvoiceDef defaults;
        IDBgate1& gate = studio_.open();
        require(gate.GetInvoiceDef(address_of(defaults)), "GetInvoiceDef");
        defaults.StudioName = "Harbour Sound";
        defaults.BaseCounter = 1000;
        defaults.LastUsedCounter = 1001;
        defaults.Tax = 25;
        require(gate.SetInvoiceDef(address_of(defaults)), "SetInvoiceDef");
        add("ProjActivities", {{"ProjID", keys_.album},
                               {"Date", "2026-03-12"},
                               {"Category", "Room"},
                               {"Item", "Studio A"},
                               {"Quantity", "4.5"},
                               {"Fee", "294.75"}});
        add("ProjPayments", {{"ProjID", keys_.album}, {"Date", "2026-03-20"}, {"Details", "deposit"}, {"Pay", "200"}});
        keys_.invoice = "1001";
        add("Invoices", {{"InvoiceID", keys_.invoice},
                         {"ClientName", "Aurora Quartet"},
                         {"Date", "2026-03-31"},
                         {"SubTotal", "744.45"},
                         {"fTax", "25"},
                         {"Tax_SubTotal", "186.11"},
                         {"Total", "930.56"},
                         {"Paymetns", "200"},
                         {"Balance", "730.56"}});
        add("InvoiceParams", {{"InvoiceID", keys_.invoice},
                              {"Name", "Studio A"},
                              {"FQuantity", "4.5"},
                              {"ItemPrice", "65.5"},
                              {"Total", "294.75"},
                              {"Date", "2026-03-12"}});
        add("InvoiceParams", {{"InvoiceID", keys_.invoice},
                              {"Name", "2\" tape"},
                              {"FQuantity", "3"},
                              {"ItemPrice", "149.9"},
                              {"Total", "449.7"},
                              {"Date", "2026-03-12"}});
    }

    void media() {
        const std::string group = add("LibGroups", {{"Name", "Archive"}});
        keys_.library = add("MediaLibs", {{"GroupID", group}, {"Name", "Takes 2026"}, {"Descript", "kept takes"}});
        add("MediaFiles",
            {{"LibID", keys_.library}, {"Path", "E:\\Takes\\departure-3.wav"}, {"Descript", "the good one"}});
    }

    void gear() {
        const std::string category = add("GearCategories", {{"Name", "Microphones"}});
        keys_.microphone = add("Gear", {{"Manufacturer", "Sorensen"},
                                        {"Model", "R-84"},
                                        {"SerialNo", "A-1177"},
                                        {"CategoryID", category},
                                        {"RoomID", keys_.room},
                                        {"PurchaseDate", "2024-11-05"},
                                        {"Cost", "1850"}});
        const std::string hire =
            add("GearServices", {{"GearID", keys_.microphone}, {"Name", "Ribbon mic, day"}, {"Price", "35"}});
        add("GearRepairs", {{"GearID", keys_.microphone},
                            {"GearName", "R-84"},
                            {"ClaimNo", "C-20"},
                            {"SendDate", "2026-02-02"},
                            {"ReturnDate", "2026-02-20"},
                            {"Technician", "P. Holm"},
                            {"Cost", "120"}});
        add("GearRentals", {{"GearID", keys_.microphone},
                            {"ServiceID", hire},
                            {"ServiceName", "Ribbon mic, day"},
                            {"ProjID", keys_.album},
                            {"ClientID", keys_.quartet},
                            {"RoomID", keys_.room},
                            {"Date", "2026-03-12"},
                            {"Quantity", "1.5"}});
    }

    Studio& studio_;
    Keys keys_;
    std::string service_;
};

// Some columns of the rows that the gate gives for a filter, which must be `count`.
void show(Studio& studio, const char* title, const char* table_name, const Assignments& filter, const Names& columns,
          std::size_t count) {
    require_uninterrupted();
    const GateTable& table = gate_table(table_name);
    const std::vector<Row> rows = rows_of(table, studio, filter);
    output().print("%s\n", title);
    print_aligned(columns, chosen(table.columns(), rows, columns));
    if (rows.size() != count) throw CommandError(std::string("the rows of ") + table_name + " did not come back");
}

void show_summary(Studio& studio, const Keys& keys) {
    show(studio, "Projects", "Projects", {}, {"ProjID", "Name", "Client", "Type", "ProjCreateDate", "DiscountVal"}, 3);
    show(studio, "Songs of Night Trains", "Songs", {{"ProjID", keys.album}}, {"SongID", "Name", "Artist"}, 2);
    show(studio, "Tracks of Last Departure", "Tracks", {{"SongID", keys.song}},
         {"Number", "Name", "Performer", "TDate"}, 2);
    show(studio, "Its mix files", "MixFiles", {{"SongID", keys.song}}, {"Descript", "Path"}, 1);
    show(studio, "Singers among the contacts", "Clients", {{"CategoryID", keys.singers}},
         {"ClientID", "Name", "LastName", "City"}, 1);
    show(studio, "Services of the singer", "Services", {{"ContactID", keys.singer}}, {"Name", "Price"}, 1);
    show(studio, "Sessions of the project", "Sessions", {{"ProjID", keys.album}},
         {"RecDate", "StartTime", "EndTime", "SongName"}, 1);
    show(studio, "Who took part", "Participants", {{"SessionID", keys.session}}, {"ContactID", "ServiceID", "Duration"},
         2);
    show(studio, "Bookings that start in March", "Bookings", {{"DateStart", "2026-03-01"}, {"DateEnd", "2026-03-31"}},
         {"DateStart", "DateEnd", "ClientName"}, 1);
    show(studio, "Stock on hand: ten bought, three handed out", "Def_StockTypes", {},
         {"TypeName", "InStock", "ItemPrice"}, 1);
    show(studio, "Invoices of 2026", "Invoices", {{"FromDate", "2026-01-01"}, {"ToDate", "2026-12-31"}},
         {"InvoiceID", "ClientName", "Date", "SubTotal", "Tax_SubTotal", "Total", "Balance"}, 1);
    show(studio, "Its lines", "InvoiceParams", {{"InvoiceID", keys.invoice}},
         {"Name", "FQuantity", "ItemPrice", "Total"}, 2);
    show(studio, "Kept takes", "MediaFiles", {{"LibID", keys.library}}, {"Path", "Descript"}, 1);
    show(studio, "Gear in Studio A", "Gear", {{"RoomID", keys.room}}, {"Manufacturer", "Model", "SerialNo", "Cost"}, 1);
    show(studio, "Its repairs", "GearRepairs", {{"GearID", keys.microphone}},
         {"SendDate", "ReturnDate", "Technician", "Cost"}, 1);
    show(studio, "Rented in March", "GearRentals", {{"FromDate", "2026-03-01"}, {"ToDate", "2026-03-31"}},
         {"Date", "ServiceName", "Quantity"}, 1);
    InvoiceDef defaults;
    require(studio.open().GetInvoiceDef(address_of(defaults)), "GetInvoiceDef");
    output().print("New invoices come from %s, number %d is the last one used, tax %g\n",
                   to_utf8(defaults.StudioName).c_str(), static_cast<int>(defaults.LastUsedCounter),
                   static_cast<double>(defaults.Tax));
}

void show_files(const StudioFiles& files) {
    for (const std::string& file : {files.studio.path(), files.invoices.path()}) {
        const auto database = open_to_read(file);
        const std::size_t violations = jet::check_structure(*database).size();
        output().print("  %s: %ju bytes, %zu tables, structural check: %s\n", file.c_str(),
                       static_cast<std::uintmax_t>(fs::file_size(system_path(file))), database->table_names().size(),
                       violations == 0 ? "sound" : "NOT SOUND");
        if (violations != 0) throw CommandError(file + " is not sound");
    }
}

Keys make_studio(const DemoFolder& folder) {
    Studio studio(folder.draft(), Studio::Purpose::kUpgrade);
    output().print("A new studio in %s\n", folder.path().c_str());
    LONG version = 0;
    require(studio.open().GetDBVer(&version), "GetDBVer");
    output().print("OpenDB made both files; schema version %d. A day's work, closed, and opened again:\n\n",
                   static_cast<int>(version));
    Keys keys = Day(studio).work();
    studio.close();
    show_summary(studio, keys);
    return keys;
}

struct Options {
    std::string folder;
};

void bind(Declaration& declare, Options& options) {
    declare.optional_word("FOLDER", options.folder, "folder for the studio; without it, a new temporary one");
}

int run(const Options& options) {
    catch_interrupts();
    DemoFolder folder(options.folder);
    const Keys keys = make_studio(folder);
    folder.keep();
    output().print("\nFiles, readable by any Jet tool:\n");
    show_files(StudioFiles(folder.path()));
    const std::string place = typed_path(folder.path());
    output().print("\nTry: kvdb list %s Tracks --where SongID=%s\n", place.c_str(), keys.song.c_str());
    output().print("     kvdb show %s Invoices %s\n", place.c_str(), keys.invoice.c_str());
    output().print("     kvdb search %s Lindstr\u00f6m\n", place.c_str());
    output().print("     kvdb schema %s Projects\n", place.c_str());
    output().print("     kvdb check %s\n", place.c_str());
    return 0;
}

}  // namespace

const Command kDemoCommand{"demo", kMoveGroup, "Make a studio, do a day's work on it, and show it.",
                           declared<Options, bind, run>};

}  // namespace tools
