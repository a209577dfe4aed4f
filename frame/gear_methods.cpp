// Names, slots and parameters of IDBgate2 and IDBGate3, which differ in nothing but their name.
#include <kvdb/gates.h>

#include <iterator>

#include "frame/gate_methods.h"

namespace frame {

namespace {

template <class Interface>
constexpr Method kGearMethods[] = {
    method<&Interface::OpenDB>("OpenDB"),
    method<&Interface::CloseDB>("CloseDB"),
    method<&Interface::EnumFirstGear>("EnumFirstGear", "pGearInfo"),
    method<&Interface::EnumNextGear>("EnumNextGear", "pGearInfo"),
    method<&Interface::AddGear>("AddGear", "pGearInfo"),
    method<&Interface::UpdateGear>("UpdateGear", "pGearInfo"),
    method<&Interface::FindGear>("FindGear", "pGearInfo"),
    method<&Interface::DeleteGear>("DeleteGear", "pGearInfo"),
    method<&Interface::EnumFirstGearService>("EnumFirstGearService", "pGearServInfo"),
    method<&Interface::EnumNextGearService>("EnumNextGearService", "pGearServInfo"),
    method<&Interface::AddGearService>("AddGearService", "pGearServInfo"),
    method<&Interface::UpdateGearService>("UpdateGearService", "pGearServInfo"),
    method<&Interface::FindGearService>("FindGearService", "pGearServInfo"),
    method<&Interface::DeleteGearService>("DeleteGearService", "pGearServInfo"),
    method<&Interface::EnumFirstGRepairs>("EnumFirstGRepairs", "pGRepairsInfo"),
    method<&Interface::EnumNextGRepairs>("EnumNextGRepairs", "pGRepairsInfo"),
    method<&Interface::AddGRepairs>("AddGRepairs", "pGRepairsInfo"),
    method<&Interface::UpdateGRepairs>("UpdateGRepairs", "pGRepairsInfo"),
    method<&Interface::FindGRepairs>("FindGRepairs", "pGRepairsInfo"),
    method<&Interface::DeleteGRepairs>("DeleteGRepairs", "pGRepairsInfo"),
    method<&Interface::EnumFirstGearCat>("EnumFirstGearCat", "pGearCatInfo"),
    method<&Interface::EnumNextGearCat>("EnumNextGearCat", "pGearCatInfo"),
    method<&Interface::AddGearCat>("AddGearCat", "pGearCatInfo"),
    method<&Interface::UpdateGearCat>("UpdateGearCat", "pGearCatInfo"),
    method<&Interface::FindGearCat>("FindGearCat", "pGearCatInfo"),
    method<&Interface::DeleteGearCat>("DeleteGearCat", "pGearCatInfo"),
    method<&Interface::EnumFirstGearRent>("EnumFirstGearRent", "pGearRentInfo"),
    method<&Interface::EnumNextGearRent>("EnumNextGearRent", "pGearRentInfo"),
    method<&Interface::AddGearRent>("AddGearRent", "pGearRentInfo"),
    method<&Interface::UpdateGearRent>("UpdateGearRent", "pGearRentInfo"),
    method<&Interface::FindGearRent>("FindGearRent", "pGearRentInfo"),
    method<&Interface::DeleteGearRent>("DeleteGearRent", "pGearRentInfo"),
};
static_assert(std::size(kGearMethods<IDBgate2>) == 32);
static_assert(std::size(kGearMethods<IDBGate3>) == 32);

}  // namespace

std::span<const Method> gate2_methods() { return kGearMethods<IDBgate2>; }

std::span<const Method> gate3_methods() { return kGearMethods<IDBGate3>; }

}  // namespace frame
