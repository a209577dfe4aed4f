// Alarms of Windows: one thread each, started at a setting; it exits a second after the last setting. While it runs it
// holds a reference on the library and releases it in its last step. So nobody ever waits for a thread to exit, which
// the system does under the lock that DllMain is called with. Closing waits only for the work, and not even for that
// while the process ends: the system has then already terminated the thread.

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "os/clock.h"
#include "os/critical_section_win32.h"
#include "os/module_win32.h"
#include "os/windows_api_win32.h"

namespace os {
namespace {

constexpr DWORD kIdleMilliseconds = 1000;
constexpr SIZE_T kStackBytes = SIZE_T{256} << 10;

bool process_is_ending() {
    using Query = BOOLEAN(WINAPI*)();
    static const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return query != nullptr && query() != FALSE;
}

// Shared by the alarm and its thread; the last one frees it.
class AlarmState {
public:
    explicit AlarmState(std::function<void()> work) : work_(std::move(work)) {
        ::InitializeConditionVariable(&changed_);
    }

    bool set(const std::shared_ptr<AlarmState>& self, TimePoint due) {
        const CriticalSection::Guard lock(section_);
        if (due_ && *due_ <= due) return true;
        due_ = due;
        if (running_) {
            ::WakeAllConditionVariable(&changed_);
            return true;
        }
        if (!alarms_are_retired() && start(self)) return true;
        due_.reset();
        return false;
    }

    void end() {
        const CriticalSection::Guard lock(section_);
        ended_ = true;
        ::WakeAllConditionVariable(&changed_);
        while (working_) ::SleepConditionVariableCS(&changed_, section_.get(), INFINITE);
    }

    void run() {
        const CriticalSection::Guard lock(section_);
        while (!ended_) {
            if (!due_) {
                if (!wait(kIdleMilliseconds) && !due_) break;
            } else if (const auto left = *due_ - std::chrono::steady_clock::now(); left.count() > 0) {
                wait(static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count() + 1));
            } else {
                due_.reset();
                working_ = true;
                ::LeaveCriticalSection(section_.get());
                work_();
                ::EnterCriticalSection(section_.get());
                working_ = false;
                ::WakeAllConditionVariable(&changed_);
            }
        }
        running_ = false;
    }

private:
    // False after a timeout.
    bool wait(DWORD milliseconds) {
        return ::SleepConditionVariableCS(&changed_, section_.get(), milliseconds) != FALSE;
    }

    bool start(const std::shared_ptr<AlarmState>& self) {
        HMODULE module = nullptr;
        constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
        if (!::GetModuleHandleExW(kFlags, reinterpret_cast<LPCWSTR>(&process_is_ending), &module)) return false;
        auto start = std::make_unique<Start>(Start{self, module});
        const HANDLE thread = ::CreateThread(nullptr, kStackBytes, &AlarmState::thread_main, start.get(),
                                             STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
        if (thread == nullptr) {
            ::FreeLibrary(module);
            return false;
        }
        static_cast<void>(start.release());
        ::CloseHandle(thread);
        running_ = true;
        return true;
    }

    struct Start {
        std::shared_ptr<AlarmState> state;
        HMODULE module;
    };

    static DWORD WINAPI thread_main(void* argument) {
        HMODULE module = nullptr;
        {
            const std::unique_ptr<Start> start(static_cast<Start*>(argument));
            module = start->module;
            start->state->run();
        }
        ::FreeLibraryAndExitThread(module, 0);
        return 0;
    }

    CriticalSection section_;
    CONDITION_VARIABLE changed_{};
    std::optional<TimePoint> due_;
    bool running_ = false;  // the thread exists
    bool working_ = false;
    bool ended_ = false;
    const std::function<void()> work_;
};

class Win32Alarm : public Alarm {
public:
    explicit Win32Alarm(std::function<void()> work) : state_(std::make_shared<AlarmState>(std::move(work))) {}
    ~Win32Alarm() override {
        if (!process_is_ending()) state_->end();
    }
    Win32Alarm(const Win32Alarm&) = delete;
    Win32Alarm& operator=(const Win32Alarm&) = delete;
    bool set(TimePoint due) override { return state_->set(state_, due); }

private:
    std::shared_ptr<AlarmState> state_;
};

class SystemClock : public Clock {
public:
    TimePoint now() override { return std::chrono::steady_clock::now(); }
    std::unique_ptr<Alarm> make_alarm(std::function<void()> work) override {
        return std::make_unique<Win32Alarm>(std::move(work));
    }
};

}  // namespace

Clock& system_clock() {
    static SystemClock clock;
    return clock;
}

}  // namespace os
