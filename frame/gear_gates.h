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

namespace frame {

template <class Interface>
class GearGate : public GateBase<Interface> {
public:
    // ---- Methods, in slot order

    HRESULT STDMETHODCALLTYPE OpenDB() override {
        return call_with_errors([&] { return db::attach(databases_); });
    }
    HRESULT STDMETHODCALLTYPE CloseDB() override {
        return call([] {
            db::close(0);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE EnumFirstGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteGear(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteGearService(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteGRepairs(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteGearCat(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumFirstGearRent(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE EnumNextGearRent(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE AddGearRent(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE UpdateGearRent(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE FindGearRent(LONG_PTR) override { return not_served(); }
    HRESULT STDMETHODCALLTYPE DeleteGearRent(LONG_PTR) override { return not_served(); }

protected:
    using Base = GateBase<Interface>;
    using Base::add;
    using Base::call;
    using Base::call_with_errors;
    using Base::databases_;
    using Base::enum_first;
    using Base::enum_next;
    using Base::find;
    using Base::not_served;
    using Base::release_cursors;
    using Base::remove_record;
    using Base::update;

    using Base::Base;

    ~GearGate() override {
        static_cast<void>(call([] {
            db::close(0);
            db::shut_down_engine();
            return S_OK;
        }));
    }
};

class DBgate2 final : public GearGate<IDBgate2> {
public:
    DBgate2() : GearGate(IID_IDBgate2, gate2_methods()) {}

    static const char* description() { return "DBgate2 Class"; }
};

class DBGate3 final : public GearGate<IDBGate3> {
public:
    DBGate3() : GearGate(IID_IDBGate3, gate3_methods()) {}

    static const char* description() { return "DBGate3 Class"; }
};

}  // namespace frame
