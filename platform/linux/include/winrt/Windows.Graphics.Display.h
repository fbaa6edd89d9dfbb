#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::Graphics::Display {

struct DisplayInformation : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(DisplayInformation, IInspectable)

    /// The display of the calling thread's view, which must be the user-interface thread.
    static DisplayInformation GetForCurrentView();

    double RawPixelsPerViewPixel() const;
};

}  // namespace winrt::Windows::Graphics::Display
