#include "db/content.h"

#include <string>

#include "afx/dao_recordset.h"
#include "db/values.h"

namespace db {
namespace {

void open_table(CDaoRecordset& rows, const char* table) {
    rows.Open(dbOpenDynaset, ("SELECT * FROM [" + std::string(table) + "]").c_str(), 0);
}

template <class Write>
int write_rows(Write&& write) {
    try {
        write();
        return 0;
    } catch (CDaoException* e) {
        e->Delete();
        return -1;
    }
}

COleVariant long_value(LONG value) { return COleVariant(value, VT_I4); }

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

}  // namespace

int write_main_content(CDaoDatabase& database) {
    return write_rows([&] {
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
    });
}

int write_invoice_content(CDaoDatabase& database) {
    return write_rows([&] {
        CDaoRecordset rows(&database);
        open_table(rows, "DBHeader");
        rows.AddNew();
        rows.SetFieldValue("DBversion", long_value(kCurrentVersion));  // CreateDate stays Null
        rows.Update();
        rows.Close();
    });
}

// The calls and their order are those of the equipment records' own Add, which lies a layer above; the time
// of day is dropped as there.
int add_sample_equipment(CDaoDatabase& database) {
    return write_rows([&] {
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
    });
}

}  // namespace db
