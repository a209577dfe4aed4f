// DBgate1: the gate to every table of the studio. A method is one line where it is nothing but an
// operation of its table; the database methods are in gate1.cpp.
//
// 1. A fresh gate holds null databases and no cursor; OpenDB or CreateDB attaches it.
// 2. The tables are released in member order when the gate ends.
#pragma once

#include <kvdb/gates.h>
#include <kvdb/records.h>

#include "frame/gate_base.h"
#include "studio/bookings.h"
#include "studio/contacts.h"
#include "studio/engineers.h"
#include "studio/extended.h"
#include "studio/invoices.h"
#include "studio/lookup_lists.h"
#include "studio/media_library.h"
#include "studio/projects.h"
#include "studio/record_table.h"
#include "studio/sessions.h"
#include "studio/songs.h"
#include "studio/stock.h"

namespace frame {

class DBgate1 final : public GateBase<IDBgate1> {
public:
    DBgate1();

    static const char* description() { return "DBgate1 Class"; }

    // ---- Methods, in slot order

    HRESULT STDMETHODCALLTYPE CreateDB(BSTR szFileName) override;
    HRESULT STDMETHODCALLTYPE OpenDB() override;
    HRESULT STDMETHODCALLTYPE GetDBVer(LONG* pdwDBver) override;
    HRESULT STDMETHODCALLTYPE EnumFirstProj(LONG_PTR pPorjInfo) override { return enum_first(projects_, pPorjInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextProj(LONG_PTR pPorjInfo) override { return enum_next(projects_, pPorjInfo); }
    HRESULT STDMETHODCALLTYPE FindProj(LONG_PTR pProjInfo) override { return find(projects_, pProjInfo); }
    HRESULT STDMETHODCALLTYPE AddProj(LONG_PTR pProjInfo) override { return add(projects_, pProjInfo); }
    HRESULT STDMETHODCALLTYPE UpdateProj(LONG_PTR pProjInfo) override { return update(projects_, pProjInfo); }
    HRESULT STDMETHODCALLTYPE DeleteProj(LONG nProjID) override { return remove(projects_, nProjID); }
    HRESULT STDMETHODCALLTYPE EnumFirstSong(LONG_PTR pSongInfo) override { return enum_first(songs_, pSongInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextSong(LONG_PTR pSongInfo) override { return enum_next(songs_, pSongInfo); }
    HRESULT STDMETHODCALLTYPE FindSong(LONG_PTR pSongInfo) override { return find(songs_, pSongInfo); }
    HRESULT STDMETHODCALLTYPE AddSong(LONG_PTR pSongInfo) override { return add(songs_, pSongInfo); }
    HRESULT STDMETHODCALLTYPE DeleteSong(LONG dwSongID) override { return remove(songs_, dwSongID); }
    HRESULT STDMETHODCALLTYPE UpdateSong(LONG_PTR pSongInfo) override { return update(songs_, pSongInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrack(LONG_PTR pTrackInfo) override { return enum_first(tracks_, pTrackInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextTrack(LONG_PTR pTrackInfo) override { return enum_next(tracks_, pTrackInfo); }
    HRESULT STDMETHODCALLTYPE FindTrack(LONG_PTR pTrackInfo) override { return find(tracks_, pTrackInfo); }
    HRESULT STDMETHODCALLTYPE AddTrack(LONG_PTR pTrackInfo) override { return add(tracks_, pTrackInfo); }
    HRESULT STDMETHODCALLTYPE DeleteTrack(LONG dwTrackID) override { return remove(tracks_, dwTrackID); }
    HRESULT STDMETHODCALLTYPE UpdateTrack(LONG_PTR pTrackInfo) override { return update(tracks_, pTrackInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstSession(LONG_PTR pSessionInfo) override {
        return enum_first(sessions_, pSessionInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextSession(LONG_PTR pSessionInfo) override {
        return enum_next(sessions_, pSessionInfo);
    }
    HRESULT STDMETHODCALLTYPE FindSession(LONG_PTR pSessionInfo) override { return find(sessions_, pSessionInfo); }
    HRESULT STDMETHODCALLTYPE AddSession(LONG_PTR pSessionInfo) override { return add(sessions_, pSessionInfo); }
    HRESULT STDMETHODCALLTYPE DeleteSession(LONG dwSessionID) override { return remove(sessions_, dwSessionID); }
    HRESULT STDMETHODCALLTYPE UpdateSession(LONG_PTR pSessionInfo) override { return update(sessions_, pSessionInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstClient(LONG_PTR pClientInfo) override {
        return enum_first(clients_, pClientInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextClient(LONG_PTR pClientInfo) override { return enum_next(clients_, pClientInfo); }
    HRESULT STDMETHODCALLTYPE FindClient(LONG_PTR pClientInfo) override { return find(clients_, pClientInfo); }
    HRESULT STDMETHODCALLTYPE DeleteClient(LONG dwClientID) override { return remove(clients_, dwClientID); }
    HRESULT STDMETHODCALLTYPE UpdateClient(LONG_PTR pClientInfo) override { return update(clients_, pClientInfo); }
    HRESULT STDMETHODCALLTYPE AddClient(LONG_PTR pClientInfo) override { return add(clients_, pClientInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstStock(LONG_PTR pStockInfo) override { return enum_first(stock_, pStockInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextStock(LONG_PTR pStockInfo) override { return enum_next(stock_, pStockInfo); }
    HRESULT STDMETHODCALLTYPE FindStock(LONG_PTR pStockInfo) override { return find(stock_, pStockInfo); }
    HRESULT STDMETHODCALLTYPE AddStock(LONG_PTR pStockInfo) override { return add(stock_, pStockInfo); }
    HRESULT STDMETHODCALLTYPE UpdateStock(LONG_PTR pStockInfo) override { return update(stock_, pStockInfo); }
    HRESULT STDMETHODCALLTYPE DeleteStock(LONG dwStockID) override { return remove(stock_, dwStockID); }
    HRESULT STDMETHODCALLTYPE EnumFirstEquip(LONG_PTR pEquipInfo) override {
        return enum_first(equipment_, pEquipInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextEquip(LONG_PTR pEquipInfo) override { return enum_next(equipment_, pEquipInfo); }
    HRESULT STDMETHODCALLTYPE FindEquip(LONG_PTR pEquipInfo) override { return find(equipment_, pEquipInfo); }
    HRESULT STDMETHODCALLTYPE AddEquip(LONG_PTR pEquipInfo) override { return add(equipment_, pEquipInfo); }
    HRESULT STDMETHODCALLTYPE UpdateEquip(LONG_PTR pEquipInfo) override { return update(equipment_, pEquipInfo); }
    HRESULT STDMETHODCALLTYPE DeleteEquip(LONG dwEquipID) override { return remove(equipment_, dwEquipID); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrackType(LPSTR szTrackType) override {
        return enum_first(track_types_, szTrackType);
    }
    HRESULT STDMETHODCALLTYPE EnumNextTrackType(LPSTR szTrackType) override {
        return enum_next(track_types_, szTrackType);
    }
    HRESULT STDMETHODCALLTYPE AddTrackType(LPSTR szTrackType) override { return add(track_types_, szTrackType); }
    HRESULT STDMETHODCALLTYPE DeleteTrackType(LPSTR szTrackType) override { return remove(track_types_, szTrackType); }
    HRESULT STDMETHODCALLTYPE EnumFirstProjType(LPSTR szTypeName) override {
        return enum_first(project_types_, szTypeName);
    }
    HRESULT STDMETHODCALLTYPE EnumNextProjType(LPSTR szTypeName) override {
        return enum_next(project_types_, szTypeName);
    }
    HRESULT STDMETHODCALLTYPE AddProjType(LPSTR szTypeName) override { return add(project_types_, szTypeName); }
    HRESULT STDMETHODCALLTYPE DeleteProjType(LPSTR szTypeName) override { return remove(project_types_, szTypeName); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrackDestin(LPSTR szDestinName) override {
        return enum_first(track_destinations_, szDestinName);
    }
    HRESULT STDMETHODCALLTYPE EnumNextTrackDestin(LPSTR szDestinName) override {
        return enum_next(track_destinations_, szDestinName);
    }
    HRESULT STDMETHODCALLTYPE AddTrackDestin(LPSTR szDestinName) override {
        return add(track_destinations_, szDestinName);
    }
    HRESULT STDMETHODCALLTYPE DeleteTrackDestin(LPSTR szDestinName) override {
        return remove(track_destinations_, szDestinName);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstStockType(LONG_PTR pStockTypeInfo) override {
        return enum_first(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextStockType(LONG_PTR pStockTypeInfo) override {
        return enum_next(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE AddStockType(LONG_PTR pStockTypeInfo) override {
        return add(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteStockType(LONG_PTR pStockTypeInfo) override {
        return remove_record(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstEngineer(LONG_PTR pEngineerInfo) override {
        return enum_first(engineers_, pEngineerInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextEngineer(LONG_PTR pEngineerInfo) override {
        return enum_next(engineers_, pEngineerInfo);
    }
    HRESULT STDMETHODCALLTYPE AddEngineer(LONG_PTR pEngineerInfo) override { return add(engineers_, pEngineerInfo); }
    HRESULT STDMETHODCALLTYPE DeleteEngineer(LONG_PTR pEngineerInfo) override {
        return remove_record(engineers_, pEngineerInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstEquipAct(LPSTR szAction) override {
        return enum_first(equipment_actions_, szAction);
    }
    HRESULT STDMETHODCALLTYPE EnumNextEquipAct(LPSTR szAction) override {
        return enum_next(equipment_actions_, szAction);
    }
    HRESULT STDMETHODCALLTYPE AddEquipAct(LPSTR szAction) override { return add(equipment_actions_, szAction); }
    HRESULT STDMETHODCALLTYPE DeleteEquipAct(LPSTR szAction) override { return remove(equipment_actions_, szAction); }
    HRESULT STDMETHODCALLTYPE EnumFirstSequencer(LONG_PTR pSeqInfo) override {
        return enum_first(sequencers_, pSeqInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextSequencer(LONG_PTR pSeqInfo) override { return enum_next(sequencers_, pSeqInfo); }
    HRESULT STDMETHODCALLTYPE AddSequencer(LONG_PTR pSeqInfo) override { return add(sequencers_, pSeqInfo); }
    HRESULT STDMETHODCALLTYPE DeleteSequencer(LONG_PTR pSeqInfo) override {
        return remove_record(sequencers_, pSeqInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateSequencer(LONG_PTR pSeqInfo) override { return update(sequencers_, pSeqInfo); }
    HRESULT STDMETHODCALLTYPE FindSequencer(LONG_PTR pSeqInfo) override { return find(sequencers_, pSeqInfo); }
    HRESULT STDMETHODCALLTYPE AddSupplyAct(LONG_PTR pSupplyAct) override { return add(supply_, pSupplyAct); }
    HRESULT STDMETHODCALLTYPE UpdateSupplyAct(LONG_PTR pSupplyAct) override { return update(supply_, pSupplyAct); }
    HRESULT STDMETHODCALLTYPE DeleteSupplyAct(LONG_PTR pSupplyAct) override {
        return remove_record(supply_, pSupplyAct);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstSupply(LONG_PTR pSupplyAct) override { return enum_first(supply_, pSupplyAct); }
    HRESULT STDMETHODCALLTYPE EnumNextSupply(LONG_PTR pSupplyAct) override { return enum_next(supply_, pSupplyAct); }
    HRESULT STDMETHODCALLTYPE FindSupplyAct(LONG_PTR pSupplyAct) override { return find(supply_, pSupplyAct); }
    HRESULT STDMETHODCALLTYPE FindStockType(LONG_PTR pStockTypeInfo) override {
        return find(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateStockType(LONG_PTR pStockTypeInfo) override {
        return update(stock_types_, pStockTypeInfo);
    }
    HRESULT STDMETHODCALLTYPE ComputeInStock(LONG dwStockTypeID, LONG* pnInStock) override;
    HRESULT STDMETHODCALLTYPE GetHead(LONG_PTR pHeadInfo) override;
    HRESULT STDMETHODCALLTYPE SetHead(LONG_PTR pHeadInfo) override;
    HRESULT STDMETHODCALLTYPE CloseDB() override;
    HRESULT STDMETHODCALLTYPE UpdateEngineer(LONG_PTR pEngineerInfo) override {
        return update(engineers_, pEngineerInfo);
    }
    HRESULT STDMETHODCALLTYPE FindEngineer(LONG_PTR pEngineerInfo) override { return find(engineers_, pEngineerInfo); }
    HRESULT STDMETHODCALLTYPE CompactDB(LONG_PTR pCompactDBInfo) override;
    HRESULT STDMETHODCALLTYPE SetInvoiceDef(LONG_PTR pInvioceDef) override;
    HRESULT STDMETHODCALLTYPE GetInvoiceDef(LONG_PTR pInvioceDef) override;
    HRESULT STDMETHODCALLTYPE EnumFirstRoom(LONG_PTR pRoomInfo) override { return enum_first(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextRoom(LONG_PTR pRoomInfo) override { return enum_next(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE AddRoom(LONG_PTR pRoomInfo) override { return add(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE UpdateRoom(LONG_PTR pRoomInfo) override { return update(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE DeleteRoom(LONG_PTR pRoomInfo) override { return remove_record(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE FindRoom(LONG_PTR pRoomInfo) override { return find(rooms_, pRoomInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstLibGrp(LONG_PTR pLibGrpInfo) override {
        return enum_first(library_groups_, pLibGrpInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextLibGrp(LONG_PTR pLibGrpInfo) override {
        return enum_next(library_groups_, pLibGrpInfo);
    }
    HRESULT STDMETHODCALLTYPE AddLibGrp(LONG_PTR pLibGrpInfo) override { return add(library_groups_, pLibGrpInfo); }
    HRESULT STDMETHODCALLTYPE UpdateLibGrp(LONG_PTR pLibGrpInfo) override {
        return update(library_groups_, pLibGrpInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteLibGrp(LONG_PTR pLibGrpInfo) override {
        return remove_record(library_groups_, pLibGrpInfo);
    }
    HRESULT STDMETHODCALLTYPE FindLibGrp(LONG_PTR pLibGrpInfo) override { return find(library_groups_, pLibGrpInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstMediaLib(LONG_PTR pMediaLibInfo) override {
        return enum_first(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextMediaLib(LONG_PTR pMediaLibInfo) override {
        return enum_next(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE AddMediaLib(LONG_PTR pMediaLibInfo) override {
        return add(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateMediaLib(LONG_PTR pMediaLibInfo) override {
        return update(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteMediaLib(LONG_PTR pMediaLibInfo) override {
        return remove_record(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE FindMediaLib(LONG_PTR pMediaLibInfo) override {
        return find(media_libraries_, pMediaLibInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstMediaFile(LONG_PTR pMediaFileInfo) override {
        return enum_first(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextMediaFile(LONG_PTR pMediaFileInfo) override {
        return enum_next(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE AddMediaFile(LONG_PTR pMediaFileInfo) override {
        return add(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateMediaFile(LONG_PTR pMediaFileInfo) override {
        return update(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteMediaFile(LONG_PTR pMediaFileInfo) override {
        return remove_record(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE FindMediaFile(LONG_PTR pMediaFileInfo) override {
        return find(media_files_, pMediaFileInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstBooking(LONG_PTR pBookingInfo) override {
        return enum_first(bookings_, pBookingInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextBooking(LONG_PTR pBookingInfo) override {
        return enum_next(bookings_, pBookingInfo);
    }
    HRESULT STDMETHODCALLTYPE AddBooking(LONG_PTR pBookingInfo) override { return add(bookings_, pBookingInfo); }
    HRESULT STDMETHODCALLTYPE UpdateBooking(LONG_PTR pBookingInfo) override { return update(bookings_, pBookingInfo); }
    HRESULT STDMETHODCALLTYPE DeleteBooking(LONG_PTR pBookingInfo) override {
        return remove_record(bookings_, pBookingInfo);
    }
    HRESULT STDMETHODCALLTYPE FindBooking(LONG_PTR pBookingInfo) override { return find(bookings_, pBookingInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstInvoice(LONG_PTR pInvoiceInfo) override {
        return enum_first(invoices_, pInvoiceInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextInvoice(LONG_PTR pInvoiceInfo) override {
        return enum_next(invoices_, pInvoiceInfo);
    }
    HRESULT STDMETHODCALLTYPE AddInvoice(LONG_PTR pInvoiceInfo) override { return add(invoices_, pInvoiceInfo); }
    HRESULT STDMETHODCALLTYPE UpdateInvoice(LONG_PTR pInvoiceInfo) override { return update(invoices_, pInvoiceInfo); }
    HRESULT STDMETHODCALLTYPE DeleteInvoice(LONG_PTR pInvoiceInfo) override {
        return remove_record(invoices_, pInvoiceInfo);
    }
    HRESULT STDMETHODCALLTYPE FindInvoice(LONG_PTR pInvoiceInfo) override { return find(invoices_, pInvoiceInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstInvParams(LONG_PTR pInvParamsInfo) override {
        return enum_first(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextInvParams(LONG_PTR pInvParamsInfo) override {
        return enum_next(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE AddInvParams(LONG_PTR pInvParamsInfo) override {
        return add(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateInvParams(LONG_PTR pInvParamsInfo) override {
        return update(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteInvParams(LONG_PTR pInvParamsInfo) override {
        return remove_record(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE FindInvParams(LONG_PTR pInvParamsInfo) override {
        return find(invoice_lines_, pInvParamsInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumEx_FirstSession(LONG_PTR pSessionExInfo) override {
        return enum_first(sessions_ex_, pSessionExInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumEx_NextSession(LONG_PTR pSessionExInfo) override {
        return enum_next(sessions_ex_, pSessionExInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumEx_FirstSupply(LONG_PTR pSupplyExInfo) override {
        return enum_first(supply_ex_, pSupplyExInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumEx_NextSupply(LONG_PTR pSupplyExInfo) override {
        return enum_next(supply_ex_, pSupplyExInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstConCat(LONG_PTR pConCatInfo) override {
        return enum_first(categories_, pConCatInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextConCat(LONG_PTR pConCatInfo) override {
        return enum_next(categories_, pConCatInfo);
    }
    HRESULT STDMETHODCALLTYPE FindConCat(LONG_PTR pConCatInfo) override { return find(categories_, pConCatInfo); }
    HRESULT STDMETHODCALLTYPE AddConCat(LONG_PTR pConCatInfo) override { return add(categories_, pConCatInfo); }
    HRESULT STDMETHODCALLTYPE UpdateConCat(LONG_PTR pConCatInfo) override { return update(categories_, pConCatInfo); }
    HRESULT STDMETHODCALLTYPE DeleteConCat(LONG_PTR pConCatInfo) override {
        return remove_record(categories_, pConCatInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstProjPay(LONG_PTR pProjPayInfo) override {
        return enum_first(payments_, pProjPayInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextProjPay(LONG_PTR pProjPayInfo) override {
        return enum_next(payments_, pProjPayInfo);
    }
    HRESULT STDMETHODCALLTYPE FindProjPay(LONG_PTR pProjPayInfo) override { return find(payments_, pProjPayInfo); }
    HRESULT STDMETHODCALLTYPE AddProjPay(LONG_PTR pProjPayInfo) override { return add(payments_, pProjPayInfo); }
    HRESULT STDMETHODCALLTYPE DeleteProjPay(LONG_PTR pProjPayInfo) override {
        return remove_record(payments_, pProjPayInfo);
    }
    HRESULT STDMETHODCALLTYPE UpdateProjPay(LONG_PTR pProjPayInfo) override { return update(payments_, pProjPayInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstProjAct(LONG_PTR pProjActInfo) override {
        return enum_first(activities_, pProjActInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextProjAct(LONG_PTR pProjActInfo) override {
        return enum_next(activities_, pProjActInfo);
    }
    HRESULT STDMETHODCALLTYPE AddProjAct(LONG_PTR pProjActInfo) override { return add(activities_, pProjActInfo); }
    HRESULT STDMETHODCALLTYPE UpdateProjAct(LONG_PTR pProjActInfo) override {
        return update(activities_, pProjActInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteProjAct(LONG_PTR pProjActInfo) override {
        return remove_record(activities_, pProjActInfo);
    }
    HRESULT STDMETHODCALLTYPE FindProjAct(LONG_PTR pProjActInfo) override { return find(activities_, pProjActInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstMix(LONG_PTR pMixInfo) override { return enum_first(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextMix(LONG_PTR pMixInfo) override { return enum_next(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE AddMix(LONG_PTR pMixInfo) override { return add(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE UpdateMix(LONG_PTR pMixInfo) override { return update(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE DeleteMix(LONG_PTR pMixInfo) override { return remove_record(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE FindMix(LONG_PTR pMixInfo) override { return find(mix_files_, pMixInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstMsg(LONG_PTR pMsgInfo) override { return enum_first(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextMsg(LONG_PTR pMsgInfo) override { return enum_next(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE AddMsg(LONG_PTR pMsgInfo) override { return add(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE FindMsg(LONG_PTR pMsgInfo) override { return find(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE UpdateMsg(LONG_PTR pMsgInfo) override { return update(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE DeleteMsg(LONG_PTR pMsgInfo) override { return remove_record(messages_, pMsgInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstService(LONG_PTR pServiceInfo) override {
        return enum_first(services_, pServiceInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextService(LONG_PTR pServiceInfo) override {
        return enum_next(services_, pServiceInfo);
    }
    HRESULT STDMETHODCALLTYPE AddService(LONG_PTR pServiceInfo) override { return add(services_, pServiceInfo); }
    HRESULT STDMETHODCALLTYPE FindService(LONG_PTR pServiceInfo) override { return find(services_, pServiceInfo); }
    HRESULT STDMETHODCALLTYPE UpdateService(LONG_PTR pServiceInfo) override { return update(services_, pServiceInfo); }
    HRESULT STDMETHODCALLTYPE DeleteService(LONG_PTR pServiceInfo) override {
        return remove_record(services_, pServiceInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstPartic(LONG_PTR pParticInfo) override {
        return enum_first(participants_, pParticInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextPartic(LONG_PTR pParticInfo) override {
        return enum_next(participants_, pParticInfo);
    }
    HRESULT STDMETHODCALLTYPE FindPartic(LONG_PTR pParticInfo) override { return find(participants_, pParticInfo); }
    HRESULT STDMETHODCALLTYPE AddPartic(LONG_PTR pParticInfo) override { return add(participants_, pParticInfo); }
    HRESULT STDMETHODCALLTYPE UpdatePartic(LONG_PTR pParticInfo) override { return update(participants_, pParticInfo); }
    HRESULT STDMETHODCALLTYPE DeletePartic(LONG_PTR pParticInfo) override {
        return remove_record(participants_, pParticInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirst_CustomQuery(LONG_PTR pCustomInfo, LONG nType) override {
        return call(Attempt{.failed = "There are no queries of this kind."},
                    [&] { return custom_query_.EnumFirst(record<CustomInfo>(pCustomInfo), nType); });
    }
    HRESULT STDMETHODCALLTYPE EnumNext_CustomQuery(LONG_PTR pCustomInfo) override {
        return enum_next(custom_query_, pCustomInfo);
    }
    HRESULT STDMETHODCALLTYPE IsDbExist() override;

protected:
    ~DBgate1() override;

private:
    // In the order in which the interface first names their tables.
    studio::RecordTable<ProjInfo> projects_{studio::kProjects, databases_.main};
    studio::RecordTable<SongInfo> songs_{studio::kSongs, databases_.main};
    studio::RecordTable<TrackInfo> tracks_{studio::kTracks, databases_.main};
    studio::RecordTable<SessionInfo> sessions_{studio::kSessions, databases_.main};
    studio::RecordTable<ClientInfo> clients_{studio::kClients, databases_.main};
    studio::RecordTable<StockInfo> stock_{studio::kStock, databases_.main};
    studio::RecordTable<EquipInfo> equipment_{studio::kEquipment, databases_.main};
    studio::NameList track_types_{studio::kTrackTypes, databases_.main};
    studio::NameList project_types_{studio::kProjectTypes, databases_.main};
    studio::NameList track_destinations_{studio::kTrackDestinations, databases_.main};
    studio::RecordTable<StockTypeInfo> stock_types_{studio::kStockTypes, databases_.main};
    studio::RecordTable<EngineerInfo> engineers_{studio::kEngineers, databases_.main};
    studio::NameList equipment_actions_{studio::kEquipmentActions, databases_.main};
    studio::RecordTable<SeqInfo> sequencers_{studio::kSequencers, databases_.main};
    studio::RecordTable<SupplyAct> supply_{studio::kSupply, databases_.main};
    studio::RecordTable<RoomInfo> rooms_{studio::kRooms, databases_.main};
    studio::RecordTable<LibGrpInfo> library_groups_{studio::kLibraryGroups, databases_.main};
    studio::RecordTable<MediaLibInfo> media_libraries_{studio::kMediaLibraries, databases_.main};
    studio::RecordTable<MediaFileInfo> media_files_{studio::kMediaFiles, databases_.main};
    studio::RecordTable<BookingInfo> bookings_{studio::kBookings, databases_.main};
    studio::RecordTable<InvoiceInfo> invoices_{studio::kInvoices, databases_.invoice};
    studio::RecordTable<InvParamsInfo> invoice_lines_{studio::kInvoiceLines, databases_.invoice};
    studio::RecordTable<SessionExInfo> sessions_ex_{studio::kSessionsWithin, databases_.main};
    studio::RecordTable<SupplyExInfo> supply_ex_{studio::kSupplyWithin, databases_.main};
    studio::RecordTable<ConCatInfo> categories_{studio::kContactCategories, databases_.main};
    studio::RecordTable<ProjPayInfo> payments_{studio::kProjPayments, databases_.main};
    studio::RecordTable<ProjActInfo> activities_{studio::kProjActivities, databases_.main};
    studio::RecordTable<MixInfo> mix_files_{studio::kMixFiles, databases_.main};
    studio::RecordTable<MsgInfo> messages_{studio::kMessages, databases_.main};
    studio::RecordTable<ServiceInfo> services_{studio::kServices, databases_.main};
    studio::RecordTable<ParticInfo> participants_{studio::kParticipants, databases_.main};
    studio::CustomQuery custom_query_{databases_.main};
};

}  // namespace frame
