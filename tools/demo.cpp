// The demonstration: a studio from nothing, worked on through the gates, and what it left on the disk.
#include <cstdio>
#include <filesystem>

#include "jet/check.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/projects.h"
#include "tools/studio.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

void require(HRESULT result, const char* what) {
    if (FAILED(result)) throw CommandError(std::string(what) + " failed");
}

LONG add_project(IDBgate1& gate, const char* name, const char* client, LONG client_id, const char* type, CTime created,
                 float discount) {
    ProjInfo project{};
    project.Name = from_utf8(name);
    project.Client = from_utf8(client);
    project.ClientID = client_id;
    project.Type = type;
    project.ProjCreateDate = created;
    project.DiscountVal = discount;
    project.Producer = "Dana Reuter";
    project.Notes = "entered by the demonstration";
    require(gate.AddProj(address_of(project)), "AddProj");
    return project.ProjID;
}

// An empty folder of our own in the system's folder for such.
std::string fresh_folder() {
    for (int n = 1;; ++n) {
        const fs::path candidate = fs::temp_directory_path() / ("kvdb-demo-" + std::to_string(n));
        std::error_code error;
        if (fs::create_directory(candidate, error)) return candidate.string();
        if (error || n == 10000) throw CommandError("cannot make a folder in " + fs::temp_directory_path().string());
    }
}

void show_files(const Studio& studio) {
    for (const std::string& file : {studio.main_file(), studio.invoice_file()}) {
        jet::OpenOptions options;
        options.read_only = true;
        options.ignore_password = true;
        const auto database = jet::Database::open(file, options);
        const std::size_t violations = jet::check_structure(*database).size();
        std::printf("  %s: %ju bytes, %zu tables, structural check: %s\n", file.c_str(),
                    static_cast<std::uintmax_t>(fs::file_size(file)), database->table_names().size(),
                    violations == 0 ? "sound" : "NOT SOUND");
        if (violations != 0) throw CommandError(file + " is not sound");
    }
}

}  // namespace

int run_demo(const Words& words) {
    const Arguments arguments(words, {}, {});
    const auto& positional = arguments.expect(0, 1, "demo [FOLDER]");
    std::string folder;
    if (positional.empty()) {
        folder = fresh_folder();
    } else {
        folder = positional[0];
        std::error_code error;
        fs::create_directories(folder, error);
        if (error) throw CommandError("cannot make the folder " + folder + ": " + error.message());
    }
    Studio studio(folder, true);
    if (SUCCEEDED(studio.gate().IsDbExist())) {
        throw CommandError("there is a studio in " + folder + " already; the demonstration wants a folder without one");
    }

    std::printf("A new studio in %s\n", folder.c_str());
    IDBgate1& gate = studio.open();
    LONG version = 0;
    require(gate.GetDBVer(&version), "GetDBVer");
    std::printf("OpenDB made both files; schema version %d\n\n", version);

    add_project(gate, "Night Trains", "Aurora Quartet", 5, "Album", CTime(2026, 3, 2, 0, 0, 0), 12.5f);
    const LONG jingle = add_project(gate, "Harbour Jingle", "North Radio", 7, "Jingle", CTime(2026, 3, 9, 0, 0, 0), 0);
    const LONG sketches = add_project(gate, "Sketches", "Aurora Quartet", 5, "Demo", CTime(2026, 4, 1, 0, 0, 0), 0);
    add_project(gate, "Grüße aus Köln", "Jonas Lindström", 9, "Album", CTime(2026, 5, 20, 0, 0, 0), 7.25f);
    std::printf("All projects:\n");
    print_projects(list_projects(gate, {}));

    ProjInfo filter{};
    filter.ClientID = 5;
    filter.Type = "Album";
    std::printf("\nAlbums of client 5:\n");
    print_projects(list_projects(gate, filter));

    ProjInfo project{};
    project.ProjID = jingle;
    require(gate.FindProj(address_of(project)), "FindProj");
    project.Name = "Harbour Jingle (long cut)";
    project.DiscountVal = 3;
    require(gate.UpdateProj(address_of(project)), "UpdateProj");
    require(gate.DeleteProj(sketches), "DeleteProj");
    std::printf("\nProject %d renamed, project %d deleted; closed and opened again:\n", jingle, sketches);
    studio.close();
    print_projects(list_projects(studio.open(), {}));

    studio.close();
    std::printf("\nFiles, readable by any Jet tool:\n");
    show_files(studio);
    std::printf("\nTry: kvdb projects %s --client 5\n     kvdb schema %s Projects\n", folder.c_str(),
                studio.main_file().c_str());
    return 0;
}

}  // namespace tools
