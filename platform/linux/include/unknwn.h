#pragma once

// IUnknown, in the C++ view or (with CINTERFACE) in the C view of the COM headers.

#include <windows.h>

DEFINE_GUID(IID_IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);

#ifndef CINTERFACE

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    template <typename Interface>
    HRESULT STDMETHODCALLTYPE QueryInterface(Interface** object) {
        return QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(object));
    }
};

__CRT_UUID_DECL(IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

#define IID_PPV_ARGS(object) __uuidof(**(object)), reinterpret_cast<void**>(object)

#else

struct IUnknown;

struct IUnknownVtbl {
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(IUnknown* self, REFIID id, void** object);
    ULONG(STDMETHODCALLTYPE* AddRef)(IUnknown* self);
    ULONG(STDMETHODCALLTYPE* Release)(IUnknown* self);
};

struct IUnknown {
    CONST_VTBL IUnknownVtbl* lpVtbl;
};

#endif
