#pragma once

#include <winrt/Windows.Foundation.h>

// Every object of this namespace and those below belongs to the user-interface thread; a call from another
// thread throws RPC_E_WRONG_THREAD. The last reference may be dropped anywhere.

namespace winrt::Windows::UI::Xaml {

enum class Visibility : int32_t { Visible = 0, Collapsed = 1 };

enum class HorizontalAlignment : int32_t { Left = 0 };

enum class VerticalAlignment : int32_t { Top = 0 };

enum class FocusState : int32_t { Programmatic = 3 };

struct DependencyObject : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(DependencyObject, IInspectable)
};

namespace Media {
struct Transform : DependencyObject {
    WINRT_LINUX_HANDLE(Transform, DependencyObject)
};
}  // namespace Media

struct UIElement : DependencyObject {
    WINRT_LINUX_HANDLE(UIElement, DependencyObject)

    void Visibility(Xaml::Visibility value) const;
    void RenderTransform(Media::Transform const& value) const;
};

struct FrameworkElement : UIElement {
    WINRT_LINUX_HANDLE(FrameworkElement, UIElement)

    /// The size asked for in view pixels; NaN when none was. A negative or infinite size is E_INVALIDARG.
    double Width() const;
    void Width(double value) const;
    double Height() const;
    void Height(double value) const;

    /// Elements stand at the top left of their panel; the two say so for platforms with another default.
    void HorizontalAlignment(Xaml::HorizontalAlignment value) const;
    void VerticalAlignment(Xaml::VerticalAlignment value) const;

    DependencyObject Parent() const;
};

struct Window : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(Window, IInspectable)

    /// The window of the calling thread; null on a thread that has none.
    static Window Current();

    UIElement Content() const;
    void Content(UIElement const& value) const;
};

}  // namespace winrt::Windows::UI::Xaml
