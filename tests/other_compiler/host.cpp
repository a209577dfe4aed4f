// A host that depends on nothing but the public header, for several compilers and settings. Run beside kvdb.dll, it
// writes and reads a record of each kind and prints what it got, line by line; what it prints must not depend on the
// compiler. The lists of records and methods are made from the documents.
#ifdef HOST_HAS_VALUE_CLASSES
#define KVDB_NO_VALUE_CLASSES
class CString {
    wchar_t own_[20];
};
class CTime {
    double own_[3];
};
class CDaoException {
    long own_;
};
#endif

#include <kvdb/kvdb.h>

#ifdef WIN32_LEAN_AND_MEAN
#error "the header has decided for its host"
#endif
#if !defined(__MINGW32__) && (defined(NOMINMAX) || !defined(min) || !defined(max))  // MinGW's C++ library decides, too
#error "the header has decided for its host"
#endif

#ifdef GetCurrentTime
#error "the platform's macro would rename CTime::GetCurrentTime"
#endif

#include <stddef.h>
#include <stdio.h>
#include <string.h>

// ---- The layout of every record --------------------------------------------------------------

#define LAYOUT(with_32, with_64) (sizeof(void*) == 8 ? with_64 : with_32)
#define RECORD(record, with_32, with_64) static_assert(sizeof(record) == LAYOUT(with_32, with_64), #record);
#define MEMBER(record, type, member, with_32, with_64) \
    static_assert(offsetof(record, member) == LAYOUT(with_32, with_64), #record "::" #member);
#define END(record)
#define TABLE(gate, method, record)
#include "records.inc"
#undef RECORD
#undef MEMBER
#undef END
#undef TABLE

namespace host {

#ifdef KVDB_NO_VALUE_CLASSES
using kvdb::CDaoException;
using kvdb::CString;
using kvdb::CTime;
static_assert(sizeof(::CString) == 20 * sizeof(wchar_t), "the host's own class");
#endif

// ---- Every member of every record ------------------------------------------------------------

// Texts and dates differ from member to member; keys lead to the first row; minutes of a day stay below 1440.
void fill(CString& text, const char* name, int) { text.Format("%s \xE4\xF6", name); }
void fill(CTime& time, const char*, int place) { time = CTime(2001 + place, 1 + place % 12, 1 + place % 28, 0, 0, 0); }
bool is_filled_date(int year, int month, int day, int place) {
    return year == 2001 + place && month == 1 + place % 12 && day == 1 + place % 28;
}
void fill(LONG& number, const char*, int) { number = 1; }
void fill(DWORD& number, const char*, int) { number = 0; }
void fill(float& number, const char*, int place) { number = static_cast<float>(place) + 0.25f; }

void show(const CString& text, const char* name, int) { printf("%s [%s]\n", name, text.GetString()); }
void show(const CTime& time, const char* name, int place) {
    const int year = time.GetYear(), month = time.GetMonth(), day = time.GetDay();
    printf("%s %d-%d-%d%s\n", name, year, month, day, is_filled_date(year, month, day, place) ? " as written" : "");
}
void show(LONG number, const char* name, int) { printf("%s %ld\n", name, static_cast<long>(number)); }
void show(DWORD number, const char* name, int) { printf("%s %lu\n", name, static_cast<unsigned long>(number)); }
void show(float number, const char* name, int) { printf("%s %.4f\n", name, static_cast<double>(number)); }

template <class Record>
struct Members;

#define RECORD(record, with_32, with_64) \
    template <>                          \
    struct Members<record> {             \
        template <class Visit>           \
        static void visit(record& r, Visit&& call) {
#define MEMBER(record, type, member, with_32, with_64) call(r.member, #record "." #member);
#define END(record) \
    }               \
    }               \
    ;
#define TABLE(gate, method, record)
#include "records.inc"
#undef RECORD
#undef MEMBER
#undef END
#undef TABLE

struct Fill {
    int place = 0;
    template <class Member>
    void operator()(Member& member, const char* name) {
        fill(member, name, place++);
    }
};

// Other texts and dates than the stored ones: what is still there after reading was not stored.
struct Blot {
    void operator()(CString& text, const char*) { text = "before"; }
    void operator()(CTime& time, const char*) { time = CTime(1980, 1, 1, 0, 0, 0); }
    template <class Number>
    void operator()(Number&, const char*) {}
};

struct Show {
    int place = 0;
    template <class Member>
    void operator()(const Member& member, const char* name) {
        show(member, name, place++);
    }
};

// The component frees texts of ours while it fills the record that it reads into; ours frees those of the component.
template <class Record, class Gate>
void add_and_find(Gate* gate, HRESULT (STDMETHODCALLTYPE Gate::*add)(LONG_PTR),
                  HRESULT (STDMETHODCALLTYPE Gate::*find)(LONG_PTR), const char* method) {
    Record written{};
    Members<Record>::visit(written, Fill());
    const HRESULT added = (gate->*add)(reinterpret_cast<LONG_PTR>(&written));
    Record read = written;
    Members<Record>::visit(read, Blot());
    const HRESULT found = (gate->*find)(reinterpret_cast<LONG_PTR>(&read));
    printf("%s %lx %lx\n", method, static_cast<unsigned long>(added), static_cast<unsigned long>(found));
    Members<Record>::visit(read, Show());
}

// Asks an extended enumeration for every row of thirty years.
struct AskForAll {
    void operator()(CString& text, const char*) { text = "*"; }
    void operator()(CTime& time, const char* name) {
        time = CTime(strstr(name, ".ToDate") != nullptr ? 2030 : 1980, 1, 1, 0, 0, 0);
    }
    void operator()(DWORD& flags, const char*) { flags = 3; }
    template <class Number>
    void operator()(Number& number, const char*) {
        number = 0;
    }
};

// Reads the row that `add_and_find` has added into the record that asks for it.
template <class Record, class Gate>
void find_extended(Gate* gate, HRESULT (STDMETHODCALLTYPE Gate::*first)(LONG_PTR), const char* method) {
    Record read{};
    Members<Record>::visit(read, AskForAll());
    const HRESULT found = (gate->*first)(reinterpret_cast<LONG_PTR>(&read));
    printf("%s %lx\n", method, static_cast<unsigned long>(found));
    Members<Record>::visit(read, Show());
}

// ---- The component ---------------------------------------------------------------------------

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
GetClassObject get_class_object = nullptr;

template <class Gate>
Gate* make(REFCLSID clsid, REFIID iid) {
    void* object = nullptr;
    if (get_class_object(clsid, IID_IClassFactory, &object) != S_OK) return nullptr;
    IClassFactory* const factory = static_cast<IClassFactory*>(object);
    if (factory->CreateInstance(nullptr, iid, &object) != S_OK) object = nullptr;
    factory->Release();
    return static_cast<Gate*>(object);
}

void use_tables(IDBgate1* IDBgate1_, IDBgate2* IDBgate2_, IDBGate3* IDBGate3_) {
#define RECORD(record, with_32, with_64)
#define MEMBER(record, type, member, with_32, with_64)
#define END(record)
#define TABLE(gate, method, record) \
    add_and_find<record>(gate##_, &gate::Add##method, &gate::Find##method, #gate "::" #method);
#include "records.inc"
#undef RECORD
#undef MEMBER
#undef END
#undef TABLE
    add_and_find<InvoiceDef>(IDBgate1_, &IDBgate1::SetInvoiceDef, &IDBgate1::GetInvoiceDef, "IDBgate1::InvoiceDef");
    find_extended<SessionExInfo>(IDBgate1_, &IDBgate1::EnumEx_FirstSession, "IDBgate1::EnumEx_FirstSession");
    find_extended<SupplyExInfo>(IDBgate1_, &IDBgate1::EnumEx_FirstSupply, "IDBgate1::EnumEx_FirstSupply");
}

// An existing file that is no database: no exception can reach this host, the reason is in the error info.
bool refuses_a_damaged_file(IDBgate1* gate) {
    FILE* const file = fopen("sldb.mdb", "wb");
    if (file == nullptr) return false;
    fputs("this is no database", file);
    fclose(file);
    const HRESULT result = gate->OpenDB();
    IErrorInfo* info = nullptr;
    BSTR text = nullptr;
    if (GetErrorInfoOf(gate, &info) == S_OK) {
        info->GetDescription(&text);
        info->Release();
    }
    char narrow[1000] = "";
    for (UINT i = 0; i < SysStringLen(text) && i + 1 < sizeof narrow; ++i) narrow[i] = static_cast<char>(text[i]);
    SysFreeString(text);
    printf("damaged file: %lx, names it %d\n", static_cast<unsigned long>(result),
           strstr(narrow, "sldb.mdb") != nullptr);
    return result == E_FAIL && strstr(narrow, "sldb.mdb") != nullptr;
}

// The host's own exceptions work beside the component.
bool catches_its_own() {
#if defined(__cpp_exceptions) || defined(_CPPUNWIND)
    try {
        throw 7;
    } catch (int number) {
        return number == 7;
    }
#else
    return true;
#endif
}

int run() {
    if (!catches_its_own()) return 2;
    char path[MAX_PATH] = "";
    GetFullPathNameA("kvdb.dll", sizeof path, path, nullptr);
    const HMODULE library = LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr) return 3;
    get_class_object =
        reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    IDBgate1* const gate = make<IDBgate1>(CLSID_DBgate1, IID_IDBgate1);
    IDBgate2* const second = make<IDBgate2>(CLSID_DBgate2, IID_IDBgate2);
    IDBGate3* const third = make<IDBGate3>(CLSID_DBGate3, IID_IDBGate3);
    if (gate == nullptr || second == nullptr || third == nullptr) return 4;
    if (gate->OpenDB() != S_OK || second->OpenDB() != S_OK || third->OpenDB() != S_OK) return 5;
    use_tables(gate, second, third);
    if (gate->CloseDB() != S_OK) return 6;
    if (!refuses_a_damaged_file(gate)) return 7;
    third->Release();
    second->Release();
    gate->Release();
    if (!catches_its_own()) return 8;
    if (!HeapValidate(GetProcessHeap(), 0, nullptr)) return 9;
    return 0;
}

}  // namespace host

extern "C" int run_host() {
    const int code = host::run();
    printf("code %d\n", code);
    fflush(stdout);
    return code;
}

#ifdef __MINGW32__
int main() { return run_host(); }
#endif
