// Where the C++/WinRT library looks for classes that the system does not have: in a DLL with the first part
// of their names, which here asks the program.

extern "C" __declspec(dllimport) int __stdcall getAppFactory(void* classId, void** factory);

extern "C" __declspec(dllexport) int __stdcall DllGetActivationFactory(void* classId, void** factory) {
    return getAppFactory(classId, factory);
}
