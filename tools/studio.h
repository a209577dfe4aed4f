// A studio folder and the component on it. The tool contains the component, tells it the folder, and goes through the
// class factory like any host: nothing is loaded from the folder, and nothing but the studio is put there.
#pragma once

#include <kvdb/kvdb.h>

#include <string>
#include <type_traits>

namespace tools {

// One at a time: the component has one folder.
class Studio {
public:
    enum class Purpose {
        kChange,   // both files must be there and of the current version; rows may be changed
        kUpgrade,  // the files are made where they are missing and brought up to date, as for any host
    };

    // Nothing is touched before one of the gates is wanted.
    explicit Studio(const std::string& folder, Purpose purpose);
    ~Studio();
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;

    // The gates, made by the class factory at first use, with both databases open. CommandError when there is no such
    // folder, no studio that serves the purpose, and with the engine's text when the databases cannot be opened.
    IDBgate1& open();
    IDBGate3& open_gear();
    // Closes both databases; the above open them again.
    void close();

private:
    std::string folder_;
    Purpose purpose_;
    IDBgate1* gate_ = nullptr;
    IDBGate3* gear_ = nullptr;
    bool is_open_ = false;
    bool is_gear_open_ = false;
};

template <class Gate>
Gate& opened_gate(Studio& studio) {
    if constexpr (std::is_same_v<Gate, IDBGate3>) {
        return studio.open_gear();
    } else {
        return studio.open();
    }
}

// A record as the gates take it.
template <class Record>
LONG_PTR address_of(Record& record) {
    return reinterpret_cast<LONG_PTR>(&record);
}

}  // namespace tools
