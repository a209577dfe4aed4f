// The second peer, which stands for the limit: LMDB, one transaction a call and no sync, the record laid flat as the
// value of its key. It has no index on the client, and so no filtered enumeration.
#include <lmdb.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/store.h"
#include "os/system.h"

namespace bench {
namespace {

void require_done(int result, const char* what) {
    if (result != MDB_SUCCESS) throw std::runtime_error(std::string(what) + ": " + mdb_strerror(result));
}

// The numbers one after the other, then each text with its length.
class FlatWriter {
public:
    explicit FlatWriter(std::vector<char>& to) : to_(to) { to_.clear(); }
    template <class Number>
    void number(Number value) {
        bytes(&value, sizeof value);
    }
    void text(const CString& value) {
        number(value.GetLength());
        bytes(value.GetString(), static_cast<std::size_t>(value.GetLength()));
    }

private:
    void bytes(const void* from, std::size_t count) {
        const char* const first = static_cast<const char*>(from);
        to_.insert(to_.end(), first, first + count);
    }
    std::vector<char>& to_;
};

class FlatReader {
public:
    explicit FlatReader(const void* from) : at_(static_cast<const char*>(from)) {}
    template <class Number>
    void number(Number& value) {
        std::memcpy(&value, at_, sizeof value);
        at_ += sizeof value;
    }
    void text(CString& value) {
        int length = 0;
        number(length);
        std::memcpy(value.GetBufferSetLength(length), at_, static_cast<std::size_t>(length));
        at_ += length;
    }

private:
    const char* at_;
};

template <class Flat, class Project>
void lay_flat(Flat&& flat, Project& p) {
    for (auto* number : {&p.ProjTypeID, &p.ProducerID, &p.ClientID, &p.DirectorID, &p.DiscountType, &p.ExData}) {
        flat.number(*number);
    }
    flat.number(p.ProjCreateDate);
    flat.number(p.DiscountVal);
    for (auto* text : {&p.Name, &p.Type, &p.Producer, &p.Client, &p.Director, &p.Folder, &p.Notes}) flat.text(*text);
}

class Transaction {
public:
    Transaction(MDB_env* environment, unsigned flags) {
        require_done(mdb_txn_begin(environment, nullptr, flags, &transaction_), "begin");
    }
    ~Transaction() {
        if (transaction_ != nullptr) mdb_txn_abort(transaction_);
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    MDB_txn* get() const { return transaction_; }
    bool commit() { return mdb_txn_commit(std::exchange(transaction_, nullptr)) == MDB_SUCCESS; }

private:
    MDB_txn* transaction_ = nullptr;
};

class LmdbStore final : public Store {
public:
    explicit LmdbStore(const std::string& folder) : path_(os::join_path(folder, "projects.lmdb")) {}
    ~LmdbStore() override { close(); }

    void open() override {
        require_done(mdb_env_create(&environment_), "create");
        require_done(mdb_env_set_mapsize(environment_, std::size_t{4} << 30), "map size");
        require_done(mdb_env_open(environment_, path_.c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0600), "open");
        Transaction transaction(environment_, 0);
        require_done(mdb_dbi_open(transaction.get(), nullptr, MDB_INTEGERKEY, &projects_), "table");
        last_key_ = last_key(transaction.get());
        require_done(transaction.commit() ? MDB_SUCCESS : MDB_PANIC, "commit");
    }
    void close() override {
        if (environment_ != nullptr) mdb_env_close(environment_);
        environment_ = nullptr;
    }
    void fill(std::int32_t count) override {
        Transaction transaction(environment_, 0);
        for (std::int32_t n = 1; n <= count; ++n) put(transaction.get(), ++last_key_, sample_project(n));
        transaction.commit();
    }
    bool add(ProjInfo& project) override {
        Transaction transaction(environment_, 0);
        project.ProjID = static_cast<LONG>(++last_key_);
        return put(transaction.get(), last_key_, project) && transaction.commit();
    }
    bool find(ProjInfo& project) override {
        const Transaction transaction(environment_, MDB_RDONLY);
        MDB_val value;
        std::uint32_t number = static_cast<std::uint32_t>(project.ProjID);
        MDB_val key{sizeof number, &number};
        if (mdb_get(transaction.get(), projects_, &key, &value) != MDB_SUCCESS) return false;
        lay_flat(FlatReader(value.mv_data), project);
        return true;
    }
    bool update(ProjInfo& project) override {
        Transaction transaction(environment_, 0);
        return put(transaction.get(), static_cast<std::uint32_t>(project.ProjID), project) && transaction.commit();
    }
    bool remove(std::int32_t key_number) override {
        Transaction transaction(environment_, 0);
        std::uint32_t number = static_cast<std::uint32_t>(key_number);
        MDB_val key{sizeof number, &number};
        return mdb_del(transaction.get(), projects_, &key, nullptr) == MDB_SUCCESS && transaction.commit();
    }
    std::int64_t enumerate(std::int32_t client, std::int64_t limit) override {
        if (client != 0) return 0;
        const Transaction transaction(environment_, MDB_RDONLY);
        MDB_cursor* cursor = nullptr;
        require_done(mdb_cursor_open(transaction.get(), projects_, &cursor), "cursor");
        ProjInfo project;
        MDB_val key;
        MDB_val value;
        std::int64_t rows = 0;
        while (rows < limit && mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == MDB_SUCCESS) {
            lay_flat(FlatReader(value.mv_data), project);
            ++rows;
        }
        mdb_cursor_close(cursor);
        return rows;
    }
    std::string main_file() const override { return path_; }

private:
    std::uint32_t last_key(MDB_txn* transaction) const {
        MDB_cursor* cursor = nullptr;
        require_done(mdb_cursor_open(transaction, projects_, &cursor), "cursor");
        MDB_val key;
        MDB_val value;
        std::uint32_t number = 0;
        if (mdb_cursor_get(cursor, &key, &value, MDB_LAST) == MDB_SUCCESS) {
            std::memcpy(&number, key.mv_data, sizeof number);
        }
        mdb_cursor_close(cursor);
        return number;
    }
    bool put(MDB_txn* transaction, std::uint32_t number, const ProjInfo& project) {
        lay_flat(FlatWriter(flat_), project);
        MDB_val key{sizeof number, &number};
        MDB_val value{flat_.size(), flat_.data()};
        return mdb_put(transaction, projects_, &key, &value, 0) == MDB_SUCCESS;
    }

    std::string path_;
    MDB_env* environment_ = nullptr;
    MDB_dbi projects_ = 0;
    std::uint32_t last_key_ = 0;
    std::vector<char> flat_;
};

}  // namespace

std::unique_ptr<Store> make_lmdb_store(const std::string& folder) { return std::make_unique<LmdbStore>(folder); }

}  // namespace bench
