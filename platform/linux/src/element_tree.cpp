#include "element_tree.h"

#include <algorithm>
#include <cmath>

namespace runtime {

void translate_transform_object::set(double& coordinate, double value) {
    coordinate = value;
    if (auto const element = target.lock()) {
        element->arrange();
    }
}

placement ui_element_object::locate() const {
    placement result{.visible = true};
    auto const* element = this;
    std::shared_ptr<ui_element_object> holder;
    while (true) {
        result.visible &= element->visibility == winrt::Windows::UI::Xaml::Visibility::Visible;
        if (element->transform) {
            result.x += element->transform->x;
            result.y += element->transform->y;
        }
        if (auto above = element->parent.lock()) {
            holder = std::move(above);
            element = holder.get();
        } else {
            result.visible &= element == window_object::current()->content.get();
            return result;
        }
    }
}

void panel_object::append(std::shared_ptr<ui_element_object> child) {
    if (!child) {
        throw winrt::hresult_error(E_POINTER);
    }
    if (child->parent.lock()) {
        throw winrt::hresult_error(E_FAIL, L"Element is already the child of another element.");
    }
    child->parent = std::static_pointer_cast<panel_object>(shared_from_this());
    children.push_back(std::move(child));
    children.back()->arrange();
}

void panel_object::remove(uint32_t index) {
    if (index >= children.size()) {
        throw winrt::hresult_error(E_BOUNDS);
    }
    auto const child = children[index];
    children.erase(children.begin() + index);
    child->parent.reset();
    child->arrange();
}

void panel_object::arrange() {
    for (auto const& child : children) {
        child->arrange();
    }
}

std::shared_ptr<window_object> const& window_object::current() {
    // Never destroyed: the elements that it holds belong to a thread that ends with the process.
    static auto* const window = [] {
        auto* created = new std::shared_ptr<window_object>(std::make_shared<window_object>());
        (*created)->content = make_ui_object<panel_object>();
        return created;
    }();
    return *window;
}

void window_object::set_content(std::shared_ptr<ui_element_object> value) {
    auto const previous = std::exchange(content, std::move(value));
    if (previous) {
        previous->arrange();
    }
    if (content) {
        content->arrange();
    }
}

namespace {

void set_size(ui_element_object& element, double& dimension, double value) {
    if (value < 0 || std::isinf(value)) {
        throw winrt::hresult_error(E_INVALIDARG);
    }
    dimension = value;
    element.arrange();
}

}  // namespace
}  // namespace runtime

namespace winrt::impl {

using namespace Windows::UI::Xaml;

template <>
bool is_a<DependencyObject>(object const& candidate) noexcept {
    return dynamic_cast<runtime::dependency_object const*>(&candidate);
}
template <>
bool is_a<UIElement>(object const& candidate) noexcept {
    return dynamic_cast<runtime::ui_element_object const*>(&candidate);
}
template <>
bool is_a<FrameworkElement>(object const& candidate) noexcept {
    return dynamic_cast<runtime::ui_element_object const*>(&candidate);
}
template <>
bool is_a<Controls::Panel>(object const& candidate) noexcept {
    return dynamic_cast<runtime::panel_object const*>(&candidate);
}

}  // namespace winrt::impl

namespace winrt::Windows::UI::Xaml {

using runtime::object_of;
using runtime::pointer_of;
using runtime::ui_element_object;

void UIElement::Visibility(Xaml::Visibility value) const {
    auto& element = object_of<ui_element_object>(*this);
    element.visibility = value;
    element.arrange();
}

void UIElement::RenderTransform(Media::Transform const& value) const {
    auto& element = object_of<ui_element_object>(*this);
    if (element.transform) {
        element.transform->target.reset();
    }
    element.transform = pointer_of<runtime::translate_transform_object>(value);
    if (element.transform) {
        element.transform->target = element.weak_from_this();
    }
    element.arrange();
}

double FrameworkElement::Width() const {
    return object_of<ui_element_object>(*this).width;
}

void FrameworkElement::Width(double value) const {
    auto& element = object_of<ui_element_object>(*this);
    runtime::set_size(element, element.width, value);
}

double FrameworkElement::Height() const {
    return object_of<ui_element_object>(*this).height;
}

void FrameworkElement::Height(double value) const {
    auto& element = object_of<ui_element_object>(*this);
    runtime::set_size(element, element.height, value);
}

void FrameworkElement::HorizontalAlignment(Xaml::HorizontalAlignment) const {
    runtime::ui_thread::require_current();
}

void FrameworkElement::VerticalAlignment(Xaml::VerticalAlignment) const {
    runtime::ui_thread::require_current();
}

DependencyObject FrameworkElement::Parent() const {
    return DependencyObject(object_of<ui_element_object>(*this).parent.lock());
}

Window Window::Current() {
    return runtime::ui_thread::is_current() ? Window(runtime::window_object::current()) : Window(nullptr);
}

UIElement Window::Content() const {
    return UIElement(object_of<runtime::window_object>(*this).content);
}

void Window::Content(UIElement const& value) const {
    object_of<runtime::window_object>(*this).set_content(pointer_of<ui_element_object>(value));
}

}  // namespace winrt::Windows::UI::Xaml

namespace winrt::Windows::UI::Xaml::Controls {

using runtime::panel_object;

UIElementCollection Panel::Children() const {
    runtime::ui_thread::require_current();
    return UIElementCollection(implementation);
}

bool UIElementCollection::IndexOf(UIElement const& value, uint32_t& index) const {
    auto const& children = runtime::object_of<panel_object>(*this).children;
    auto const found = std::ranges::find(children, value.get_implementation());
    index = found == children.end() ? 0 : static_cast<uint32_t>(found - children.begin());
    return found != children.end();
}

void UIElementCollection::Append(UIElement const& value) const {
    runtime::object_of<panel_object>(*this).append(runtime::pointer_of<runtime::ui_element_object>(value));
}

void UIElementCollection::RemoveAt(uint32_t index) const {
    runtime::object_of<panel_object>(*this).remove(index);
}

}  // namespace winrt::Windows::UI::Xaml::Controls

namespace winrt::Windows::UI::Xaml::Media {

using runtime::object_of;
using runtime::translate_transform_object;

TranslateTransform::TranslateTransform() : Transform(runtime::make_ui_object<translate_transform_object>()) {
    runtime::ui_thread::require_current();
}

void TranslateTransform::X(double value) const {
    auto& transform = object_of<translate_transform_object>(*this);
    transform.set(transform.x, value);
}

void TranslateTransform::Y(double value) const {
    auto& transform = object_of<translate_transform_object>(*this);
    transform.set(transform.y, value);
}

int32_t VisualTreeHelper::GetChildrenCount(DependencyObject const& reference) {
    auto const* panel =
        dynamic_cast<runtime::panel_object*>(&object_of<runtime::dependency_object>(reference));
    return panel ? static_cast<int32_t>(panel->children.size()) : 0;
}

DependencyObject VisualTreeHelper::GetChild(DependencyObject const& reference, int32_t childIndex) {
    if (childIndex < 0 || childIndex >= GetChildrenCount(reference)) {
        throw hresult_error(E_INVALIDARG);
    }
    return DependencyObject(
        object_of<runtime::panel_object>(reference).children[static_cast<size_t>(childIndex)]);
}

}  // namespace winrt::Windows::UI::Xaml::Media
