// The three method tables against the published lists, and every row against its slot.
#include "frame/gate_methods.h"

#include <gtest/gtest.h>
#include <kvdb/gates.h>

#include <array>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr const char* kGate1 =
    "CreateDB(szFileName) OpenDB() GetDBVer(pdwDBver) EnumFirstProj(pPorjInfo) EnumNextProj(pPorjInfo) "
    "FindProj(pProjInfo) AddProj(pProjInfo) UpdateProj(pProjInfo) DeleteProj(nProjID) EnumFirstSong(pSongInfo) "
    "EnumNextSong(pSongInfo) FindSong(pSongInfo) AddSong(pSongInfo) DeleteSong(dwSongID) UpdateSong(pSongInfo) "
    "EnumFirstTrack(pTrackInfo) EnumNextTrack(pTrackInfo) FindTrack(pTrackInfo) AddTrack(pTrackInfo) "
    "DeleteTrack(dwTrackID) UpdateTrack(pTrackInfo) EnumFirstSession(pSessionInfo) EnumNextSession(pSessionInfo) "
    "FindSession(pSessionInfo) AddSession(pSessionInfo) DeleteSession(dwSessionID) UpdateSession(pSessionInfo) "
    "EnumFirstClient(pClientInfo) EnumNextClient(pClientInfo) FindClient(pClientInfo) DeleteClient(dwClientID) "
    "UpdateClient(pClientInfo) AddClient(pClientInfo) EnumFirstStock(pStockInfo) EnumNextStock(pStockInfo) "
    "FindStock(pStockInfo) AddStock(pStockInfo) UpdateStock(pStockInfo) DeleteStock(dwStockID) "
    "EnumFirstEquip(pEquipInfo) EnumNextEquip(pEquipInfo) FindEquip(pEquipInfo) AddEquip(pEquipInfo) "
    "UpdateEquip(pEquipInfo) DeleteEquip(dwEquipID) EnumFirstTrackType(szTrackType) "
    "EnumNextTrackType(szTrackType) AddTrackType(szTrackType) DeleteTrackType(szTrackType) "
    "EnumFirstProjType(szTypeName) EnumNextProjType(szTypeName) AddProjType(szTypeName) "
    "DeleteProjType(szTypeName) EnumFirstTrackDestin(szDestinName) EnumNextTrackDestin(szDestinName) "
    "AddTrackDestin(szDestinName) DeleteTrackDestin(szDestinName) EnumFirstStockType(pStockTypeInfo) "
    "EnumNextStockType(pStockTypeInfo) AddStockType(pStockTypeInfo) DeleteStockType(pStockTypeInfo) "
    "EnumFirstEngineer(pEngineerInfo) EnumNextEngineer(pEngineerInfo) AddEngineer(pEngineerInfo) "
    "DeleteEngineer(pEngineerInfo) EnumFirstEquipAct(szAction) EnumNextEquipAct(szAction) AddEquipAct(szAction) "
    "DeleteEquipAct(szAction) EnumFirstSequencer(pSeqInfo) EnumNextSequencer(pSeqInfo) AddSequencer(pSeqInfo) "
    "DeleteSequencer(pSeqInfo) UpdateSequencer(pSeqInfo) FindSequencer(pSeqInfo) AddSupplyAct(pSupplyAct) "
    "UpdateSupplyAct(pSupplyAct) DeleteSupplyAct(pSupplyAct) EnumFirstSupply(pSupplyAct) "
    "EnumNextSupply(pSupplyAct) FindSupplyAct(pSupplyAct) FindStockType(pStockTypeInfo) "
    "UpdateStockType(pStockTypeInfo) ComputeInStock(dwStockTypeID,pnInStock) GetHead(pHeadInfo) "
    "SetHead(pHeadInfo) CloseDB() UpdateEngineer(pEngineerInfo) FindEngineer(pEngineerInfo) "
    "CompactDB(pCompactDBInfo) SetInvoiceDef(pInvioceDef) GetInvoiceDef(pInvioceDef) EnumFirstRoom(pRoomInfo) "
    "EnumNextRoom(pRoomInfo) AddRoom(pRoomInfo) UpdateRoom(pRoomInfo) DeleteRoom(pRoomInfo) FindRoom(pRoomInfo) "
    "EnumFirstLibGrp(pLibGrpInfo) EnumNextLibGrp(pLibGrpInfo) AddLibGrp(pLibGrpInfo) UpdateLibGrp(pLibGrpInfo) "
    "DeleteLibGrp(pLibGrpInfo) FindLibGrp(pLibGrpInfo) EnumFirstMediaLib(pMediaLibInfo) "
    "EnumNextMediaLib(pMediaLibInfo) AddMediaLib(pMediaLibInfo) UpdateMediaLib(pMediaLibInfo) "
    "DeleteMediaLib(pMediaLibInfo) FindMediaLib(pMediaLibInfo) EnumFirstMediaFile(pMediaFileInfo) "
    "EnumNextMediaFile(pMediaFileInfo) AddMediaFile(pMediaFileInfo) UpdateMediaFile(pMediaFileInfo) "
    "DeleteMediaFile(pMediaFileInfo) FindMediaFile(pMediaFileInfo) EnumFirstBooking(pBookingInfo) "
    "EnumNextBooking(pBookingInfo) AddBooking(pBookingInfo) UpdateBooking(pBookingInfo) "
    "DeleteBooking(pBookingInfo) FindBooking(pBookingInfo) EnumFirstInvoice(pInvoiceInfo) "
    "EnumNextInvoice(pInvoiceInfo) AddInvoice(pInvoiceInfo) UpdateInvoice(pInvoiceInfo) "
    "DeleteInvoice(pInvoiceInfo) FindInvoice(pInvoiceInfo) EnumFirstInvParams(pInvParamsInfo) "
    "EnumNextInvParams(pInvParamsInfo) AddInvParams(pInvParamsInfo) UpdateInvParams(pInvParamsInfo) "
    "DeleteInvParams(pInvParamsInfo) FindInvParams(pInvParamsInfo) EnumEx_FirstSession(pSessionExInfo) "
    "EnumEx_NextSession(pSessionExInfo) EnumEx_FirstSupply(pSupplyExInfo) EnumEx_NextSupply(pSupplyExInfo) "
    "EnumFirstConCat(pConCatInfo) EnumNextConCat(pConCatInfo) FindConCat(pConCatInfo) AddConCat(pConCatInfo) "
    "UpdateConCat(pConCatInfo) DeleteConCat(pConCatInfo) EnumFirstProjPay(pProjPayInfo) "
    "EnumNextProjPay(pProjPayInfo) FindProjPay(pProjPayInfo) AddProjPay(pProjPayInfo) DeleteProjPay(pProjPayInfo) "
    "UpdateProjPay(pProjPayInfo) EnumFirstProjAct(pProjActInfo) EnumNextProjAct(pProjActInfo) "
    "AddProjAct(pProjActInfo) UpdateProjAct(pProjActInfo) DeleteProjAct(pProjActInfo) FindProjAct(pProjActInfo) "
    "EnumFirstMix(pMixInfo) EnumNextMix(pMixInfo) AddMix(pMixInfo) UpdateMix(pMixInfo) DeleteMix(pMixInfo) "
    "FindMix(pMixInfo) EnumFirstMsg(pMsgInfo) EnumNextMsg(pMsgInfo) AddMsg(pMsgInfo) FindMsg(pMsgInfo) "
    "UpdateMsg(pMsgInfo) DeleteMsg(pMsgInfo) EnumFirstService(pServiceInfo) EnumNextService(pServiceInfo) "
    "AddService(pServiceInfo) FindService(pServiceInfo) UpdateService(pServiceInfo) DeleteService(pServiceInfo) "
    "EnumFirstPartic(pParticInfo) EnumNextPartic(pParticInfo) FindPartic(pParticInfo) AddPartic(pParticInfo) "
    "UpdatePartic(pParticInfo) DeletePartic(pParticInfo) EnumFirst_CustomQuery(pCustomInfo,nType) "
    "EnumNext_CustomQuery(pCustomInfo) IsDbExist() ";

constexpr const char* kGear =
    "OpenDB() CloseDB() EnumFirstGear(pGearInfo) EnumNextGear(pGearInfo) AddGear(pGearInfo) UpdateGear(pGearInfo) "
    "FindGear(pGearInfo) DeleteGear(pGearInfo) EnumFirstGearService(pGearServInfo) "
    "EnumNextGearService(pGearServInfo) AddGearService(pGearServInfo) UpdateGearService(pGearServInfo) "
    "FindGearService(pGearServInfo) DeleteGearService(pGearServInfo) EnumFirstGRepairs(pGRepairsInfo) "
    "EnumNextGRepairs(pGRepairsInfo) AddGRepairs(pGRepairsInfo) UpdateGRepairs(pGRepairsInfo) "
    "FindGRepairs(pGRepairsInfo) DeleteGRepairs(pGRepairsInfo) EnumFirstGearCat(pGearCatInfo) "
    "EnumNextGearCat(pGearCatInfo) AddGearCat(pGearCatInfo) UpdateGearCat(pGearCatInfo) FindGearCat(pGearCatInfo) "
    "DeleteGearCat(pGearCatInfo) EnumFirstGearRent(pGearRentInfo) EnumNextGearRent(pGearRentInfo) "
    "AddGearRent(pGearRentInfo) UpdateGearRent(pGearRentInfo) FindGearRent(pGearRentInfo) "
    "DeleteGearRent(pGearRentInfo) ";

std::vector<std::string> words(const char* text) {
    std::istringstream in(text);
    std::vector<std::string> result;
    for (std::string word; in >> word;) result.push_back(word);
    return result;
}

// "Method(a,b)" for every row.
std::vector<std::string> signatures(std::span<const frame::Method> methods) {
    std::vector<std::string> result;
    for (const frame::Method& method : methods) {
        std::string text = std::string(method.name) + "(";
        for (std::size_t i = 0; i < method.parameter_count; ++i) {
            text += (i != 0 ? "," : "") + std::string(method.parameters[i]);
        }
        result.push_back(text + ")");
    }
    return result;
}

#ifndef _WIN32

// An object that consists only of a table of slots, each of which records its number. A caller of a method finds the
// slot through that table as with any object; no slot reads its arguments.
int called_slot = -1;

template <int Slot>
HRESULT note_slot(void*) {
    called_slot = Slot;
    return S_OK;
}

template <int... Slots>
constexpr auto slot_table(std::integer_sequence<int, Slots...>) {
    return std::array<HRESULT (*)(void*), sizeof...(Slots)>{note_slot<Slots>...};
}

constexpr int kDispatchSlots = 7;

void expect_each_row_reaches_its_slot(std::span<const frame::Method> methods) {
    static const auto slots = slot_table(std::make_integer_sequence<int, kDispatchSlots + 183>());
    struct {
        const void* table;
    } object{slots.data()};
    IDispatch* const gate = reinterpret_cast<IDispatch*>(&object);
    VARIANT argument{};
    argument.vt = VT_EMPTY;
    LONG number = 0;
    VARIANT out{};
    out.vt = VT_BYREF | VT_I4;
    out.plVal = &number;
    for (std::size_t row = 0; row < methods.size(); ++row) {
        std::array<VARIANT*, frame::kMaxParameters> arguments{&argument, &out};
        frame::BadArgument bad;
        if (std::string_view(methods[row].name) == "GetDBVer") arguments[0] = &out;
        called_slot = -1;
        methods[row].invoke(gate, std::span<VARIANT* const>(arguments.data(), methods[row].parameter_count), bad);
        EXPECT_EQ(bad.result, S_OK) << methods[row].name;
        EXPECT_EQ(called_slot, kDispatchSlots + static_cast<int>(row)) << methods[row].name;
    }
}

#endif

}  // namespace

TEST(GateMethods, gate1_lists_183_methods_in_slot_order) {
    EXPECT_EQ(frame::gate1_methods().size(), 183u);
    EXPECT_EQ(signatures(frame::gate1_methods()), words(kGate1));
}

TEST(GateMethods, gear_gates_list_32_methods_in_slot_order) {
    EXPECT_EQ(frame::gate2_methods().size(), 32u);
    EXPECT_EQ(signatures(frame::gate2_methods()), words(kGear));
    EXPECT_EQ(signatures(frame::gate3_methods()), words(kGear));
}

#ifndef _WIN32

TEST(GateMethods, each_row_reaches_its_slot) {
#ifdef KVDB_SANITIZED
    GTEST_SKIP() << "an object without a type is an error to the sanitizer";
#endif
    expect_each_row_reaches_its_slot(frame::gate1_methods());
    expect_each_row_reaches_its_slot(frame::gate2_methods());
    expect_each_row_reaches_its_slot(frame::gate3_methods());
}

#endif
