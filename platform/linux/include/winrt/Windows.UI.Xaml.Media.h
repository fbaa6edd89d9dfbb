#pragma once

#include <winrt/Windows.UI.Xaml.h>

namespace winrt::Windows::UI::Xaml::Media {

/// Moves an element from where its panel puts it, in view pixels.
struct TranslateTransform : Transform {
    TranslateTransform();
    WINRT_LINUX_HANDLE(TranslateTransform, Transform)

    void X(double value) const;
    void Y(double value) const;
};

struct VisualTreeHelper {
    VisualTreeHelper() = delete;

    static int32_t GetChildrenCount(DependencyObject const& reference);
    static DependencyObject GetChild(DependencyObject const& reference, int32_t childIndex);
};

}  // namespace winrt::Windows::UI::Xaml::Media
