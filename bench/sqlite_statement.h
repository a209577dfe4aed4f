// A prepared statement of the peer.
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace bench {

class Statement {
public:
    Statement(sqlite3* database, const std::string& text) {
        if (sqlite3_prepare_v2(database, text.c_str(), -1, &handle_, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sqlite3_errmsg(database));
        }
    }
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    sqlite3_stmt* get() const { return handle_; }
    bool step() const { return sqlite3_step(handle_) == SQLITE_ROW; }
    bool run() const {
        const bool done = sqlite3_step(handle_) == SQLITE_DONE;
        sqlite3_reset(handle_);
        return done;
    }
    void reset() const { sqlite3_reset(handle_); }

private:
    sqlite3_stmt* handle_ = nullptr;
};

inline void execute(sqlite3* database, const std::string& text) {
    if (sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

}  // namespace bench
