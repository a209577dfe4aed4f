#include "tools/projects.h"

#include <cstdio>
#include <iostream>

#include "tools/studio.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string date_text(const CTime& date) {
    if (date.GetTime() < 0) return "";
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", date.GetYear(), date.GetMonth(), date.GetDay());
    return text;
}

}  // namespace

std::vector<ProjInfo> list_projects(IDBgate1& gate, const ProjInfo& filter) {
    std::vector<ProjInfo> projects;
    ProjInfo row = filter;
    for (HRESULT result = gate.EnumFirstProj(address_of(row)); SUCCEEDED(result);
         result = gate.EnumNextProj(address_of(row))) {
        projects.push_back(row);
    }
    return projects;
}

void print_projects(const std::vector<ProjInfo>& projects) {
    std::printf("%6s  %-26s %-18s %-10s %-12s %10s\n", "ProjID", "Name", "Client", "Type", "Created", "Discount");
    for (const ProjInfo& project : projects) {
        const auto cell = [](const CString& text, std::size_t width) { return padded(to_utf8(text), width); };
        std::printf("%6d  %s %s %s %-12s %10.2f\n", project.ProjID, cell(project.Name, 26).c_str(),
                    cell(project.Client, 18).c_str(), cell(project.Type, 10).c_str(),
                    date_text(project.ProjCreateDate).c_str(), static_cast<double>(project.DiscountVal));
    }
    std::printf("%zu project%s\n", projects.size(), projects.size() == 1 ? "" : "s");
}

void print_projects_json(const std::vector<ProjInfo>& projects) {
    const auto text = [](const CString& value) { return json_string(to_utf8(value)); };
    std::cout << "[";
    const char* between = "\n";
    for (const ProjInfo& p : projects) {
        const std::string date = date_text(p.ProjCreateDate);
        std::cout << between << "  {\"ProjID\": " << p.ProjID << ", \"ExData\": " << p.ExData
                  << ", \"Name\": " << text(p.Name) << ", \"Client\": " << text(p.Client)
                  << ", \"ClientID\": " << p.ClientID << ", \"ProducerID\": " << p.ProducerID
                  << ", \"DirectorID\": " << p.DirectorID << ", \"Producer\": " << text(p.Producer)
                  << ", \"Director\": " << text(p.Director) << ", \"Folder\": " << text(p.Folder)
                  << ", \"Type\": " << text(p.Type) << ", \"ProjTypeID\": " << p.ProjTypeID
                  << ", \"ProjCreateDate\": " << (date.empty() ? "null" : json_string(date))
                  << ", \"DiscountVal\": " << json_value(p.DiscountVal) << ", \"DiscountType\": " << p.DiscountType
                  << ", \"Notes\": " << text(p.Notes) << "}";
        between = ",\n";
    }
    std::cout << "\n]\n";
}

}  // namespace tools
