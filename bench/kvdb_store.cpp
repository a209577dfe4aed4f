// The component, as a host has it: a copy of the library in the folder, loaded at run time.
#include "bench/store.h"
#include "db/database_files.h"
#include "tools/studio.h"

namespace bench {
namespace {

class KvdbStore final : public Store {
public:
    explicit KvdbStore(const std::string& folder) : studio_(folder, tools::Studio::Purpose::kUpgrade) {}

    void open() override { gate_ = &studio_.open(); }
    void close() override { studio_.close(); }
    void fill(std::int32_t count) override {
        for (std::int32_t n = 1; n <= count; ++n) {
            ProjInfo project = sample_project(n);
            gate_->AddProj(tools::address_of(project));
        }
    }
    bool add(ProjInfo& project) override { return gate_->AddProj(tools::address_of(project)) == S_OK; }
    bool find(ProjInfo& project) override { return gate_->FindProj(tools::address_of(project)) == S_OK; }
    bool update(ProjInfo& project) override { return gate_->UpdateProj(tools::address_of(project)) == S_OK; }
    bool remove(std::int32_t key) override { return gate_->DeleteProj(key) == S_OK; }
    std::int64_t enumerate(std::int32_t client, std::int64_t limit) override {
        ProjInfo project{};
        if (client != 0) {
            project.ClientID = client;
            project.Type = "Album";
        }
        std::int64_t rows = 0;
        for (HRESULT result = gate_->EnumFirstProj(tools::address_of(project)); result == S_OK && rows < limit;
             result = gate_->EnumNextProj(tools::address_of(project))) {
            ++rows;
        }
        return rows;
    }
    std::string main_file() const override { return db::file_path(db::DatabaseFile::kMain); }

private:
    tools::Studio studio_;
    IDBgate1* gate_ = nullptr;
};

}  // namespace

std::unique_ptr<Store> make_kvdb_store(const std::string& folder) { return std::make_unique<KvdbStore>(folder); }

}  // namespace bench
