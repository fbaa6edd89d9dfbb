#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::UI::ViewManagement {

struct ApplicationView : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(ApplicationView, IInspectable)

    /// The view of the calling thread, which must be the user-interface thread.
    static ApplicationView GetForCurrentView();

    /// The part of the window that can be seen, in view pixels.
    Foundation::Rect VisibleBounds() const;
};

}  // namespace winrt::Windows::UI::ViewManagement
