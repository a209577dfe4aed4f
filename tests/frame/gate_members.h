// The methods of the gates as members of their interfaces, in slot order.
#pragma once

#include <kvdb/gates.h>

namespace testing_support {

template <auto... Members>
struct MemberList {};

template <class Interface>
struct GateMembers;

template <>
struct GateMembers<IDBgate1> {
    using List = MemberList<
        &IDBgate1::CreateDB, &IDBgate1::OpenDB, &IDBgate1::GetDBVer, &IDBgate1::EnumFirstProj, &IDBgate1::EnumNextProj,
        &IDBgate1::FindProj, &IDBgate1::AddProj, &IDBgate1::UpdateProj, &IDBgate1::DeleteProj, &IDBgate1::EnumFirstSong,
        &IDBgate1::EnumNextSong, &IDBgate1::FindSong, &IDBgate1::AddSong, &IDBgate1::DeleteSong, &IDBgate1::UpdateSong,
        &IDBgate1::EnumFirstTrack, &IDBgate1::EnumNextTrack, &IDBgate1::FindTrack, &IDBgate1::AddTrack,
        &IDBgate1::DeleteTrack, &IDBgate1::UpdateTrack, &IDBgate1::EnumFirstSession, &IDBgate1::EnumNextSession,
        &IDBgate1::FindSession, &IDBgate1::AddSession, &IDBgate1::DeleteSession, &IDBgate1::UpdateSession,
        &IDBgate1::EnumFirstClient, &IDBgate1::EnumNextClient, &IDBgate1::FindClient, &IDBgate1::DeleteClient,
        &IDBgate1::UpdateClient, &IDBgate1::AddClient, &IDBgate1::EnumFirstStock, &IDBgate1::EnumNextStock,
        &IDBgate1::FindStock, &IDBgate1::AddStock, &IDBgate1::UpdateStock, &IDBgate1::DeleteStock,
        &IDBgate1::EnumFirstEquip, &IDBgate1::EnumNextEquip, &IDBgate1::FindEquip, &IDBgate1::AddEquip,
        &IDBgate1::UpdateEquip, &IDBgate1::DeleteEquip, &IDBgate1::EnumFirstTrackType, &IDBgate1::EnumNextTrackType,
        &IDBgate1::AddTrackType, &IDBgate1::DeleteTrackType, &IDBgate1::EnumFirstProjType, &IDBgate1::EnumNextProjType,
        &IDBgate1::AddProjType, &IDBgate1::DeleteProjType, &IDBgate1::EnumFirstTrackDestin,
        &IDBgate1::EnumNextTrackDestin, &IDBgate1::AddTrackDestin, &IDBgate1::DeleteTrackDestin,
        &IDBgate1::EnumFirstStockType, &IDBgate1::EnumNextStockType, &IDBgate1::AddStockType,
        &IDBgate1::DeleteStockType, &IDBgate1::EnumFirstEngineer, &IDBgate1::EnumNextEngineer, &IDBgate1::AddEngineer,
        &IDBgate1::DeleteEngineer, &IDBgate1::EnumFirstEquipAct, &IDBgate1::EnumNextEquipAct, &IDBgate1::AddEquipAct,
        &IDBgate1::DeleteEquipAct, &IDBgate1::EnumFirstSequencer, &IDBgate1::EnumNextSequencer, &IDBgate1::AddSequencer,
        &IDBgate1::DeleteSequencer, &IDBgate1::UpdateSequencer, &IDBgate1::FindSequencer, &IDBgate1::AddSupplyAct,
        &IDBgate1::UpdateSupplyAct, &IDBgate1::DeleteSupplyAct, &IDBgate1::EnumFirstSupply, &IDBgate1::EnumNextSupply,
        &IDBgate1::FindSupplyAct, &IDBgate1::FindStockType, &IDBgate1::UpdateStockType, &IDBgate1::ComputeInStock,
        &IDBgate1::GetHead, &IDBgate1::SetHead, &IDBgate1::CloseDB, &IDBgate1::UpdateEngineer, &IDBgate1::FindEngineer,
        &IDBgate1::CompactDB, &IDBgate1::SetInvoiceDef, &IDBgate1::GetInvoiceDef, &IDBgate1::EnumFirstRoom,
        &IDBgate1::EnumNextRoom, &IDBgate1::AddRoom, &IDBgate1::UpdateRoom, &IDBgate1::DeleteRoom, &IDBgate1::FindRoom,
        &IDBgate1::EnumFirstLibGrp, &IDBgate1::EnumNextLibGrp, &IDBgate1::AddLibGrp, &IDBgate1::UpdateLibGrp,
        &IDBgate1::DeleteLibGrp, &IDBgate1::FindLibGrp, &IDBgate1::EnumFirstMediaLib, &IDBgate1::EnumNextMediaLib,
        &IDBgate1::AddMediaLib, &IDBgate1::UpdateMediaLib, &IDBgate1::DeleteMediaLib, &IDBgate1::FindMediaLib,
        &IDBgate1::EnumFirstMediaFile, &IDBgate1::EnumNextMediaFile, &IDBgate1::AddMediaFile,
        &IDBgate1::UpdateMediaFile, &IDBgate1::DeleteMediaFile, &IDBgate1::FindMediaFile, &IDBgate1::EnumFirstBooking,
        &IDBgate1::EnumNextBooking, &IDBgate1::AddBooking, &IDBgate1::UpdateBooking, &IDBgate1::DeleteBooking,
        &IDBgate1::FindBooking, &IDBgate1::EnumFirstInvoice, &IDBgate1::EnumNextInvoice, &IDBgate1::AddInvoice,
        &IDBgate1::UpdateInvoice, &IDBgate1::DeleteInvoice, &IDBgate1::FindInvoice, &IDBgate1::EnumFirstInvParams,
        &IDBgate1::EnumNextInvParams, &IDBgate1::AddInvParams, &IDBgate1::UpdateInvParams, &IDBgate1::DeleteInvParams,
        &IDBgate1::FindInvParams, &IDBgate1::EnumEx_FirstSession, &IDBgate1::EnumEx_NextSession,
        &IDBgate1::EnumEx_FirstSupply, &IDBgate1::EnumEx_NextSupply, &IDBgate1::EnumFirstConCat,
        &IDBgate1::EnumNextConCat, &IDBgate1::FindConCat, &IDBgate1::AddConCat, &IDBgate1::UpdateConCat,
        &IDBgate1::DeleteConCat, &IDBgate1::EnumFirstProjPay, &IDBgate1::EnumNextProjPay, &IDBgate1::FindProjPay,
        &IDBgate1::AddProjPay, &IDBgate1::DeleteProjPay, &IDBgate1::UpdateProjPay, &IDBgate1::EnumFirstProjAct,
        &IDBgate1::EnumNextProjAct, &IDBgate1::AddProjAct, &IDBgate1::UpdateProjAct, &IDBgate1::DeleteProjAct,
        &IDBgate1::FindProjAct, &IDBgate1::EnumFirstMix, &IDBgate1::EnumNextMix, &IDBgate1::AddMix,
        &IDBgate1::UpdateMix, &IDBgate1::DeleteMix, &IDBgate1::FindMix, &IDBgate1::EnumFirstMsg, &IDBgate1::EnumNextMsg,
        &IDBgate1::AddMsg, &IDBgate1::FindMsg, &IDBgate1::UpdateMsg, &IDBgate1::DeleteMsg, &IDBgate1::EnumFirstService,
        &IDBgate1::EnumNextService, &IDBgate1::AddService, &IDBgate1::FindService, &IDBgate1::UpdateService,
        &IDBgate1::DeleteService, &IDBgate1::EnumFirstPartic, &IDBgate1::EnumNextPartic, &IDBgate1::FindPartic,
        &IDBgate1::AddPartic, &IDBgate1::UpdatePartic, &IDBgate1::DeletePartic, &IDBgate1::EnumFirst_CustomQuery,
        &IDBgate1::EnumNext_CustomQuery, &IDBgate1::IsDbExist>;
};

template <>
struct GateMembers<IDBgate2> {
    using List = MemberList<&IDBgate2::OpenDB, &IDBgate2::CloseDB, &IDBgate2::EnumFirstGear, &IDBgate2::EnumNextGear,
                            &IDBgate2::AddGear, &IDBgate2::UpdateGear, &IDBgate2::FindGear, &IDBgate2::DeleteGear,
                            &IDBgate2::EnumFirstGearService, &IDBgate2::EnumNextGearService, &IDBgate2::AddGearService,
                            &IDBgate2::UpdateGearService, &IDBgate2::FindGearService, &IDBgate2::DeleteGearService,
                            &IDBgate2::EnumFirstGRepairs, &IDBgate2::EnumNextGRepairs, &IDBgate2::AddGRepairs,
                            &IDBgate2::UpdateGRepairs, &IDBgate2::FindGRepairs, &IDBgate2::DeleteGRepairs,
                            &IDBgate2::EnumFirstGearCat, &IDBgate2::EnumNextGearCat, &IDBgate2::AddGearCat,
                            &IDBgate2::UpdateGearCat, &IDBgate2::FindGearCat, &IDBgate2::DeleteGearCat,
                            &IDBgate2::EnumFirstGearRent, &IDBgate2::EnumNextGearRent, &IDBgate2::AddGearRent,
                            &IDBgate2::UpdateGearRent, &IDBgate2::FindGearRent, &IDBgate2::DeleteGearRent>;
};

template <>
struct GateMembers<IDBGate3> {
    using List = MemberList<&IDBGate3::OpenDB, &IDBGate3::CloseDB, &IDBGate3::EnumFirstGear, &IDBGate3::EnumNextGear,
                            &IDBGate3::AddGear, &IDBGate3::UpdateGear, &IDBGate3::FindGear, &IDBGate3::DeleteGear,
                            &IDBGate3::EnumFirstGearService, &IDBGate3::EnumNextGearService, &IDBGate3::AddGearService,
                            &IDBGate3::UpdateGearService, &IDBGate3::FindGearService, &IDBGate3::DeleteGearService,
                            &IDBGate3::EnumFirstGRepairs, &IDBGate3::EnumNextGRepairs, &IDBGate3::AddGRepairs,
                            &IDBGate3::UpdateGRepairs, &IDBGate3::FindGRepairs, &IDBGate3::DeleteGRepairs,
                            &IDBGate3::EnumFirstGearCat, &IDBGate3::EnumNextGearCat, &IDBGate3::AddGearCat,
                            &IDBGate3::UpdateGearCat, &IDBGate3::FindGearCat, &IDBGate3::DeleteGearCat,
                            &IDBGate3::EnumFirstGearRent, &IDBGate3::EnumNextGearRent, &IDBGate3::AddGearRent,
                            &IDBGate3::UpdateGearRent, &IDBGate3::FindGearRent, &IDBGate3::DeleteGearRent>;
};

}  // namespace testing_support
