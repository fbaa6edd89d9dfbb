// Where the C++/WinRT library looks for classes that the system does not have: in a DLL with the first part
// of their names, which here asks the program.

#include <windows.h>

extern "C" __declspec(dllexport) int __stdcall DllGetActivationFactory(void* classId, void** factory) {
    const auto ask = reinterpret_cast<int(__stdcall*)(void*, void**)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), "getAppFactory")));
    return ask(classId, factory);
}
