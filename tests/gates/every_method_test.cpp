// Every method of the three gates, called by its name as a scripting host does, on an open studio whose tables
// have the rows that the call needs. The names are written out here in the order of the identifiers: a
// method that the component lacks, or that no call below reaches, fails.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/frame/late_binding.h"
#include "tests/gates/engineers_cases.h"

using namespace testing_support;

namespace {

constexpr const char16_t* kMainMethods =
    u"CreateDB OpenDB GetDBVer EnumFirstProj EnumNextProj FindProj AddProj UpdateProj DeleteProj EnumFirstSong "
    u"EnumNextSong FindSong AddSong DeleteSong UpdateSong EnumFirstTrack EnumNextTrack FindTrack AddTrack "
    u"DeleteTrack UpdateTrack EnumFirstSession EnumNextSession FindSession AddSession DeleteSession "
    u"UpdateSession EnumFirstClient EnumNextClient FindClient DeleteClient UpdateClient AddClient "
    u"EnumFirstStock EnumNextStock FindStock AddStock UpdateStock DeleteStock EnumFirstEquip EnumNextEquip "
    u"FindEquip AddEquip UpdateEquip DeleteEquip EnumFirstTrackType EnumNextTrackType AddTrackType "
    u"DeleteTrackType EnumFirstProjType EnumNextProjType AddProjType DeleteProjType EnumFirstTrackDestin "
    u"EnumNextTrackDestin AddTrackDestin DeleteTrackDestin EnumFirstStockType EnumNextStockType AddStockType "
    u"DeleteStockType EnumFirstEngineer EnumNextEngineer AddEngineer DeleteEngineer EnumFirstEquipAct "
    u"EnumNextEquipAct AddEquipAct DeleteEquipAct EnumFirstSequencer EnumNextSequencer AddSequencer "
    u"DeleteSequencer UpdateSequencer FindSequencer AddSupplyAct UpdateSupplyAct DeleteSupplyAct "
    u"EnumFirstSupply EnumNextSupply FindSupplyAct FindStockType UpdateStockType ComputeInStock GetHead "
    u"SetHead CloseDB UpdateEngineer FindEngineer CompactDB SetInvoiceDef GetInvoiceDef EnumFirstRoom "
    u"EnumNextRoom AddRoom UpdateRoom DeleteRoom FindRoom EnumFirstLibGrp EnumNextLibGrp AddLibGrp "
    u"UpdateLibGrp DeleteLibGrp FindLibGrp EnumFirstMediaLib EnumNextMediaLib AddMediaLib UpdateMediaLib "
    u"DeleteMediaLib FindMediaLib EnumFirstMediaFile EnumNextMediaFile AddMediaFile UpdateMediaFile "
    u"DeleteMediaFile FindMediaFile EnumFirstBooking EnumNextBooking AddBooking UpdateBooking DeleteBooking "
    u"FindBooking EnumFirstInvoice EnumNextInvoice AddInvoice UpdateInvoice DeleteInvoice FindInvoice "
    u"EnumFirstInvParams EnumNextInvParams AddInvParams UpdateInvParams DeleteInvParams FindInvParams "
    u"EnumEx_FirstSession EnumEx_NextSession EnumEx_FirstSupply EnumEx_NextSupply EnumFirstConCat "
    u"EnumNextConCat FindConCat AddConCat UpdateConCat DeleteConCat EnumFirstProjPay EnumNextProjPay "
    u"FindProjPay AddProjPay DeleteProjPay UpdateProjPay EnumFirstProjAct EnumNextProjAct AddProjAct "
    u"UpdateProjAct DeleteProjAct FindProjAct EnumFirstMix EnumNextMix AddMix UpdateMix DeleteMix FindMix "
    u"EnumFirstMsg EnumNextMsg AddMsg FindMsg UpdateMsg DeleteMsg EnumFirstService EnumNextService AddService "
    u"FindService UpdateService DeleteService EnumFirstPartic EnumNextPartic FindPartic AddPartic UpdatePartic "
    u"DeletePartic EnumFirst_CustomQuery EnumNext_CustomQuery IsDbExist";

constexpr const char16_t* kGearMethods =
    u"OpenDB CloseDB EnumFirstGear EnumNextGear AddGear UpdateGear FindGear DeleteGear EnumFirstGearService "
    u"EnumNextGearService AddGearService UpdateGearService FindGearService DeleteGearService EnumFirstGRepairs "
    u"EnumNextGRepairs AddGRepairs UpdateGRepairs FindGRepairs DeleteGRepairs EnumFirstGearCat EnumNextGearCat "
    u"AddGearCat UpdateGearCat FindGearCat DeleteGearCat EnumFirstGearRent EnumNextGearRent AddGearRent "
    u"UpdateGearRent FindGearRent DeleteGearRent";

std::vector<std::u16string> words(std::u16string_view text) {
    std::vector<std::u16string> result(1);
    for (const char16_t c : text) {
        if (c == u' ') {
            result.emplace_back();
        } else {
            result.back() += c;
        }
    }
    return result;
}

// A gate and the names that have been called through it.
class Caller {
public:
    explicit Caller(IDispatch& gate) : gate_(gate) {}

    void expect(const std::u16string& name, std::vector<Variant> arguments, HRESULT expected = S_OK) {
        const std::string shown(name.begin(), name.end());
        called_.insert(name);
        const Outcome outcome = invoke(gate_, name, std::move(arguments));
        if (expected == S_OK) {
            EXPECT_EQ(outcome.result, S_OK) << shown;
        } else {
            EXPECT_EQ(outcome.result, DISP_E_EXCEPTION) << shown;
            EXPECT_EQ(outcome.scode, expected) << shown;
        }
        EXPECT_EQ(outcome.result_type, VT_EMPTY) << shown;
    }

    // The names have the identifiers from 1 on, there is none behind them, and each has been called.
    void expect_all_called(const char16_t* all_names) const {
        const std::vector<std::u16string> names = words(all_names);
        DISPID id = 0;
        for (const std::u16string& name : names) {
            const std::string shown(name.begin(), name.end());
            EXPECT_EQ(id_of(gate_, name), ++id) << shown;
            EXPECT_EQ(called_.count(name), 1u) << shown << " has not been called";
        }
        EXPECT_EQ(invoke(gate_, id + 1, {}).result, DISP_E_MEMBERNOTFOUND);
        EXPECT_EQ(called_.size(), names.size());
    }

private:
    IDispatch& gate_;
    std::set<std::u16string> called_;
};

// The word that the names of a table's methods are made of; two words for one table.
struct TableNames {
    TableNames(const char16_t* word) : record(word), enumeration(word) {}
    TableNames(const char16_t* record_word, const char16_t* enumeration_word)
        : record(record_word), enumeration(enumeration_word) {}

    std::u16string record;       // AddX, UpdateX, FindX, DeleteX
    std::u16string enumeration;  // EnumFirstX, EnumNextX
};

enum class DeletedBy { kRecord, kKey };

// All six on two rows that are `record`; one row is left.
template <class Record>
void call_table(Caller& caller, const TableNames& names, Record record, LONG Record::*key, CString Record::*text,
                DeletedBy deleted_by = DeletedBy::kRecord) {
    SCOPED_TRACE(std::string(names.record.begin(), names.record.end()));
    record.*text = "first";
    Record first = record;
    caller.expect(u"Add" + names.record, {Variant::record(first)});
    record.*text = "second";
    Record second = record;
    caller.expect(u"Add" + names.record, {Variant::record(second)});
    EXPECT_EQ(second.*key, first.*key + 1);

    second.*text = "changed";
    caller.expect(u"Update" + names.record, {Variant::record(second)});
    Record found = record;
    found.*key = second.*key;
    caller.expect(u"Find" + names.record, {Variant::record(found)});
    EXPECT_STREQ((found.*text).GetString(), "changed");

    Record row = record;
    row.*text = "";
    caller.expect(u"EnumFirst" + names.enumeration, {Variant::record(row)});
    EXPECT_STREQ((row.*text).GetString(), "first");
    caller.expect(u"EnumNext" + names.enumeration, {Variant::record(row)});
    EXPECT_STREQ((row.*text).GetString(), "changed");
    caller.expect(u"EnumNext" + names.enumeration, {Variant::record(row)}, E_FAIL);

    const auto remove = [&](HRESULT expected) {
        const Variant argument = deleted_by == DeletedBy::kKey ? Variant::i4(second.*key) : Variant::record(second);
        caller.expect(u"Delete" + names.record, {argument}, expected);
    };
    remove(S_OK);
    remove(E_FAIL);
    found.*key = second.*key;
    caller.expect(u"Find" + names.record, {Variant::record(found)}, E_FAIL);
}

// A list of names: its rows are emptied and two are added.
void call_list(Caller& caller, IDispatch& gate, const std::u16string& name) {
    SCOPED_TRACE(std::string(name.begin(), name.end()));
    Variant text = Variant::text(u"");
    while (invoke(gate, u"EnumFirst" + name, {Variant::ref(text)}).result == S_OK) {
        caller.expect(u"Delete" + name, {Variant::text(text_of(text.bstrVal))});
    }
    caller.expect(u"EnumFirst" + name, {Variant::ref(text)}, E_FAIL);
    caller.expect(u"Add" + name, {Variant::text(u"first")});
    caller.expect(u"Add" + name, {Variant::text(u"second")});
    caller.expect(u"EnumFirst" + name, {Variant::ref(text)});
    EXPECT_EQ(text_of(text.bstrVal), u"first");
    caller.expect(u"EnumNext" + name, {Variant::ref(text)});
    EXPECT_EQ(text_of(text.bstrVal), u"second");
    caller.expect(u"EnumNext" + name, {Variant::ref(text)}, E_FAIL);
    caller.expect(u"Delete" + name, {Variant::text(u"second")});
    caller.expect(u"Delete" + name, {Variant::text(u"second")});  // one that is not there is no failure
    caller.expect(u"Add" + name, {Variant::text(u"")}, E_FAIL);
}

void call_projects(Caller& caller) {
    call_table(caller, u"Proj", ProjInfo(), &ProjInfo::ProjID, &ProjInfo::Name, DeletedBy::kKey);
    call_table(caller, u"ProjPay", ProjPayInfo(), &ProjPayInfo::RecID, &ProjPayInfo::Details);
    call_table(caller, u"ProjAct", ProjActInfo(), &ProjActInfo::RecID, &ProjActInfo::Item);
    call_table(caller, u"Song", SongInfo(), &SongInfo::SongID, &SongInfo::Artist, DeletedBy::kKey);
    call_table(caller, u"Track", TrackInfo(), &TrackInfo::TrackID, &TrackInfo::Name, DeletedBy::kKey);
    call_table(caller, u"Mix", MixInfo(), &MixInfo::RecID, &MixInfo::Path);
    call_table(caller, u"Session", SessionInfo(), &SessionInfo::SessionID, &SessionInfo::SongName, DeletedBy::kKey);
    call_table(caller, u"Partic", ParticInfo(), &ParticInfo::RecID, &ParticInfo::Notes);
    call_table(caller, u"Booking", BookingInfo(), &BookingInfo::RecID, &BookingInfo::Notes);
}

void call_contacts(Caller& caller) {
    call_table(caller, u"Client", ClientInfo(), &ClientInfo::ClientID, &ClientInfo::LastName, DeletedBy::kKey);
    ConCatInfo category;
    category.Type = 3;
    call_table(caller, u"ConCat", category, &ConCatInfo::RecID, &ConCatInfo::Name);
    call_table(caller, u"Msg", MsgInfo(), &MsgInfo::RecID, &MsgInfo::Details);
    ServiceInfo service;
    service.ContactID = 4;
    call_table(caller, u"Service", service, &ServiceInfo::RecID, &ServiceInfo::Name);
}

void call_stock(Caller& caller) {
    call_table(caller, u"Stock", StockInfo(), &StockInfo::StockID, &StockInfo::Name, DeletedBy::kKey);
    call_table(caller, {u"SupplyAct", u"Supply"}, SupplyAct(), &SupplyAct::ActionID, &SupplyAct::StockName);
    call_table(caller, u"StockType", StockTypeInfo(), &StockTypeInfo::TypeID, &StockTypeInfo::TypeName);
    call_table(caller, u"Equip", EquipInfo(), &EquipInfo::RecID, &EquipInfo::Name, DeletedBy::kKey);

    StockInfo bought;
    bought.TypeID = 1;
    bought.Quantity = 50;
    caller.expect(u"AddStock", {Variant::record(bought)});
    LONG in_stock = 0;
    caller.expect(u"ComputeInStock", {Variant::i4(1), Variant::ref(in_stock)});
    EXPECT_EQ(in_stock, 50);
    caller.expect(u"ComputeInStock", {Variant::i4(4711), Variant::ref(in_stock)}, E_FAIL);  // no such type
    EXPECT_EQ(in_stock, 0);
}

void call_definitions(Caller& caller) {
    call_table(caller, u"Sequencer", SeqInfo(), &SeqInfo::RecID, &SeqInfo::Name);
    call_table(caller, u"Room", RoomInfo(), &RoomInfo::RecID, &RoomInfo::Name);
    call_table(caller, u"LibGrp", LibGrpInfo(), &LibGrpInfo::GroupID, &LibGrpInfo::Name);
    call_table(caller, u"MediaLib", MediaLibInfo(), &MediaLibInfo::LibID, &MediaLibInfo::Name);
    call_table(caller, u"MediaFile", MediaFileInfo(), &MediaFileInfo::RecID, &MediaFileInfo::Path);
}

// Only files of older versions have a table of engineers; without it every call fails.
void call_engineers(Caller& caller, const std::string& main_file) {
    EngineerInfo engineer;
    engineer.Name = "first";
    for (const char16_t* const name : {u"AddEngineer", u"UpdateEngineer", u"FindEngineer", u"DeleteEngineer",
                                       u"EnumFirstEngineer", u"EnumNextEngineer"}) {
        caller.expect(name, {Variant::record(engineer)}, E_FAIL);
    }
    caller.expect(u"CloseDB", {});
    testing_support::create_engineers(os::folder_of(main_file));
    caller.expect(u"OpenDB", {});
    call_table(caller, u"Engineer", EngineerInfo(), &EngineerInfo::RecID, &EngineerInfo::Name);
}

void call_invoices(Caller& caller) {
    InvoiceInfo invoice;
    invoice.Date = CTime(2005, 6, 15, 0, 0, 0);
    invoice.FromDate = CTime(2005, 6, 1, 0, 0, 0);
    invoice.ToDate = CTime(2005, 6, 30, 0, 0, 0);
    call_table(caller, u"Invoice", invoice, &InvoiceInfo::RecID, &InvoiceInfo::ClientName);
    InvParamsInfo line;
    line.InvoiceID = 8;
    call_table(caller, u"InvParams", line, &InvParamsInfo::RecID, &InvParamsInfo::Name);

    InvoiceDef defaults;
    defaults.StudioName = "Blue Room";
    defaults.LastUsedCounter = 42;
    caller.expect(u"SetInvoiceDef", {Variant::record(defaults)});
    InvoiceDef read;
    caller.expect(u"GetInvoiceDef", {Variant::record(read)});
    EXPECT_STREQ(read.StudioName.GetString(), "Blue Room");
    EXPECT_EQ(read.LastUsedCounter, 42);
}

// Sessions and supply have one row by now; a second is added for the step.
void call_extended(Caller& caller) {
    SessionInfo session;
    session.SongName = "third";
    caller.expect(u"AddSession", {Variant::record(session)});
    SessionExInfo session_row;
    caller.expect(u"EnumEx_FirstSession", {Variant::record(session_row)});
    EXPECT_STREQ(session_row.SongName.GetString(), "first");
    caller.expect(u"EnumEx_NextSession", {Variant::record(session_row)});
    EXPECT_STREQ(session_row.SongName.GetString(), "third");
    caller.expect(u"EnumEx_NextSession", {Variant::record(session_row)}, E_FAIL);

    SupplyAct handed_out;
    handed_out.StockName = "third";
    caller.expect(u"AddSupplyAct", {Variant::record(handed_out)});
    SupplyExInfo supply_row;
    caller.expect(u"EnumEx_FirstSupply", {Variant::record(supply_row)});
    EXPECT_STREQ(supply_row.StockName.GetString(), "first");
    caller.expect(u"EnumEx_NextSupply", {Variant::record(supply_row)});
    EXPECT_STREQ(supply_row.StockName.GetString(), "third");
    caller.expect(u"EnumEx_NextSupply", {Variant::record(supply_row)}, E_FAIL);

    // No type of custom query is defined.
    CustomInfo custom;
    caller.expect(u"EnumFirst_CustomQuery", {Variant::record(custom), Variant::i4(1)}, E_FAIL);
    caller.expect(u"EnumNext_CustomQuery", {Variant::record(custom)}, E_FAIL);
}

void call_database(Caller& caller) {
    LONG version = 0;
    caller.expect(u"GetDBVer", {Variant::ref(version)});
    EXPECT_GT(version, 0);
    HeadInfo head;
    head.Color1 = 7;
    head.Color2 = 9;
    caller.expect(u"SetHead", {Variant::record(head)});
    HeadInfo read;
    caller.expect(u"GetHead", {Variant::record(read)});
    EXPECT_EQ(read.Color1, 7);
    EXPECT_EQ(read.Color2, 9);
    EXPECT_EQ(read.DBversion, version);
    CompactDBInfo compacting;
    caller.expect(u"CompactDB", {Variant::record(compacting)});
    caller.expect(u"CompactDB", {Variant::i4(0)}, E_FAIL);
}

TEST(EveryMethodGate, main_gate_answers_each_by_name) {
    const GateHost host;
    const auto gate = host.create<IDBgate1>();
    Caller caller(*gate);
    caller.expect(u"IsDbExist", {}, E_FAIL);
    caller.expect(u"CreateDB", {Variant::text(u"ignored.mdb")});
    caller.expect(u"IsDbExist", {});
    caller.expect(u"OpenDB", {});
    call_database(caller);
    call_projects(caller);
    call_contacts(caller);
    call_stock(caller);
    call_definitions(caller);
    call_engineers(caller, host.file("sldb.mdb"));
    call_invoices(caller);
    call_extended(caller);
    for (const char16_t* const list : {u"TrackType", u"ProjType", u"TrackDestin", u"EquipAct"}) {
        call_list(caller, *gate, list);
    }
    caller.expect(u"CloseDB", {});
    ProjInfo project;
    caller.expect(u"EnumFirstProj", {Variant::record(project)}, E_FAIL);
    EXPECT_EQ(words(kMainMethods).size(), 183u);
    caller.expect_all_called(kMainMethods);
}

template <class Gate>
void expect_gear_gate_answers() {
    const GateHost host;
    const auto gate = host.create<Gate>();
    Caller caller(*gate);
    caller.expect(u"OpenDB", {});
    call_table(caller, u"Gear", GearInfo(), &GearInfo::RecID, &GearInfo::Model);
    call_table(caller, u"GearService", GearServInfo(), &GearServInfo::RecID, &GearServInfo::Name);
    call_table(caller, u"GRepairs", GRepairsInfo(), &GRepairsInfo::RecID, &GRepairsInfo::Description);
    call_table(caller, u"GearCat", GearCatInfo(), &GearCatInfo::RecID, &GearCatInfo::Name);
    call_table(caller, u"GearRent", GearRentInfo(), &GearRentInfo::RecID, &GearRentInfo::ServiceName);
    caller.expect(u"CloseDB", {});
    GearInfo gear;
    caller.expect(u"EnumFirstGear", {Variant::record(gear)}, E_FAIL);
    EXPECT_EQ(words(kGearMethods).size(), 32u);
    caller.expect_all_called(kGearMethods);
}

TEST(EveryMethodGate, gear_gate_2_answers_each_by_name) { expect_gear_gate_answers<IDBgate2>(); }
TEST(EveryMethodGate, gear_gate_3_answers_each_by_name) { expect_gear_gate_answers<IDBGate3>(); }

}  // namespace
