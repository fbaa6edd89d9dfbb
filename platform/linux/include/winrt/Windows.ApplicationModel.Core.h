#pragma once

#include <winrt/Windows.UI.Core.h>

namespace winrt::Windows::ApplicationModel::Core {

struct CoreApplicationView : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(CoreApplicationView, IInspectable)

    UI::Core::CoreDispatcher Dispatcher() const;
};

struct CoreApplication {
    CoreApplication() = delete;

    /// The view of the app's window. The first call starts the user-interface thread, and throws when that is
    /// impossible (no display, or a default main context that somebody else holds without running it).
    static CoreApplicationView MainView();
};

}  // namespace winrt::Windows::ApplicationModel::Core
