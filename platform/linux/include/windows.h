#pragma once

// The base of the Win32 headers, as far as code written against the Windows Runtime and Direct3D 11 needs it:
// fixed-width types (a Windows `long` has 32 bits), GUIDs, result codes, the macros with which COM interfaces
// are declared, and the clock and error-code functions. The widths and layouts are those of 64-bit Windows.

// The names and macros are those of Win32 and of its interface headers.
// NOLINTBEGIN(bugprone-reserved-identifier,modernize-macro-to-enum)

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Calling conventions: a 64-bit platform has only one.
#define __cdecl
#define __stdcall
#define WINAPI __stdcall
#define STDMETHODCALLTYPE __stdcall

#define EXTERN_C extern "C"
#define FORCEINLINE inline __attribute__((always_inline))

// GLib names these two as well.
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

using BOOL = int;
using WINBOOL = BOOL;
using BYTE = std::uint8_t;
using WCHAR = wchar_t;
using INT = std::int32_t;
using INT32 = std::int32_t;
using INT64 = std::int64_t;
using UINT = std::uint32_t;
using UINT8 = std::uint8_t;
using UINT16 = std::uint16_t;
using UINT32 = std::uint32_t;
using UINT64 = std::uint64_t;
using USHORT = std::uint16_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using DWORD = std::uint32_t;
using FLOAT = float;
using SIZE_T = std::size_t;
using HRESULT = std::int32_t;

using LPSTR = char*;
using LPCSTR = const char*;
using LPVOID = void*;

using HANDLE = void*;
using HDC = struct HDC__*;
using HMODULE = struct HINSTANCE__*;
using HMONITOR = struct HMONITOR__*;
using HWND = struct HWND__*;

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct SIZE {
    LONG cx;
    LONG cy;
};

struct LUID {
    DWORD LowPart;
    LONG HighPart;
};

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};

// Result codes.
#define S_OK (static_cast<HRESULT>(0))
#define S_FALSE (static_cast<HRESULT>(1))
#define E_NOTIMPL (static_cast<HRESULT>(0x80004001U))
#define E_NOINTERFACE (static_cast<HRESULT>(0x80004002U))
#define E_POINTER (static_cast<HRESULT>(0x80004003U))
#define E_ABORT (static_cast<HRESULT>(0x80004004U))
#define E_FAIL (static_cast<HRESULT>(0x80004005U))
#define E_UNEXPECTED (static_cast<HRESULT>(0x8000FFFFU))
#define E_ACCESSDENIED (static_cast<HRESULT>(0x80070005U))
#define E_HANDLE (static_cast<HRESULT>(0x80070006U))
#define E_OUTOFMEMORY (static_cast<HRESULT>(0x8007000EU))
#define E_INVALIDARG (static_cast<HRESULT>(0x80070057U))
#define E_BOUNDS (static_cast<HRESULT>(0x8000000BU))
#define E_ILLEGAL_METHOD_CALL (static_cast<HRESULT>(0x8000000EU))
#define E_ILLEGAL_DELEGATE_ASSIGNMENT (static_cast<HRESULT>(0x80000018U))
#define DISP_E_UNKNOWNNAME (static_cast<HRESULT>(0x80020006U))
#define RPC_E_DISCONNECTED (static_cast<HRESULT>(0x80010108U))
#define RPC_E_WRONG_THREAD (static_cast<HRESULT>(0x8001010EU))
#define RPC_E_TIMEOUT (static_cast<HRESULT>(0x8001011FU))
#define WEB_E_INVALID_JSON_STRING (static_cast<HRESULT>(0x83750007U))
#define WEB_E_JSON_VALUE_NOT_FOUND (static_cast<HRESULT>(0x83750009U))
#define WININET_E_TIMEOUT (static_cast<HRESULT>(0x80072EE2U))
#define WININET_E_NAME_NOT_RESOLVED (static_cast<HRESULT>(0x80072EE7U))
#define WININET_E_CANNOT_CONNECT (static_cast<HRESULT>(0x80072EFDU))
#define WININET_E_CONNECTION_ABORTED (static_cast<HRESULT>(0x80072EFEU))
#define WININET_E_CONNECTION_RESET (static_cast<HRESULT>(0x80072EFFU))
#define WININET_E_INVALID_CA (static_cast<HRESULT>(0x80072F0DU))
#define WININET_E_REDIRECT_FAILED (static_cast<HRESULT>(0x80072F7CU))
#define WININET_E_SECURITY_CHANNEL_ERROR (static_cast<HRESULT>(0x80072F7DU))
#define WINCODEC_ERR_WRONGSTATE (static_cast<HRESULT>(0x88982F04U))
#define WINCODEC_ERR_COMPONENTNOTFOUND (static_cast<HRESULT>(0x88982F50U))
#define WINCODEC_ERR_FRAMEMISSING (static_cast<HRESULT>(0x88982F62U))
#define WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT (static_cast<HRESULT>(0x88982F80U))
#define WINCODEC_ERR_INSUFFICIENTBUFFER (static_cast<HRESULT>(0x88982F8CU))

#define SUCCEEDED(result) (static_cast<HRESULT>(result) >= 0)
#define FAILED(result) (static_cast<HRESULT>(result) < 0)
#define MAKE_HRESULT(severity, facility, code)                           \
    (static_cast<HRESULT>((static_cast<std::uint32_t>(severity) << 31) | \
                          (static_cast<std::uint32_t>(facility) << 16) | static_cast<std::uint32_t>(code)))
#define SEVERITY_SUCCESS 0
#define SEVERITY_ERROR 1

// Win32 error codes, and the result codes that stand for them.
#define ERROR_FILE_NOT_FOUND 2
#define ERROR_PATH_NOT_FOUND 3
#define ERROR_TOO_MANY_OPEN_FILES 4
#define ERROR_NOT_SAME_DEVICE 17
#define ERROR_SHARING_VIOLATION 32
#define ERROR_DISK_FULL 112
#define ERROR_ALREADY_EXISTS 183
#define ERROR_FILENAME_EXCED_RANGE 206
#define ERROR_IO_DEVICE 1117
#define ERROR_CANCELLED 1223
#define ERROR_CANT_RESOLVE_FILENAME 1921
#define HRESULT_FROM_WIN32(error) (static_cast<HRESULT>(0x80070000U | static_cast<std::uint32_t>(error)))

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend constexpr bool operator==(const GUID&, const GUID&) = default;
};

using IID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;

// Interface declarations. An inline constant per GUID needs no separate library of definitions.
#define interface struct
#define MIDL_INTERFACE(uuid) struct
#define DECLSPEC_SELECTANY
#define BEGIN_INTERFACE
#define END_INTERFACE
#define CONST_VTBL const
// clang-format off
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
    inline constexpr GUID name{l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}
// clang-format on

// Words of mingw-w64's headers: unions without a name, long literals.
#define __C89_NAMELESS
#define __C89_NAMELESSUNIONNAME
#define __C89_NAMELESSUNIONNAME1
#define __C89_NAMELESSUNIONNAME2
#define __MSABI_LONG(value) value

// `__uuidof(T)` by template: interface headers attach each interface's GUID with __CRT_UUID_DECL.
extern "C++" {
template <typename T>
struct InterfaceId;

template <typename T>
struct InterfaceId<T*> : InterfaceId<T> {};
}

#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)          \
    extern "C++" {                                                                \
    template <>                                                                   \
    struct InterfaceId<type> {                                                    \
        static constexpr GUID value{l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}; \
    };                                                                            \
    }
#define __uuidof(expressionOrType) (InterfaceId<std::remove_cv_t<__typeof__(expressionOrType)>>::value)

/// The monotonic clock, in units of QueryPerformanceFrequency (10 MHz). Any thread.
EXTERN_C BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* counter);
EXTERN_C BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency);

/// The calling thread's last error code, as the last failed Win32-style call left it.
EXTERN_C DWORD WINAPI GetLastError();
EXTERN_C void WINAPI SetLastError(DWORD code);

// NOLINTEND(bugprone-reserved-identifier,modernize-macro-to-enum)
