// The three gates: dual interfaces whose methods follow IDispatch's in slot order. Every method returns
// S_OK or E_FAIL. The order of the methods and the names of their parameters are the contract, slips of
// spelling included; a method is never moved, renamed or left out.
//
// A record is passed as its address (LONG_PTR: the published 32-bit integer in a 32-bit host). The method
// reads or fills it during the call and keeps no reference to it. A narrow text (LPSTR) is the caller's
// buffer; where the method fills it, it must have room for 255 characters and the terminating zero.
#pragma once

#include <kvdb/com.h>

inline constexpr GUID LIBID_KVDBLib{0xD4E6B90C, 0x22E3, 0x47D3, {0x9E, 0x7F, 0x02, 0xAA, 0x21, 0xC9, 0xA4, 0x28}};

inline constexpr CLSID CLSID_DBgate1{0x66DA35EC, 0xB364, 0x4F64, {0xA3, 0xFD, 0xD0, 0x9D, 0x31, 0x4C, 0x02, 0xD1}};
inline constexpr CLSID CLSID_DBgate2{0x99CA7812, 0x20D9, 0x4498, {0x97, 0x27, 0xDE, 0x8B, 0x97, 0xA3, 0xF3, 0x83}};
inline constexpr CLSID CLSID_DBGate3{0xBD49E811, 0x5273, 0x4074, {0xBD, 0x03, 0x8E, 0xD9, 0xB0, 0x81, 0x24, 0x18}};
// The same class under the spelling of the other two.
inline constexpr CLSID CLSID_DBgate3 = CLSID_DBGate3;

inline constexpr IID IID_IDBgate1{0x02CF8E26, 0x615C, 0x4CA7, {0xAC, 0x50, 0xB8, 0xCE, 0xD6, 0xB5, 0x92, 0x8E}};
inline constexpr IID IID_IDBgate2{0x0E7EFBB4, 0x0BD3, 0x42C6, {0xA8, 0x88, 0xEF, 0xCD, 0x04, 0xF0, 0x01, 0xB3}};
inline constexpr IID IID_IDBGate3{0xEA3B6D78, 0xCF9F, 0x477C, {0xAB, 0x55, 0x3A, 0xBD, 0xE4, 0x66, 0xEC, 0x1D}};
// The same interface under the spelling of the other two.
inline constexpr IID IID_IDBgate3 = IID_IDBGate3;

#if defined(_WIN32) && defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // the platform's IDispatch has no destructor
#endif

// Every table of the studio; 183 methods.
struct IDBgate1 : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE CreateDB(BSTR szFileName) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDBVer(LONG* pdwDBver) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstProj(LONG_PTR pPorjInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextProj(LONG_PTR pPorjInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindProj(LONG_PTR pProjInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddProj(LONG_PTR pProjInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateProj(LONG_PTR pProjInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteProj(LONG nProjID) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstSong(LONG_PTR pSongInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextSong(LONG_PTR pSongInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindSong(LONG_PTR pSongInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddSong(LONG_PTR pSongInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteSong(LONG dwSongID) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateSong(LONG_PTR pSongInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstTrack(LONG_PTR pTrackInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextTrack(LONG_PTR pTrackInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindTrack(LONG_PTR pTrackInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddTrack(LONG_PTR pTrackInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteTrack(LONG dwTrackID) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateTrack(LONG_PTR pTrackInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstSession(LONG_PTR pSessionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextSession(LONG_PTR pSessionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindSession(LONG_PTR pSessionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddSession(LONG_PTR pSessionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteSession(LONG dwSessionID) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateSession(LONG_PTR pSessionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstClient(LONG_PTR pClientInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextClient(LONG_PTR pClientInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindClient(LONG_PTR pClientInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteClient(LONG dwClientID) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateClient(LONG_PTR pClientInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddClient(LONG_PTR pClientInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstStock(LONG_PTR pStockInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextStock(LONG_PTR pStockInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindStock(LONG_PTR pStockInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddStock(LONG_PTR pStockInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateStock(LONG_PTR pStockInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteStock(LONG dwStockID) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstEquip(LONG_PTR pEquipInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextEquip(LONG_PTR pEquipInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindEquip(LONG_PTR pEquipInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddEquip(LONG_PTR pEquipInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateEquip(LONG_PTR pEquipInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteEquip(LONG dwEquipID) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstTrackType(LPSTR szTrackType) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextTrackType(LPSTR szTrackType) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddTrackType(LPSTR szTrackType) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteTrackType(LPSTR szTrackType) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstProjType(LPSTR szTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextProjType(LPSTR szTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddProjType(LPSTR szTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteProjType(LPSTR szTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstTrackDestin(LPSTR szDestinName) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextTrackDestin(LPSTR szDestinName) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddTrackDestin(LPSTR szDestinName) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteTrackDestin(LPSTR szDestinName) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstEquipAct(LPSTR szAction) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextEquipAct(LPSTR szAction) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddEquipAct(LPSTR szAction) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteEquipAct(LPSTR szAction) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindSequencer(LONG_PTR pSeqInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddSupplyAct(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateSupplyAct(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteSupplyAct(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstSupply(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextSupply(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindSupplyAct(LONG_PTR pSupplyAct) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateStockType(LONG_PTR pStockTypeInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE ComputeInStock(LONG dwStockTypeID, LONG* pnInStock) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHead(LONG_PTR pHeadInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHead(LONG_PTR pHeadInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE CloseDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindEngineer(LONG_PTR pEngineerInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE CompactDB(LONG_PTR pCompactDBInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetInvoiceDef(LONG_PTR pInvioceDef) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInvoiceDef(LONG_PTR pInvioceDef) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindRoom(LONG_PTR pRoomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindLibGrp(LONG_PTR pLibGrpInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindMediaLib(LONG_PTR pMediaLibInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindMediaFile(LONG_PTR pMediaFileInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindBooking(LONG_PTR pBookingInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindInvoice(LONG_PTR pInvoiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindInvParams(LONG_PTR pInvParamsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumEx_FirstSession(LONG_PTR pSessionExInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumEx_NextSession(LONG_PTR pSessionExInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumEx_FirstSupply(LONG_PTR pSupplyExInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumEx_NextSupply(LONG_PTR pSupplyExInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteConCat(LONG_PTR pConCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateProjPay(LONG_PTR pProjPayInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindProjAct(LONG_PTR pProjActInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindMix(LONG_PTR pMixInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMsg(LONG_PTR pMsgInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteService(LONG_PTR pServiceInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstPartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextPartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindPartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddPartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdatePartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeletePartic(LONG_PTR pParticInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirst_CustomQuery(LONG_PTR pCustomInfo, LONG nType) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNext_CustomQuery(LONG_PTR pCustomInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE IsDbExist() = 0;

protected:
    ~IDBgate1() = default;
};

// The five gear tables; 32 methods.
struct IDBgate2 : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE OpenDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE CloseDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearRent(LONG_PTR pGearRentInfo) = 0;

protected:
    ~IDBgate2() = default;
};

// As IDBgate2, with the whole gear rental record and its filter; 32 methods.
struct IDBGate3 : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE OpenDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE CloseDB() = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGear(LONG_PTR pGearInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearService(LONG_PTR pGearServInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGRepairs(LONG_PTR pGRepairsInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearCat(LONG_PTR pGearCatInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumFirstGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumNextGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE AddGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UpdateGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindGearRent(LONG_PTR pGearRentInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteGearRent(LONG_PTR pGearRentInfo) = 0;

protected:
    ~IDBGate3() = default;
};

#if defined(_WIN32) && defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
