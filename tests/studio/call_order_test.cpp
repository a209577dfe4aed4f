// How the six operations call the framework: type and options of every opening, and the bookmark between AddNew or Edit
// and the first column. A stand-in for the record set writes down what is called and passes it on.
#include <string>
#include <vector>

#include "db/values.h"
#include "studio/projects.h"
#include "studio/record_table.h"
#include "tests/studio/studio_test_support.h"

namespace {

std::vector<std::string>* calls = nullptr;

class RecordingRows : public CDaoRecordset {
public:
    using CDaoRecordset::CDaoRecordset;

    void Open(int type, const char* sql, int options) override {
        note("Open " + std::to_string(type) + " " + sql + " " + std::to_string(options));
        is_opening_ = true;
        CDaoRecordset::Open(type, sql, options);
        is_opening_ = false;
    }
    void Close() override {
        if (!is_opening_) note("Close");  // opening closes what was open
        CDaoRecordset::Close();
    }
    LONG GetRecordCount() {
        note("GetRecordCount");
        return CDaoRecordset::GetRecordCount();
    }
    void MoveFirst() {
        note("MoveFirst");
        CDaoRecordset::MoveFirst();
    }
    void MoveNext() {
        note("MoveNext");
        CDaoRecordset::MoveNext();
    }
    void AddNew() override {
        CDaoRecordset::AddNew();
        note("AddNew");
    }
    void Edit() override {
        CDaoRecordset::Edit();
        note("Edit");
    }
    COleVariant GetLastModifiedBookmark() {
        note("GetLastModifiedBookmark");
        return CDaoRecordset::GetLastModifiedBookmark();
    }
    void SetBookmark(const COleVariant& bookmark) {
        note("SetBookmark" + pending());
        CDaoRecordset::SetBookmark(bookmark);
    }
    void Update() override {
        note("Update" + pending());
        CDaoRecordset::Update();
    }
    void Delete() override {
        note("Delete");
        CDaoRecordset::Delete();
    }

private:
    static void note(std::string call) { calls->push_back(std::move(call)); }
    // What the pending row holds by now in the first and the last column that a project writes.
    std::string pending() {
        std::string text;
        for (const char* const column : {"Name", "ExData"}) {
            const COleVariant value = GetFieldValue(column);
            text += std::string(" ") + column + "=" + std::string(db::value_to_text(value));
        }
        return text;
    }

    bool is_opening_ = false;
};

using Calls = std::vector<std::string>;

class CallOrder : public StudioTest {
protected:
    CallOrder() {
        calls = &calls_;
        project_.Name = "first";
        project_.ExData = 7;
    }
    ~CallOrder() override { calls = nullptr; }

    // The calls of one operation.
    template <class Operation>
    Calls of(Operation&& operation) {
        calls_.clear();
        operation();
        return calls_;
    }
    void add_two() {
        for (int i = 0; i < 2; ++i) EXPECT_EQ(table_.Add(&project_), S_OK);
        project_.ProjID = 1;
    }

    Calls calls_;
    ProjInfo project_;
    studio::RecordTable<ProjInfo, RecordingRows> table_{studio::kProjects, database_};
};

constexpr char kAll[] = "SELECT * FROM [Projects]";
constexpr char kFirstRow[] = "SELECT * FROM [Projects] WHERE [ProjID]=1";

std::string opened(const char* statement, const char* options) {
    return std::string("Open 2 ") + statement + " " + options;
}

TEST_F(CallOrder, add_moves_to_the_pending_row_before_it_writes) {
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.Add(&project_), S_OK); }),
              (Calls{opened(kAll, "0"), "AddNew", "GetLastModifiedBookmark",
                     "SetBookmark Name= ExData=", "Update Name=first ExData=7", "Close"}));
}

TEST_F(CallOrder, update_moves_to_the_edited_row_before_it_writes) {
    add_two();
    project_.Name = "changed";
    project_.ExData = 8;
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.Update(&project_), S_OK); }),
              (Calls{opened(kFirstRow, "0"), "GetRecordCount", "Edit", "GetLastModifiedBookmark",
                     "SetBookmark Name=first ExData=7", "Update Name=changed ExData=8", "Close"}));
}

TEST_F(CallOrder, delete_goes_to_the_first_row) {
    add_two();
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.Delete(1), S_OK); }),
              (Calls{opened(kFirstRow, "0"), "GetRecordCount", "MoveFirst", "Delete", "Close"}));
}

TEST_F(CallOrder, find_and_enumeration_open_for_reading_forward) {
    add_two();
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.Find(&project_), S_OK); }),
              (Calls{opened(kFirstRow, "260"), "GetRecordCount"}));
    ProjInfo all;
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumFirst(&all), S_OK); }), (Calls{opened(kAll, "260"), "GetRecordCount"}));
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumNext(&all), S_OK); }), (Calls{"MoveNext"}));
    all = ProjInfo();
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumFirst(&all), S_OK); }),
              (Calls{"Close", opened(kAll, "260"), "GetRecordCount"}));
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumNext(&all), S_OK); }), (Calls{"MoveNext"}));
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumNext(&all), E_FAIL); }), (Calls{"MoveNext", "Close"}));
    EXPECT_EQ(of([&] { EXPECT_EQ(table_.EnumNext(&all), E_FAIL); }), Calls());
}

}  // namespace
