// DBgate2 and DBGate3: the gates to the five gear tables. They differ in their interface and in how much
// of a gear rental they serve.
//
// 1. A fresh gate holds null databases and no cursor; OpenDB attaches it.
// 2. At its end a gear gate releases its cursors in member order, then closes both databases for every
//    gate of the process, then ends the data-access engine.
#pragma once

#include <kvdb/gates.h>
#include <kvdb/records.h>

#include <span>

#include "frame/gate_base.h"
#include "frame/gate_methods.h"
#include "gear/gear.h"
#include "studio/record_table.h"

namespace frame {

template <class Interface>
class GearGate : public GateBase<Interface> {
public:
    // ---- Methods, in slot order

    [[gnu::noinline]] HRESULT STDMETHODCALLTYPE OpenDB() override {
        return call_with_errors(__builtin_return_address(0), kOpening, [&] { return db::attach(databases_); });
    }
    HRESULT STDMETHODCALLTYPE CloseDB() override {
        return call(Attempt{.failed = "The databases were not closed."}, [] {
            db::close(0);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE EnumFirstGear(LONG_PTR pGearInfo) override { return enum_first(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE EnumNextGear(LONG_PTR pGearInfo) override { return enum_next(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE AddGear(LONG_PTR pGearInfo) override { return add(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE UpdateGear(LONG_PTR pGearInfo) override { return update(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE FindGear(LONG_PTR pGearInfo) override { return find(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE DeleteGear(LONG_PTR pGearInfo) override { return remove_record(gear_, pGearInfo); }
    HRESULT STDMETHODCALLTYPE EnumFirstGearService(LONG_PTR pGearServInfo) override {
        return enum_first(services_, pGearServInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextGearService(LONG_PTR pGearServInfo) override {
        return enum_next(services_, pGearServInfo);
    }
    HRESULT STDMETHODCALLTYPE AddGearService(LONG_PTR pGearServInfo) override { return add(services_, pGearServInfo); }
    HRESULT STDMETHODCALLTYPE UpdateGearService(LONG_PTR pGearServInfo) override {
        return update(services_, pGearServInfo);
    }
    HRESULT STDMETHODCALLTYPE FindGearService(LONG_PTR pGearServInfo) override {
        return find(services_, pGearServInfo);
    }
    HRESULT STDMETHODCALLTYPE DeleteGearService(LONG_PTR pGearServInfo) override {
        return remove_record(services_, pGearServInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstGRepairs(LONG_PTR pGRepairsInfo) override {
        return enum_first(repairs_, pGRepairsInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextGRepairs(LONG_PTR pGRepairsInfo) override {
        return enum_next(repairs_, pGRepairsInfo);
    }
    HRESULT STDMETHODCALLTYPE AddGRepairs(LONG_PTR pGRepairsInfo) override { return add(repairs_, pGRepairsInfo); }
    HRESULT STDMETHODCALLTYPE UpdateGRepairs(LONG_PTR pGRepairsInfo) override {
        return update(repairs_, pGRepairsInfo);
    }
    HRESULT STDMETHODCALLTYPE FindGRepairs(LONG_PTR pGRepairsInfo) override { return find(repairs_, pGRepairsInfo); }
    HRESULT STDMETHODCALLTYPE DeleteGRepairs(LONG_PTR pGRepairsInfo) override {
        return remove_record(repairs_, pGRepairsInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstGearCat(LONG_PTR pGearCatInfo) override {
        return enum_first(categories_, pGearCatInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextGearCat(LONG_PTR pGearCatInfo) override {
        return enum_next(categories_, pGearCatInfo);
    }
    HRESULT STDMETHODCALLTYPE AddGearCat(LONG_PTR pGearCatInfo) override { return add(categories_, pGearCatInfo); }
    HRESULT STDMETHODCALLTYPE UpdateGearCat(LONG_PTR pGearCatInfo) override {
        return update(categories_, pGearCatInfo);
    }
    HRESULT STDMETHODCALLTYPE FindGearCat(LONG_PTR pGearCatInfo) override { return find(categories_, pGearCatInfo); }
    HRESULT STDMETHODCALLTYPE DeleteGearCat(LONG_PTR pGearCatInfo) override {
        return remove_record(categories_, pGearCatInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumFirstGearRent(LONG_PTR pGearRentInfo) override {
        return enum_first(rentals_, pGearRentInfo);
    }
    HRESULT STDMETHODCALLTYPE EnumNextGearRent(LONG_PTR pGearRentInfo) override {
        return enum_next(rentals_, pGearRentInfo);
    }
    HRESULT STDMETHODCALLTYPE AddGearRent(LONG_PTR pGearRentInfo) override { return add(rentals_, pGearRentInfo); }
    HRESULT STDMETHODCALLTYPE UpdateGearRent(LONG_PTR pGearRentInfo) override {
        return update(rentals_, pGearRentInfo);
    }
    HRESULT STDMETHODCALLTYPE FindGearRent(LONG_PTR pGearRentInfo) override { return find(rentals_, pGearRentInfo); }
    HRESULT STDMETHODCALLTYPE DeleteGearRent(LONG_PTR pGearRentInfo) override {
        return remove_record(rentals_, pGearRentInfo);
    }

protected:
    using Base = GateBase<Interface>;
    using Base::add;
    using Base::call;
    using Base::call_with_errors;
    using Base::databases_;
    using Base::enum_first;
    using Base::enum_next;
    using Base::find;
    using Base::release_cursors;
    using Base::remove_record;
    using Base::update;

    // `rentals` is what the gate serves of a rental.
    GearGate(REFIID interface_id, std::span<const Method> methods, const studio::TableMapping<GearRentInfo>& rentals)
        : Base(interface_id, methods), rentals_(rentals, databases_.main) {}

    ~GearGate() override {
        release_cursors(gear_, services_, repairs_, categories_, rentals_);
        Base::quietly([] {
            db::close(0);
            db::shut_down_engine();
        });
    }

private:
    studio::RecordTable<GearInfo> gear_{::gear::kGear, databases_.main};
    studio::RecordTable<GearServInfo> services_{::gear::kServices, databases_.main};
    studio::RecordTable<GRepairsInfo> repairs_{::gear::kRepairs, databases_.main};
    studio::RecordTable<GearCatInfo> categories_{::gear::kCategories, databases_.main};
    studio::RecordTable<GearRentInfo> rentals_;
};

class DBgate2 final : public GearGate<IDBgate2> {
public:
    DBgate2() : GearGate(IID_IDBgate2, gate2_methods(), gear::kRentalsInPart) {}

    static const char* description() { return "DBgate2 Class"; }
};

class DBGate3 final : public GearGate<IDBGate3> {
public:
    DBGate3() : GearGate(IID_IDBGate3, gate3_methods(), gear::kRentals) {}

    static const char* description() { return "DBGate3 Class"; }
};

}  // namespace frame
