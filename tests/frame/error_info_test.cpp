// What a host learns of a failing call where COM has it look: ISupportErrorInfo, the error info of the thread, and the
// exception record of Invoke.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "tests/frame/gate_host.h"
#include "tests/frame/late_binding.h"

using namespace testing_support;

namespace {

std::string narrow(BSTR text) {
    std::string found;
    for (UINT i = 0; i < SysStringLen(text); ++i) found.push_back(static_cast<char>(text[i]));
    SysFreeString(text);
    return found;
}

struct Told {
    HRESULT result = E_UNEXPECTED;
    GUID interface_id = GUID_NULL;
    std::string source;
    std::string text;
};

Told told_by(IUnknown& gate) {
    Told told;
    IErrorInfo* info = nullptr;
    told.result = GetErrorInfoOf(&gate, &info);
    EXPECT_EQ(told.result == S_OK, info != nullptr);
    if (info == nullptr) return told;
    BSTR source = nullptr;
    BSTR text = nullptr;
    EXPECT_EQ(info->GetGUID(&told.interface_id), S_OK);
    EXPECT_EQ(info->GetSource(&source), S_OK);
    EXPECT_EQ(info->GetDescription(&text), S_OK);
    told.source = narrow(source);
    told.text = narrow(text);
    info->Release();
    return told;
}

class ErrorInfoGate : public testing::Test {
protected:
    void expect_told(HRESULT result, const char* begin, const char* why) {
        EXPECT_EQ(result, E_FAIL) << begin;
        const Told told = told_by(*gate_.get());
        EXPECT_EQ(told.result, S_OK) << begin;
        EXPECT_EQ(told.source, "KVDB");
        EXPECT_TRUE(told.interface_id == IID_IDBgate1) << begin;
        EXPECT_EQ(told.text.rfind(begin, 0), 0u) << told.text;
        EXPECT_NE(told.text.find(why), std::string::npos) << told.text;
    }

    GateHost host_;
    ComPtr<IDBgate1> gate_ = host_.create<IDBgate1>();
};

}  // namespace

TEST_F(ErrorInfoGate, gate_describes_failures_of_its_own_interface) {
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(gate_->QueryInterface(IID_ISupportErrorInfo, support.put()), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDBgate1), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDBgate2), S_FALSE);
    ComPtr<IUnknown> own;
    ComPtr<IUnknown> other;
    EXPECT_EQ(gate_->QueryInterface(IID_IUnknown, own.put()), S_OK);
    EXPECT_EQ(support->QueryInterface(IID_IUnknown, other.put()), S_OK);
    EXPECT_EQ(own.get(), other.get());
}

TEST_F(ErrorInfoGate, refused_call_says_what_is_missing) {
    ProjInfo project;
    expect_told(gate_->AddProj(address_of(project)), "Nothing was added to Projects in ", "Call OpenDB first.");
    expect_told(gate_->IsDbExist(), "There is no studio in the folder", "OpenDB makes it.");
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    expect_told(gate_->AddProj(0), "Nothing was added to Projects in ", "is 0");
    expect_told(gate_->EnumNextProj(address_of(project)), "No next row was read from Projects", "No enumeration");
    expect_told(gate_->EnumFirstProj(address_of(project)), "No first row was read from Projects",
                "no row that matches");
    project.ProjID = 999;
    expect_told(gate_->FindProj(address_of(project)), "No row was found in Projects", "No row has the key 999.");
    expect_told(gate_->UpdateProj(address_of(project)), "Nothing was changed in Projects", "the key 999.");
    expect_told(gate_->DeleteProj(998), "Nothing was deleted from Projects", "the key 998.");
    expect_told(gate_->GetDBVer(nullptr), "The version was not read from DBHeader", "is 0");
    CustomInfo query;
    expect_told(gate_->EnumFirst_CustomQuery(address_of(query), 3), "There are no queries", "The statement is empty.");
    ASSERT_EQ(gate_->AddProj(address_of(project)), S_OK);
    ASSERT_EQ(gate_->EnumFirstProj(address_of(project)), S_OK);
    expect_told(gate_->EnumNextProj(address_of(project)), "No next row was read from Projects", "the last row");
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}

TEST_F(ErrorInfoGate, failure_names_the_file_and_gives_the_engines_reason) {
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    char name[300];
    std::fill(std::begin(name), std::end(name) - 1, 'x');
    name[299] = 0;
    HRESULT result = gate_->AddTrackType(name);
    expect_told(result, "Nothing was added to Def_TrackTypes in ", "sldb.mdb. The text is too long for column 'Name'");
    result = gate_->AddTrackType(name);
    expect_told(result, "Nothing was added to ", "Shorten the text.");
    InvParamsInfo line;
    line.RecID = 5;
    expect_told(gate_->UpdateInvParams(address_of(line)), "Nothing was changed in InvoiceParams", "kvinvdb.mdb");
    char quote[300] = "12\" tape";
    expect_told(gate_->AddTrackType(quote), "Nothing was added to Def_TrackTypes", "takes no double quote");
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}

TEST_F(ErrorInfoGate, row_that_was_saved_in_part_is_told_to_be_there) {
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    ProjInfo project;
    project.Name = std::string(300, 'x').c_str();
    expect_told(gate_->AddProj(address_of(project)), "A row was added in part to Projects", "'Name'");
    project.Name = "Night Trains";
    ASSERT_EQ(gate_->AddProj(address_of(project)), S_OK);
    project.Name = std::string(300, 'x').c_str();
    expect_told(gate_->UpdateProj(address_of(project)), "A row was changed in part in Projects", "'Name'");
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}

TEST_F(ErrorInfoGate, success_leaves_nothing_and_takes_an_earlier_failure_away) {
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    EXPECT_EQ(told_by(*gate_.get()).result, S_FALSE);
    EXPECT_EQ(gate_->DeleteProj(999), E_FAIL);
    LONG version = 0;
    EXPECT_EQ(gate_->GetDBVer(&version), S_OK);
    EXPECT_EQ(told_by(*gate_.get()).result, S_FALSE);
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}

TEST_F(ErrorInfoGate, failure_is_told_to_the_thread_that_met_it) {
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    EXPECT_EQ(gate_->DeleteProj(999), E_FAIL);
    std::thread([&] {
        EXPECT_EQ(told_by(*gate_.get()).result, S_FALSE);
        EXPECT_EQ(gate_->DeleteSong(5), E_FAIL);
        EXPECT_NE(told_by(*gate_.get()).text.find("Songs"), std::string::npos);
    }).join();
    EXPECT_NE(told_by(*gate_.get()).text.find("Projects"), std::string::npos);
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}

TEST_F(ErrorInfoGate, failure_outlives_the_gate_that_met_it) {
    const auto other = host_.create<IDBGate3>();
    EXPECT_EQ(gate_->DeleteProj(999), E_FAIL);
    gate_.reset();
#ifndef _WIN32
    // Elsewhere it is the library that keeps it, and any gate of it can be asked.
    const Told told = told_by(*other.get());
    EXPECT_EQ(told.result, S_OK);
    EXPECT_TRUE(told.interface_id == IID_IDBgate1);
    EXPECT_EQ(told.text.rfind("Nothing was deleted from Projects in ", 0), 0u) << told.text;
#endif
}

TEST_F(ErrorInfoGate, exception_of_an_opening_leaves_its_words_too) {
    std::ofstream(host_.folder() + "/sldb.mdb") << "this is no database";
    HRESULT result = E_FAIL;
    try {
        result = gate_->OpenDB();
    } catch (CDaoException* error) {
        EXPECT_EQ(error->m_pErrorInfo->m_lErrorCode, 3343);
        error->Delete();
    }
    expect_told(result, "The studio's files were not opened. ", "sldb.mdb");
}

TEST_F(ErrorInfoGate, invoke_gives_the_same_words_in_its_exception_record) {
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    const Outcome outcome = invoke(*gate_.get(), u"DeleteProj", {Variant::i4(999)});
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, E_FAIL);
    EXPECT_EQ(outcome.source, u"KVDB");
    const std::string text(outcome.description.begin(), outcome.description.end());
    EXPECT_EQ(text.rfind("Nothing was deleted from Projects in ", 0), 0u) << text;
    EXPECT_NE(text.find("No row has the key 999."), std::string::npos) << text;
    ASSERT_EQ(gate_->CloseDB(), S_OK);
}
