// NoMemory LIBRARY: a host in a system without any memory, which must be told so. The system's
// run-time library gives none from before the library is loaded on, so that what the library would
// set aside for exceptions is not there either.

#include <cstring>
#include <initializer_list>

#include <windows.h>

namespace {

void giveNothing(const char* name) {
    constexpr unsigned char code[] = {0x31, 0xC0, 0xC3}; // xor eax, eax; ret
    const FARPROC function = GetProcAddress(GetModuleHandleA("msvcrt.dll"), name);
    void* const place = reinterpret_cast<void*>(function);
    DWORD before = 0;
    VirtualProtect(place, sizeof code, PAGE_EXECUTE_READWRITE, &before);
    std::memcpy(place, code, sizeof code);
    VirtualProtect(place, sizeof code, before, &before);
}

} // namespace

int main(int, char** arguments) {
    for (const char* name : {"malloc", "calloc", "realloc"})
        giveNothing(name);
    const HMODULE library = LoadLibraryA(arguments[1]);
    const FARPROC found = library ? GetProcAddress(library, "kiv_parameters_new") : nullptr;
    const auto create = reinterpret_cast<int (*)(void**)>(reinterpret_cast<void*>(found));
    void* parameters = nullptr;
    ExitProcess(create && create(&parameters) == 21 && !parameters ? 0 : 1);
}
