#include "db/content.h"

#include <array>
#include <string>

#include "db/rows.h"
#include "db/string_resources.h"
#include "db/values.h"

namespace db {
namespace {

struct SampleEquipment {
    const char* name;
    const char* action;
    const char* cost;
    const char* notes;
};

constexpr SampleEquipment kSampleEquipment[] = {
    {"S3200 - AKAI", "New gear", "$ 800", "second hand. 127MB RAM"},
    {"TR-Rack KORG", "Repair", "$ 40", "Distorted output sound"},
};

// The last group has no library.
constexpr std::array kLibraryGroups = {"Nature sounds", "Industrial sounds", "Video clips"};

struct Library {
    const char* name;
    std::size_t group;  // in the list above
};

constexpr Library kLibraries[] = {
    {"Birds", 0}, {"Sea/Water", 0}, {"Insects", 0}, {"Trains", 1}, {"Cars", 1},
};

struct ContactCategory {
    const char* name;
    LONG type;
    LONG ex_data;
};

constexpr ContactCategory kSeededCategories[] = {
    {"Clients", 101, 1},   {"Artists", 101, 1},   {"Publishers", 101, 0}, {"Record Labels", 101, 0},
    {"Producers", 100, 1}, {"Engineers", 100, 1}, {"Musicians", 100, 1},  {"Directors", 100, 1},
    {"Vendors", 103, 1},   {"Personal", 102, 0},
};

}  // namespace

void write_main_content(CDaoDatabase& database) {
    CDaoRecordset rows(&database);
    open_table(rows, "DBHeader");
    rows.AddNew();
    rows.SetFieldValue("DBversion", long_value(kCurrentVersion));
    rows.SetFieldValue("Color2", long_value(1));  // Color1 stays Null
    rows.Update();
    rows.Close();

    open_table(rows, "Def_Invoice");
    rows.AddNew();
    rows.SetFieldValue("StudioName", "Your Studio Name");
    rows.SetFieldValue("StudioDetails", "Your Studio Details");
    rows.SetFieldValue("BaseCounter", long_value(1));
    rows.SetFieldValue("LastUsedCounter", long_value(0));
    rows.SetFieldValue("VAT1", long_value(0));
    rows.SetFieldValue("VAT2", long_value(0));
    rows.SetFieldValue("Tax", COleVariant(COleCurrency(0, 0)));
    rows.SetFieldValue("ExData", long_value(0));
    rows.Update();
    rows.Close();
}

void write_invoice_content(CDaoDatabase& database) {
    CDaoRecordset rows(&database);
    open_table(rows, "DBHeader");
    rows.AddNew();
    rows.SetFieldValue("DBversion", long_value(kCurrentVersion));  // CreateDate stays Null
    rows.Update();
    rows.Close();
}

// Makes the same calls in the same order as the equipment records' own Add, which is a layer above; drops the time of
// day as it does.
void add_sample_equipment(CDaoDatabase& database) {
    const COleVariant today = date_value(CTime::GetCurrentTime(), TimeOfDay::kDropped);
    CDaoRecordset rows(&database);
    open_table(rows, "Equipment");
    for (const SampleEquipment& sample : kSampleEquipment) {
        rows.AddNew();
        rows.SetBookmark(rows.GetLastModifiedBookmark());
        rows.SetFieldValue("Name", sample.name);
        rows.SetFieldValue("Action", sample.action);
        rows.SetFieldValue("ActDate", today);
        rows.SetFieldValue("Cost", sample.cost);
        rows.SetFieldValue("Notes", sample.notes);
        rows.Update();
    }
    rows.Close();
}

void add_demo_project(CDaoDatabase& database) {
    CDaoRecordset rows(&database);
    open_table(rows, "Projects");
    rows.AddNew();
    rows.SetFieldValue("Name", " Demo Project");  // the leading blank sorts it before all others
    for (const char* field : {"Type", "Producer", "Director", "Client"}) rows.SetFieldValue(field, "");
    rows.SetFieldValue("ClientID", long_value(0));
    rows.SetFieldValue("Folder", "");
    rows.SetFieldValue("Notes", string_resource(KVDB_STRING_WELCOME).c_str());
    rows.Update();
    rows.Close();
}

void write_media_library(CDaoDatabase& database) {
    std::array<LONG, kLibraryGroups.size()> groups{};
    CDaoRecordset rows(&database);
    open_table(rows, "LibGroups");
    for (std::size_t i = 0; i < kLibraryGroups.size(); ++i) {
        rows.AddNew();
        rows.SetFieldValue("Name", kLibraryGroups[i]);
        rows.Update();
        rows.SetBookmark(rows.GetLastModifiedBookmark());
        groups[i] = value_to_integer(rows.GetFieldValue("GroupID"));
    }
    rows.Close();

    open_table(rows, "MediaLibs");
    for (const Library& library : kLibraries) {
        rows.AddNew();
        rows.SetFieldValue("GroupID", long_value(groups[library.group]));
        rows.SetFieldValue("Name", library.name);
        rows.SetFieldValue("Descript", "");
        rows.Update();
    }
    rows.Close();
}

void write_contact_categories(CDaoDatabase& database) {
    CDaoRecordset rows(&database);
    open_table(rows, "ContactCategories");
    for (const ContactCategory& category : kSeededCategories) {
        rows.AddNew();
        rows.SetFieldValue("Name", category.name);
        rows.SetFieldValue("Type", long_value(category.type));
        rows.SetFieldValue("ExData", long_value(category.ex_data));
        rows.Update();
    }
    rows.Close();
}

}  // namespace db
