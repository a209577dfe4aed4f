// Loads the installed library (LIBRARY, or the first argument) and uses a gate; exit code 0 on success.
#include <dlfcn.h>
#include <kvdb/kvdb.h>

#include <cstdio>

#ifndef LIBRARY
#define LIBRARY ""
#endif

int main(int argc, char** argv) {
    // The loader must not find it by name alone: the folder where it is installed is not a studio.
    if (dlopen("libkvdb.so", RTLD_NOW) != nullptr) return 5;
    void* const library = dlopen(argc > 1 ? argv[1] : LIBRARY, RTLD_NOW);
    if (library == nullptr) return std::puts(dlerror()), 1;
    const auto get_class_object = reinterpret_cast<LPFNGETCLASSOBJECT>(dlsym(library, "DllGetClassObject"));
    IClassFactory* factory = nullptr;
    if (get_class_object(CLSID_DBgate1, IID_IClassFactory, reinterpret_cast<void**>(&factory)) != S_OK) return 2;
    IDBgate1* gate = nullptr;
    if (factory->CreateInstance(nullptr, IID_IDBgate1, reinterpret_cast<void**>(&gate)) != S_OK) return 3;

    CompactDBInfo request;
    ProjInfo project;
    project.Name = "Demo";
    const bool well = gate->CompactDB(reinterpret_cast<LONG_PTR>(&request)) == S_OK && gate->IsDbExist() == E_FAIL &&
                      gate->AddProj(reinterpret_cast<LONG_PTR>(&project)) == E_FAIL;
    gate->Release();
    factory->Release();
    return well ? 0 : 4;
}
