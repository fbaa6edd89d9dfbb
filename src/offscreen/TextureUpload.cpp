#include <optional>

#include "exports/HostChannel.h"
#include "exports/HostMessages.h"
#include "offscreen/AtEnd.h"
#include "offscreen/LogTexts.h"
#include "offscreen/PixelCopy.h"
#include "offscreen/UwpWebView3D.h"

void UwpWebView3D::render() {
    std::shared_ptr<const PixelFrame> frame;
    {
        const std::lock_guard lock(frameMutex);
        frame.swap(pendingFrame);
        isShowing = frame != nullptr;
    }
    if (!frame) {
        return;
    }
    std::shared_ptr<CompletionEvent> taken;
    {
        const AtEnd letNextCome([&] {
            frame = nullptr;
            const std::lock_guard lock(frameMutex);
            isShowing = false;
            taken.swap(frameTaken);
        });
        if (!destroyed && !frame->bytes.empty()) {
            show(*frame);
        }
    }
    if (taken) {
        postToUIThread([taken] { taken->set(); });
    }
}

void UwpWebView3D::show(const PixelFrame& frame) {
    std::optional<HRESULT> uploaded;
    const AtEnd tryAgain([this, &uploaded] {
        if (FAILED(uploaded.value_or(E_FAIL))) {
            publishUnchanged = true;
        }
    });
    // A missing device was reported when the texture was made.
    winrt::com_ptr<ID3D11DeviceContext> context;
    if (const auto device = engineDevice()) {
        device->GetImmediateContext(context.put());
    }
    winrt::com_ptr<ID3D11ShaderResourceView> announced;
    {
        const std::lock_guard lock(textureMutex);
        if (texture && context) {
            uploaded = upload(frame, *context);
            announced = std::move(textureToAnnounce);
        }
    }
    if (uploaded && FAILED(*uploaded)) {
        logError(log_texts::mapFailed + std::to_string(static_cast<std::int32_t>(*uploaded)));
    }
    if (announced) {
        const auto address = reinterpret_cast<std::uintptr_t>(announced.get());
        if (sendMessage(messages::textureChanged, std::to_string(std::uint64_t{address}))) {
            // The reference is the engine's now.
            announced.detach();
        }
    }
}

HRESULT UwpWebView3D::upload(const PixelFrame& frame, ID3D11DeviceContext& context) {
    D3D11_TEXTURE2D_DESC description{};
    texture->GetDesc(&description);
    D3D11_MAPPED_SUBRESOURCE mapped{};
    const HRESULT result = context.Map(texture.get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped);
    if (FAILED(result)) {
        return result;
    }
    copyToTexture({frame.width, frame.height, frame.bytes}, static_cast<std::uint8_t*>(mapped.pData),
                  mapped.RowPitch, description.Width, description.Height);
    context.Unmap(texture.get(), 0);
    context.Flush();
    return result;
}
