// The life of the killed host: it opens the studio, works, closes and opens again, for ever. It loads the library that
// is shipped.
#pragma once

#include "tests/frame/gate_host.h"
#include "tests/soak/day.h"
#include "tests/soak/host_process.h"

namespace soak {

inline Gates gates_of(const testing_support::Component& component) {
    return make_gates(
        [&](REFCLSID clsid, REFIID riid, void** place) { return component.get_class_object(clsid, riid, place); });
}

template <class Tell>
int live_as_host(const HostTask& task, Tell&& tell) {
    class Teller final : public Witness {
    public:
        explicit Teller(Tell& tell) : tell_(tell) {}
        void begun(const Operation& operation) override { tell_(Told{Told::kBegun, operation}); }
        void succeeded(const Operation& operation) override { tell_(Told{Told::kSucceeded, operation}); }
        void failed(const Operation& operation) override { tell_(Told{Told::kFailed, operation}); }

    private:
        Tell& tell_;
    };
    constexpr int kSteps = 400;
    const testing_support::Component component(task.folder);
    const Gates gates = gates_of(component);
    Teller teller(tell);
    tell(Told{Told::kStarted, {}});
    for (std::uint32_t session = 0;; ++session) {
        if (gates.open() != S_OK) {
            tell(Told{Told::kCannotOpen, {}});
            return 4;
        }
        tell(Told{Told::kOpened, {}});
        Day day(task.seed + session, read_all(gates));
        for (int i = 0; i < kSteps; ++i) day.step(gates, teller);
        gates.close();
        tell(Told{Told::kClosed, {}});
    }
}

}  // namespace soak
