// The type library in the component's own file: identity, and every function of the three interfaces, name by name
// and slot by slot, against the public header and against the published list.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/frame/published_methods.h"
#include "tests/frame/win32_host.h"

using namespace testing_support;

namespace {

struct Parameter {
    std::string name;
    std::string type;  // as in the header
    bool operator==(const Parameter&) const = default;
};

struct Function {
    std::string name;
    std::vector<Parameter> parameters;
    bool operator==(const Function&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Function& function) {
    out << function.name << '(';
    for (const Parameter& parameter : function.parameters) out << parameter.type << ' ' << parameter.name << ',';
    return out << ')';
}

// The methods of an interface as the public header declares them.
std::vector<Function> declared(const std::string& interface_name) {
    const std::string header = bytes_of(KVDB_INCLUDE "/kvdb/gates.h");
    const std::size_t begin = header.find("struct " + interface_name + " : IDispatch {");
    const std::string body = header.substr(begin, header.find("\n};", begin) - begin);
    static const std::regex method(R"(virtual HRESULT STDMETHODCALLTYPE (\w+)\(([^)]*)\) = 0;)");
    static const std::regex parameter(R"(([\w\*]+) (\w+))");
    std::vector<Function> functions;
    for (std::sregex_iterator m(body.begin(), body.end(), method), end; m != end; ++m) {
        Function function{(*m)[1], {}};
        const std::string list = (*m)[2];
        for (std::sregex_iterator p(list.begin(), list.end(), parameter); p != end; ++p) {
            function.parameters.push_back({(*p)[2], (*p)[1]});
        }
        functions.push_back(std::move(function));
    }
    return functions;
}

// The published list with the header's types.
template <std::size_t Count>
std::vector<Function> published(const PublishedMethod (&methods)[Count]) {
    std::vector<Function> functions;
    for (const PublishedMethod& method : methods) {
        Function function{method.name, {}};
        std::istringstream words(method.parameters);
        for (std::string word; words >> word;) {
            const char* const type = word[0] == 'r'   ? "LONG_PTR"
                                     : word[0] == 'n' ? "LONG"
                                     : word[0] == 't' ? "LPSTR"
                                     : word[0] == 'o' ? "LONG*"
                                                      : "BSTR";
            function.parameters.push_back({word.substr(2), type});
        }
        functions.push_back(std::move(function));
    }
    return functions;
}

// Automation types by short names. A record's address is an integer of the host's own size.
std::string automation_type(const TYPEDESC& type) {
    switch (type.vt) {
        case VT_I4: return "I4";
        case VT_I8: return "I8";
        case VT_BSTR: return "BSTR";
        case VT_LPSTR: return "LPSTR";
        case VT_PTR: return automation_type(*type.lptdesc) + "*";
        default: return "type " + std::to_string(type.vt);
    }
}
std::string automation_type(const std::string& declared_type) {
    if (declared_type == "LONG_PTR") return sizeof(void*) == 8 ? "I8" : "I4";
    if (declared_type == "LONG") return "I4";
    if (declared_type == "LONG*") return "I4*";
    return declared_type;
}

class TypeLibraryWin32 : public testing::Test {
protected:
    TypeLibraryWin32() {
        const std::wstring path = wide(KVDB_LIBRARY);
        ITypeLib* library = nullptr;
        EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library), S_OK);
        library_ = ComPtr<ITypeLib>(library);
    }

    ComPtr<ITypeInfo> info(REFGUID id) {
        ITypeInfo* found = nullptr;
        EXPECT_EQ(library_->GetTypeInfoOfGuid(id, &found), S_OK);
        return ComPtr<ITypeInfo>(found);
    }

    static std::string name(ITypeInfo& type, MEMBERID member) {
        BSTR text = nullptr;
        EXPECT_EQ(type.GetDocumentation(member, &text, nullptr, nullptr, nullptr), S_OK);
        return taken(text);
    }
    static std::string help(ITypeInfo& type) {
        BSTR text = nullptr;
        EXPECT_EQ(type.GetDocumentation(MEMBERID_NIL, nullptr, &text, nullptr, nullptr), S_OK);
        return taken(text);
    }

    // Compares the virtual table of the interface with `methods`.
    void expect_functions(REFIID iid, const std::string& interface_name, const std::vector<Function>& methods) {
        const ComPtr<ITypeInfo> dispatch = info(iid);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(dispatch->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
        EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FDUAL, 0);
        dispatch->ReleaseTypeAttr(attributes);
        EXPECT_EQ(name(*dispatch, MEMBERID_NIL), interface_name);
        EXPECT_EQ(help(*dispatch), interface_name + " Interface");

        HREFTYPE reference = 0;
        ASSERT_EQ(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
        ITypeInfo* found = nullptr;
        ASSERT_EQ(dispatch->GetRefTypeInfo(reference, &found), S_OK);
        const ComPtr<ITypeInfo> table(found);
        ASSERT_EQ(table->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->typekind, TKIND_INTERFACE);
        EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FOLEAUTOMATION, 0);
        EXPECT_EQ(attributes->cFuncs, methods.size());
        EXPECT_EQ(attributes->cbSizeVft, (7 + methods.size()) * sizeof(void*));
        table->ReleaseTypeAttr(attributes);

        for (UINT i = 0; i < methods.size(); ++i) {
            const Function& method = methods[i];
            FUNCDESC* function = nullptr;
            ASSERT_EQ(table->GetFuncDesc(i, &function), S_OK);
            BSTR names[4] = {};
            UINT count = 0;
            ASSERT_EQ(table->GetNames(function->memid, names, 4, &count), S_OK);
            EXPECT_EQ(taken(names[0]), method.name);
            EXPECT_EQ(function->memid, static_cast<MEMBERID>(i + 1)) << method.name;
            EXPECT_EQ(function->oVft, static_cast<SHORT>((7 + i) * sizeof(void*))) << method.name;
            EXPECT_EQ(function->callconv, CC_STDCALL);
            EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_HRESULT);
            ASSERT_EQ(static_cast<std::size_t>(function->cParams), method.parameters.size()) << method.name;
            for (std::size_t p = 0; p < method.parameters.size(); ++p) {
                EXPECT_EQ(taken(names[p + 1]), method.parameters[p].name) << method.name;
                EXPECT_EQ(automation_type(function->lprgelemdescParam[p].tdesc),
                          automation_type(method.parameters[p].type))
                    << method.name;
            }
            table->ReleaseFuncDesc(function);
        }
    }

    ComPtr<ITypeLib> library_;
};

}  // namespace

TEST_F(TypeLibraryWin32, has_the_published_identity) {
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(library_->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(text_of(attributes->guid), "{D4E6B90C-22E3-47D3-9E7F-02AA21C9A428}");
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    EXPECT_EQ(attributes->lcid, 0u);
    EXPECT_EQ(attributes->syskind, kSystem);
    library_->ReleaseTLibAttr(attributes);
    BSTR name = nullptr;
    BSTR help = nullptr;
    ASSERT_EQ(library_->GetDocumentation(-1, &name, &help, nullptr, nullptr), S_OK);
    EXPECT_EQ(taken(name), "KVDBLib");
    EXPECT_EQ(taken(help), "KVDB 1.0 Type Library");
    EXPECT_EQ(library_->GetTypeInfoCount(), 6u);
}

TEST_F(TypeLibraryWin32, classes_have_their_interface_as_default) {
    struct Entry {
        const char* clsid;
        const char* name;
        const char* interface_name;
    };
    const Entry entries[] = {{"{66DA35EC-B364-4F64-A3FD-D09D314C02D1}", "DBgate1", "IDBgate1"},
                             {"{99CA7812-20D9-4498-9727-DE8B97A3F383}", "DBgate2", "IDBgate2"},
                             {"{BD49E811-5273-4074-BD03-8ED9B0812418}", "DBGate3", "IDBGate3"}};
    for (const Entry& entry : entries) {
        CLSID clsid{};
        ASSERT_EQ(CLSIDFromString(wide(entry.clsid).c_str(), &clsid), S_OK);
        const ComPtr<ITypeInfo> type = info(clsid);
        ASSERT_TRUE(type);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
        EXPECT_EQ(attributes->cImplTypes, 1);
        EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, 0);
        type->ReleaseTypeAttr(attributes);
        EXPECT_EQ(name(*type, MEMBERID_NIL), entry.name);
        EXPECT_EQ(help(*type), std::string(entry.name) + " Class");
        HREFTYPE reference = 0;
        ASSERT_EQ(type->GetRefTypeOfImplType(0, &reference), S_OK);
        ITypeInfo* found = nullptr;
        ASSERT_EQ(type->GetRefTypeInfo(reference, &found), S_OK);
        EXPECT_EQ(name(*found, MEMBERID_NIL), entry.interface_name);
        found->Release();
        INT flags = 0;
        ASSERT_EQ(type->GetImplTypeFlags(0, &flags), S_OK);
        EXPECT_NE(flags & IMPLTYPEFLAG_FDEFAULT, 0);
    }
}

TEST_F(TypeLibraryWin32, interfaces_are_those_of_the_header) {
    expect_functions(IID_IDBgate1, "IDBgate1", declared("IDBgate1"));
    expect_functions(IID_IDBgate2, "IDBgate2", declared("IDBgate2"));
    expect_functions(IID_IDBGate3, "IDBGate3", declared("IDBGate3"));
}

TEST_F(TypeLibraryWin32, header_is_the_published_list) {
    EXPECT_EQ(declared("IDBgate1"), published(kPublishedMainMethods));
    EXPECT_EQ(declared("IDBgate2"), published(kPublishedGearMethods));
    EXPECT_EQ(declared("IDBGate3"), published(kPublishedGearMethods));
}

TEST_F(TypeLibraryWin32, gate_describes_itself_without_registration) {
    const GateHost host;
    const auto expect_description = [](IDispatch& gate, REFIID iid) {
        UINT count = 0;
        EXPECT_EQ(gate.GetTypeInfoCount(&count), S_OK);
        EXPECT_EQ(count, 1u);
        EXPECT_EQ(gate.GetTypeInfoCount(nullptr), E_POINTER);
        ITypeInfo* info = nullptr;
        EXPECT_EQ(gate.GetTypeInfo(1, 0, &info), DISP_E_BADINDEX);
        EXPECT_EQ(info, nullptr);
        EXPECT_EQ(gate.GetTypeInfo(0, 0, nullptr), E_POINTER);
        ASSERT_EQ(gate.GetTypeInfo(0, 0, &info), S_OK);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(text_of(attributes->guid), text_of(iid));
        info->ReleaseTypeAttr(attributes);
        info->Release();
    };
    expect_description(*host.create<IDBgate1>(), IID_IDBgate1);
    expect_description(*host.create<IDBgate2>(), IID_IDBgate2);
    expect_description(*host.create<IDBGate3>(), IID_IDBGate3);
}
