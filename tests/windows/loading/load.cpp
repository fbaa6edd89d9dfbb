// Loads a DLL and lets go of it again: load DLL

#include <windows.h>

int wmain(int count, wchar_t** arguments) {
    const HMODULE library = count == 2 ? LoadLibraryW(arguments[1]) : nullptr;
    return library != nullptr && FreeLibrary(library) ? 0 : 1;
}
