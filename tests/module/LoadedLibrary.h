#pragma once

#include <string>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace kiv::test {

// A dynamic library, loaded by path for the life of this object.
class LoadedLibrary {
public:
#ifdef _WIN32
    explicit LoadedLibrary(const std::string& path) : handle(LoadLibraryA(path.c_str())) {}
    ~LoadedLibrary() {
        if (handle)
            FreeLibrary(handle);
    }

    // Null for a name that the library does not export.
    template <typename Function>
    Function* symbol(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
    }

    static bool isLoaded(const std::string& path) {
        return GetModuleHandleA(path.c_str());
    }
#else
    explicit LoadedLibrary(const std::string& path)
        : handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}
    ~LoadedLibrary() {
        if (handle)
            dlclose(handle);
    }

    // Null for a name that the library does not export.
    template <typename Function>
    Function* symbol(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle, name));
    }

    static bool isLoaded(const std::string& path) {
        void* loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
        return loaded && dlclose(loaded) == 0;
    }
#endif
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    explicit operator bool() const {
        return handle;
    }

private:
#ifdef _WIN32
    HMODULE handle;
#else
    void* handle;
#endif
};

} // namespace kiv::test
