// A studio folder and the component in it, as a host has them: the library is loaded from the folder,
// because its own place is where it keeps its files.
#pragma once

#include <kvdb/kvdb.h>

#include <memory>
#include <string>

namespace tools {

class Studio {
public:
    // Loads the library that lies in `folder`. Where none does, one is copied there from beside the tool and,
    // unless `keep_library`, taken away again at the end. CommandError when there is no such folder or library.
    explicit Studio(const std::string& folder, bool keep_library = false);
    ~Studio();
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;

    // The gate, made by the class factory at first use.
    IDBgate1& gate();
    // As above with both databases open; CommandError with the engine's text when they cannot be.
    IDBgate1& open();
    // Closes both databases; open() opens them again.
    void close();

    std::string main_file() const;
    std::string invoice_file() const;
    std::string library_file() const;

private:
    struct Module;

    std::string folder_;
    bool remove_library_ = false;
    std::unique_ptr<Module> module_;
    IDBgate1* gate_ = nullptr;
};

// A record as the gates take it.
template <class Record>
LONG_PTR address_of(Record& record) {
    return reinterpret_cast<LONG_PTR>(&record);
}

// A member's text as UTF-8 and back.
std::string to_utf8(const CString& text);
CString from_utf8(const std::string& text);

}  // namespace tools
