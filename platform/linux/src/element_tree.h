#pragma once

#include <limits>
#include <vector>

#include <winrt/Windows.UI.Xaml.Controls.h>
#include <winrt/Windows.UI.Xaml.Media.h>

#include "ui_thread.h"

namespace runtime {

struct panel_object;

/// Where an element is to be seen, in view pixels of the window.
struct placement {
    double x = 0;
    double y = 0;
    bool visible = false;
};

/// An object of the element tree. User-interface thread only.
struct dependency_object : winrt::impl::object {};

struct translate_transform_object : dependency_object {
    double x = 0;
    double y = 0;
    std::weak_ptr<struct ui_element_object> target;

    void set(double& coordinate, double value);
};

/// An element: its parent holds it, it knows its parent weakly.
struct ui_element_object : dependency_object, std::enable_shared_from_this<ui_element_object> {
    std::weak_ptr<panel_object> parent;
    std::shared_ptr<translate_transform_object> transform;
    winrt::Windows::UI::Xaml::Visibility visibility = winrt::Windows::UI::Xaml::Visibility::Visible;
    double width = std::numeric_limits<double>::quiet_NaN();
    double height = std::numeric_limits<double>::quiet_NaN();

    /// Called after anything changed that decides where the element is seen: itself or an ancestor.
    virtual void arrange() {}

    /// Whether the element's chain of parents ends at the window, and where that puts it.
    placement locate() const;
};

/// Children of a panel share the panel's origin; their transforms move them from there.
struct panel_object : ui_element_object {
    std::vector<std::shared_ptr<ui_element_object>> children;

    void append(std::shared_ptr<ui_element_object> child);
    void remove(uint32_t index);
    void arrange() override;
};

/// The app's window: the root of the element tree. One per process.
struct window_object : winrt::impl::object {
    std::shared_ptr<ui_element_object> content;

    static std::shared_ptr<window_object> const& current();

    void set_content(std::shared_ptr<ui_element_object> value);
};

/// The implementation behind a handle; the handle must not be null.
template <typename Object>
Object& object_of(winrt::Windows::Foundation::IInspectable const& handle) {
    ui_thread::require_current();
    if (!handle) {
        throw winrt::hresult_error(E_POINTER);
    }
    return static_cast<Object&>(*handle.get_implementation());
}

template <typename Object>
std::shared_ptr<Object> pointer_of(winrt::Windows::Foundation::IInspectable const& handle) {
    return std::static_pointer_cast<Object>(handle.get_implementation());
}

}  // namespace runtime
