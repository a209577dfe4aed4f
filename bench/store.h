// What is measured: the same work on a store of projects, done by this component and by its peer.
#pragma once

#include <kvdb/kvdb.h>

#include <cstdint>
#include <memory>
#include <string>

namespace bench {

class Store {
public:
    virtual ~Store() = default;

    virtual void open() = 0;
    virtual void close() = 0;
    // Fills an empty store with `count` projects, keys 1 to count, as fast as the store can.
    virtual void fill(std::int32_t count) = 0;
    // One committed call each; false when it did not succeed.
    virtual bool add(ProjInfo& project) = 0;
    virtual bool find(ProjInfo& project) = 0;
    virtual bool update(ProjInfo& project) = 0;
    virtual bool remove(std::int32_t key) = 0;
    // Delivers up to `limit` rows, all members each, into one record; returns how many there were. A
    // client other than 0 is a filter together with the type "Album".
    virtual std::int64_t enumerate(std::int32_t client, std::int64_t limit) = 0;
    virtual std::string main_file() const = 0;
};

// All keep their files in `folder`, which exists.
std::unique_ptr<Store> make_kvdb_store(const std::string& folder);
std::unique_ptr<Store> make_sqlite_store(const std::string& folder);
std::unique_ptr<Store> make_lmdb_store(const std::string& folder);

// Project number `n` of the fixed data: sixteen members, some 200 bytes.
ProjInfo sample_project(std::int32_t n);
// How many clients the fixed data spreads over; every fourth project of a client is an "Album".
inline constexpr std::int32_t kClients = 1000;

}  // namespace bench
