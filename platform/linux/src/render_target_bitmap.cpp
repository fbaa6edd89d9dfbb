#include <winrt/Windows.UI.Xaml.Media.Imaging.h>

#include <winrt/Windows.UI.Xaml.Controls.h>

#include "buffer.h"
#include "native_window.h"
#include "picture.h"
#include "web_view.h"

namespace runtime {
namespace {

struct bitmap_object : winrt::impl::object {
    picture latest;
};

}  // namespace
}  // namespace runtime

namespace winrt::Windows::UI::Xaml::Media::Imaging {

using runtime::bitmap_object;
using runtime::object_of;

RenderTargetBitmap::RenderTargetBitmap() : IInspectable(std::make_shared<bitmap_object>()) {
    runtime::ui_thread::require_current();
}

Foundation::IAsyncAction RenderTargetBitmap::RenderAsync(UIElement const& element, int32_t scaledWidth,
                                                         int32_t scaledHeight) const {
    auto const target = runtime::pointer_of<bitmap_object>(*this);
    if (scaledWidth < 0 || scaledHeight < 0) {
        throw hresult_error(E_INVALIDARG);
    }
    auto const view = element.try_as<Controls::WebView>();
    if (!view) {
        throw hresult_error(E_NOTIMPL, L"Only web views have pictures.");
    }
    auto operation = std::make_shared<impl::async_object<void>>();
    auto const scale = runtime::native_window::instance().scale_factor();
    object_of<runtime::web_view_object>(view).request_picture(
        scaledWidth * scale, scaledHeight * scale, [operation, target](runtime::picture const& picture) {
            target->latest = picture;
            operation->complete();
        });
    return Foundation::IAsyncAction(operation);
}

Foundation::IAsyncOperation<Storage::Streams::IBuffer> RenderTargetBitmap::GetPixelsAsync() const {
    auto operation = std::make_shared<impl::async_object<Storage::Streams::IBuffer>>();
    auto const& latest = object_of<bitmap_object>(*this).latest;
    operation->complete(
        Storage::Streams::IBuffer(std::make_shared<runtime::buffer_object>(latest.pixels, latest.size())));
    return Foundation::IAsyncOperation<Storage::Streams::IBuffer>(operation);
}

int32_t RenderTargetBitmap::PixelWidth() const {
    return object_of<bitmap_object>(*this).latest.width;
}

int32_t RenderTargetBitmap::PixelHeight() const {
    return object_of<bitmap_object>(*this).latest.height;
}

}  // namespace winrt::Windows::UI::Xaml::Media::Imaging
