// The library on a host without a class registry.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "tests/frame/gate_host.h"

using namespace testing_support;

namespace {

// The standard output of a shell command.
std::string output_of(const std::string& command) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return text;
    std::array<char, 4096> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        text.append(buffer.data(), count);
    }
    pclose(pipe);
    return text;
}

}  // namespace

TEST(EntryPointsGate, library_exports_the_four_functions_and_nothing_else) {
    const std::string symbols = output_of("nm -D --defined-only '" KVDB_LIBRARY "'");
    std::set<std::string> names;
    std::istringstream lines(symbols);
    for (std::string line; std::getline(lines, line);) names.insert(line.substr(line.rfind(' ') + 1));
    EXPECT_EQ(names, (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                            "DllUnregisterServer"}));
}

TEST(EntryPointsGate, registration_is_not_implemented_without_a_registry) {
    GateHost host;
    EXPECT_EQ(host.component().register_server(), E_NOTIMPL);
    EXPECT_EQ(host.component().unregister_server(), E_NOTIMPL);
}

TEST(LateBindingGate, there_is_no_type_information_without_a_type_library) {
    GateHost host;
    const auto gate = host.create<IDBgate2>();
    UINT count = 9;
    EXPECT_EQ(gate->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);
    ITypeInfo* info = reinterpret_cast<ITypeInfo*>(0x5A5A);
    EXPECT_EQ(gate->GetTypeInfo(0, 0, &info), DISP_E_BADINDEX);
    EXPECT_EQ(info, nullptr);
}
