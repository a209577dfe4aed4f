// DBgate1: the gate to every table of the studio. A method is one line where it is nothing but an
// operation of its table; the database methods are in gate1.cpp.
//
// 1. A fresh gate holds null databases and no cursor; OpenDB or CreateDB attaches it.
// 2. The tables are released in member order when the gate ends.
#pragma once

#include <kvdb/gates.h>
#include <kvdb/records.h>

#include "frame/gate_base.h"
#include "studio/projects.h"
#include "studio/record_table.h"

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
    HRESULT STDMETHODCALLTYPE EnumFirstSong(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextSong(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindSong(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddSong(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteSong(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateSong(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrack(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextTrack(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindTrack(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddTrack(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteTrack(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateTrack(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteSession(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstClient(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextClient(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindClient(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteClient(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateClient(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddClient(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstStock(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextStock(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindStock(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddStock(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateStock(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteStock(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstEquip(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextEquip(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindEquip(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddEquip(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateEquip(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteEquip(LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrackType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextTrackType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddTrackType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteTrackType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstProjType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextProjType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddProjType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteProjType(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstTrackDestin(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextTrackDestin(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddTrackDestin(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteTrackDestin(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstEquipAct(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextEquipAct(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddEquipAct(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteEquipAct(LPSTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindSequencer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddSupplyAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateSupplyAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteSupplyAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstSupply(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextSupply(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindSupplyAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateStockType(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE ComputeInStock(LONG, LONG*) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE GetHead(LONG_PTR pHeadInfo) override;
    HRESULT STDMETHODCALLTYPE SetHead(LONG_PTR pHeadInfo) override;
    HRESULT STDMETHODCALLTYPE CloseDB() override;
    HRESULT STDMETHODCALLTYPE UpdateEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindEngineer(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE CompactDB(LONG_PTR pCompactDBInfo) override;
    HRESULT STDMETHODCALLTYPE SetInvoiceDef(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE GetInvoiceDef(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindRoom(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindLibGrp(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindMediaLib(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindMediaFile(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindBooking(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindInvoice(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindInvParams(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumEx_FirstSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumEx_NextSession(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumEx_FirstSupply(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumEx_NextSupply(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteConCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateProjPay(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindProjAct(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindMix(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteMsg(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstPartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextPartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindPartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddPartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdatePartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeletePartic(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirst_CustomQuery(LONG_PTR, LONG) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNext_CustomQuery(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE IsDbExist() override;

protected:
    ~DBgate1() override;

private:
    studio::RecordTable<ProjInfo> projects_{studio::kProjects, databases_.main};
};

}  // namespace frame
