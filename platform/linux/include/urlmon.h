#pragma once

// The session options of the platform's URL library, as far as web views take part: the user agent.

#include <windows.h>

/// The user agent of all web views of the process, a text of characters of one byte.
#define URLMON_OPTION_USERAGENT 0x10000001

/// Sets the user agent: at most `length` bytes of the buffer, up to a NUL. An empty text brings back the
/// default. E_INVALIDARG for another option, and for a text that cannot be sent as a User-Agent header, which
/// is a list of products ("Name" or "Name/version") and comments in parentheses with blanks between them. Any
/// thread.
EXTERN_C HRESULT WINAPI UrlMkSetSessionOption(DWORD option, LPVOID buffer, DWORD length, DWORD reserved);

/// Gets the user agent with a NUL at its end; `lengthOut` receives the number of bytes with the NUL.
/// E_OUTOFMEMORY when the buffer is too small. Any thread.
EXTERN_C HRESULT WINAPI UrlMkGetSessionOption(DWORD option, LPVOID buffer, DWORD length, DWORD* lengthOut,
                                              DWORD reserved);
