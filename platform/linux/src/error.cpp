#include <winrt/base.h>

#include <cstdio>

namespace winrt {

namespace {

/// The platform's texts for the codes that this library throws without a text of its own.
hstring describe(hresult code) {
    switch (static_cast<HRESULT>(code)) {
        case E_NOTIMPL:
            return L"Not implemented";
        case E_NOINTERFACE:
            return L"No such interface supported";
        case E_POINTER:
            return L"Invalid pointer";
        case E_FAIL:
            return L"Unspecified error";
        case E_OUTOFMEMORY:
            return L"Not enough memory resources are available to complete this operation.";
        case E_INVALIDARG:
            return L"The parameter is incorrect.";
        case E_BOUNDS:
            return L"The operation attempted to access data outside the valid range";
        case E_ILLEGAL_METHOD_CALL:
            return L"A method was called at an unexpected time.";
        case E_ILLEGAL_DELEGATE_ASSIGNMENT:
            return L"A delegate was assigned when not allowed.";
        case RPC_E_WRONG_THREAD:
            return L"The application called an interface that was marshalled for a different thread.";
        default: {
            char text[32];
            std::snprintf(text, sizeof text, "Error 0x%08X", static_cast<unsigned>(code.value));
            return to_hstring(text);
        }
    }
}

}  // namespace

hresult_error::hresult_error(hresult code) : failure(code), text(describe(code)) {}

}  // namespace winrt
