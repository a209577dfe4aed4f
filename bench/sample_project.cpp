#include "bench/store.h"

namespace bench {

ProjInfo sample_project(std::int32_t n) {
    static constexpr const char* kTypes[] = {"Album", "Single", "Jingle", "Soundtrack"};
    ProjInfo project{};
    project.ExData = n % 7;
    project.Name.Format("Project number %07d", n);
    project.ClientID = n % kClients + 1;
    project.Client.Format("Client number %04d", static_cast<int>(project.ClientID));
    project.ProducerID = n % 13;
    project.Producer = "A producer of some name";
    project.DirectorID = n % 11;
    project.Director = "A director";
    project.Folder = "D:\\Studio\\Projects";
    project.Type = kTypes[n / kClients % 4];
    project.ProjTypeID = n / kClients % 4;
    project.ProjCreateDate = CTime(2001 + n % 20, 1 + n % 12, 1 + n % 28, 0, 0, 0);
    project.DiscountVal = static_cast<float>(n % 50) + 0.25f;
    project.DiscountType = n % 3;
    project.Notes = "Notes of a few words, as they are written in passing.";
    return project;
}

}  // namespace bench
