// A studio folder and the component in it, as a host has them: the library is loaded from the folder,
// because its own place is where it keeps its files.
#pragma once

#include <kvdb/kvdb.h>

#include <memory>
#include <string>
#include <type_traits>

namespace tools {

class Studio {
public:
    enum class Purpose {
        kUse,   // the studio must be there already, and a library that was copied is taken away again
        kMake,  // the files are made where they are missing, and the library stays
    };

    // Nothing is touched before one of the gates is wanted; then the library in the folder is loaded or, where
    // none lies there, one copied from beside the tool. CommandError when there is no such folder or library.
    explicit Studio(const std::string& folder, Purpose purpose = Purpose::kUse);
    ~Studio();
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;

    bool is_there();
    // The gates, made by the class factory at first use, with both databases open. CommandError when there is no
    // studio, and with the engine's text when the databases cannot be opened.
    IDBgate1& open();
    IDBGate3& open_gear();
    // Closes both databases; the above open them again.
    void close();

    std::string main_file() const;
    std::string invoice_file() const;
    std::string library_file() const;

private:
    struct Module;

    void load();
    IDBgate1& gate();
    void require_studio();

    std::string folder_;
    Purpose purpose_;
    bool remove_library_ = false;
    std::unique_ptr<Module> module_;
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
