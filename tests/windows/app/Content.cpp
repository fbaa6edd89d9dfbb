// URIs, streams, pictures and files.

#include <algorithm>
#include <cctype>

#include "World.h"

namespace app {

namespace {

using winrt::Windows::Security::Cryptography::ICryptographicBufferStatics;
using Bytes = std::vector<std::uint8_t>;

/// Text is cut at its marks and nothing else: tests use URIs in their normal form.
struct Uri : Object {
    explicit Uri(std::wstring text) : Object(L"Windows.Foundation.Uri", Threads::any), text(std::move(text)) {
        using Decoder = foundation::IWwwFormUrlDecoderRuntimeClass;
        add([] {
            using M = Methods<foundation::IUriRuntimeClass>;
            return Answers<Uri, foundation::IUriRuntimeClass>()
                .on<[](Uri& self) { return winrt::hstring(self.text); }>(&M::get_AbsoluteUri)
                .on<[](Uri& self) { return winrt::hstring(self.text.substr(0, self.text.find(L':'))); }>(
                    &M::get_SchemeName)
                .on<[](Uri& self) {
                    const auto host = self.text.find(L"://") + 3;
                    const auto start = std::min(self.text.find(L'/', host), self.text.size());
                    return winrt::hstring(
                        self.text.substr(start, self.text.find_first_of(L"?#", start) - start));
                }>(&M::get_Path)
                .on<[](Uri& self) { return project<foundation::WwwFormUrlDecoder>(self); }>(
                    &M::get_QueryParsed);
        });
        add([] {
            return Answers<Uri, Decoder>().on<[](Uri& self, const winrt::hstring& name) {
                const auto marked = L"?" + std::wstring(name) + L"=";
                const auto start = self.text.find(marked);
                if (start == std::wstring::npos) {
                    throw winrt::hresult_invalid_argument();
                }
                return unescape(winrt::hstring(self.text.substr(start + marked.size())));
            }>(&Methods<Decoder>::GetFirstValueByName);
        });
    }

    static winrt::hstring unescape(const winrt::hstring& escaped) {
        std::string unescaped;
        const std::string from = winrt::to_string(escaped);
        for (std::size_t i = 0; i < from.size(); ++i) {
            const bool code = from[i] == '%' && i + 2 < from.size();
            unescaped += code ? static_cast<char>(std::stoi(from.substr(i + 1, 2), nullptr, 16)) : from[i];
            i += code ? 2 : 0;
        }
        return winrt::to_hstring(unescaped);
    }

    static winrt::hstring escape(const winrt::hstring& text) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        std::string escaped;
        for (const char character : winrt::to_string(text)) {
            const auto code = static_cast<std::uint8_t>(character);
            if (std::isalnum(code) || std::strchr("-_.~", character)) {
                escaped += character;
            } else {
                escaped.append({'%', digits[code >> 4U], digits[code & 15U]});
            }
        }
        return winrt::to_hstring(escaped);
    }

    const std::wstring text;
};

struct Buffer : Object {
    explicit Buffer(Bytes bytes)
        : Object(L"Windows.Storage.Streams.Buffer", Threads::any), bytes(std::move(bytes)) {
        using Access = winrt::impl::IBufferByteAccess;
        add([] {
            return Answers<Buffer, streams::IBuffer>().on<[](Buffer& self) { return self.bytes.size(); }>(
                &Methods<streams::IBuffer>::get_Length);
        });
        add([] {
            Table table(winrt::guid_of<Access>());
            table.slots[slotOf(&Access::Buffer)] =
                reinterpret_cast<void*>(+[](Face* self, std::uint8_t** bytes) noexcept -> std::int32_t {
                    *bytes = static_cast<Buffer*>(self->object)->bytes.data();
                    return S_OK;
                });
            return table;
        });
    }

    Bytes bytes;
};

struct Stream : Object {
    Stream() : Object(L"Windows.Storage.Streams.InMemoryRandomAccessStream", Threads::any) {
        using I = streams::IRandomAccessStream;
        add([] {
            return Answers<Stream, I>()
                .on<[](Stream& self) { return self.bytes.size(); }>(&Methods<I>::get_Size)
                .on<[](Stream& self, std::uint64_t) {
                    return self.query(winrt::guid_of<streams::IInputStream>());
                }>(&Methods<I>::GetInputStreamAt);
        });
        add([] {
            return Answers<Stream, streams::IOutputStream>()
                .on<[](Stream& self, const streams::IBuffer& buffer) {
                    self.bytes = behind<Buffer>(buffer).bytes;
                    return written(static_cast<std::uint32_t>(self.bytes.size()));
                }>(&Methods<streams::IOutputStream>::WriteAsync);
        });
        addBare<streams::IInputStream>();
    }

    static foundation::IAsyncOperationWithProgress<std::uint32_t, std::uint32_t> written(
        std::uint32_t length) {
        co_await EndOfOperation();
        co_return length;
    }

    Bytes bytes;
};

struct Reader : Object {
    explicit Reader(streams::IInputStream stream)
        : Object(L"Windows.Storage.Streams.DataReader", Threads::any), stream(std::move(stream)) {
        using I = streams::IDataReader;
        add([] {
            return Answers<Reader, I>()
                .on<[](Reader&, std::uint32_t size) {
                    return operation<std::uint32_t>([size] { return size; });
                }>(&Methods<I>::LoadAsync)
                .on<[](Reader& self, std::uint32_t size, std::uint8_t* bytes) {
                    std::ranges::copy_n(behind<Stream>(self.stream).bytes.begin(), size, bytes);
                }>(&Methods<I>::ReadBytes);
        });
    }

    streams::IInputStream stream;
};

Picture pictureIn(const streams::IRandomAccessStream& stream) {
    Picture picture;
    const Bytes& bytes = behind<Stream>(stream).bytes;
    if (bytes.size() != sizeof picture) {
        throw winrt::hresult_error(static_cast<HRESULT>(0x88982F50));  // no decoder
    }
    std::memcpy(&picture, bytes.data(), sizeof picture);
    return picture;
}

/// A decoder, its frame and the pixels.
struct Decoder : Object {
    explicit Decoder(Picture picture)
        : Object(L"Windows.Graphics.Imaging.BitmapDecoder", Threads::any), picture(picture) {
        using Frame = imaging::IBitmapFrame;
        using Pixels = imaging::IPixelDataProvider;
        addBare<imaging::IBitmapDecoder>();
        add([] {
            return Answers<Decoder, Frame>()
                .on<[](Decoder& self) { return self.picture.width; }>(&Methods<Frame>::get_PixelWidth)
                .on<[](Decoder& self) { return self.picture.height; }>(&Methods<Frame>::get_PixelHeight)
                .on<[](Decoder& self, imaging::BitmapPixelFormat format, imaging::BitmapAlphaMode alpha) {
                    check(format == imaging::BitmapPixelFormat::Bgra8 &&
                              alpha == imaging::BitmapAlphaMode::Premultiplied,
                          "pixels of another format were asked for");
                    return decoded(self.picture);
                }>(&Methods<Frame>::GetPixelDataTransformedAsync);
        });
        add([] {
            return Answers<Decoder, Pixels>()
                .on<[](Decoder& self, std::uint32_t* size, std::uint8_t** bytes) {
                    winrt::com_array<std::uint8_t> all(self.picture.pixels());
                    std::tie(*size, *bytes) = winrt::detach_abi(all);
                }>(&Methods<Pixels>::DetachPixelData);
        });
    }

    static foundation::IAsyncOperation<imaging::PixelDataProvider> decoded(Picture picture) {
        return operation<imaging::PixelDataProvider>(
            [picture] { return create<imaging::PixelDataProvider, Decoder>(picture); });
    }

    const Picture picture;
};

struct Transform : Object {
    Transform() : Object(L"Windows.Graphics.Imaging.BitmapTransform", Threads::any) {
        addBare<imaging::IBitmapTransform>();
    }
};

/// Its files are the bare pixels.
struct Encoder : Object {
    explicit Encoder(streams::IRandomAccessStream stream)
        : Object(L"Windows.Graphics.Imaging.BitmapEncoder", Threads::any), stream(std::move(stream)) {
        using I = imaging::IBitmapEncoder;
        add([] {
            return Answers<Encoder, I>()
                .on<[](Encoder& self, std::int32_t, std::int32_t, std::uint32_t width, std::uint32_t height,
                       double, double, std::uint32_t size, std::uint8_t* bytes) {
                    check(size == width * height * 4, "the encoder's pixels have another size");
                    self.pixels.assign(bytes, bytes + size);
                }>(&Methods<I>::SetPixelData)
                .on<[](Encoder& self) {
                    return action([stream = self.stream, pixels = self.pixels] {
                        behind<Stream>(stream).bytes = pixels;
                    });
                }>(&Methods<I>::FlushAsync);
        });
    }

    static constexpr winrt::guid png{
        0x27949969, 0x876A, 0x41D7, {0x94, 0x47, 0x56, 0x8F, 0x6A, 0x35, 0xA4, 0xDC}};

    streams::IRandomAccessStream stream;
    Bytes pixels;
};

/// Who renders keeps the bitmap until that has ended.
struct RenderTarget : Object {
    RenderTarget() : Object(L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap") {
        add([] {
            using M = Methods<xaml::Media::Imaging::IRenderTargetBitmap>;
            return Answers<RenderTarget, xaml::Media::Imaging::IRenderTargetBitmap>()
                .on<[](RenderTarget& self) { return self.picture.width; }>(&M::get_PixelWidth)
                .on<[](RenderTarget& self) { return self.picture.height; }>(&M::get_PixelHeight)
                .on<[](RenderTarget& self, void*, std::int32_t width, std::int32_t height) {
                    return action([&self, width, height] {
                        ++world().renderings;
                        self.picture = pictureOf(width, height);
                    });
                }>(&M::RenderToSizeAsync)
                .on<[](RenderTarget& self) {
                    return operation<streams::IBuffer>(
                        [picture = self.picture] { return bufferOf(picture.pixels()); });
                }>(&M::GetPixelsAsync);
        });
    }

    Picture picture;
};

struct File : Object {
    explicit File(std::wstring path)
        : Object(L"Windows.Storage.StorageFile", Threads::any), path(std::move(path)) {
        add([] {
            return Answers<File, storage::IStorageFile>().on<[](File& self, std::int32_t) {
                return operation<streams::IRandomAccessStream>([content = world().files.at(self.path)] {
                    auto stream = create<streams::IRandomAccessStream, Stream>();
                    behind<Stream>(stream).bytes.assign(content.begin(), content.end());
                    return stream;
                });
            }>(&Methods<storage::IStorageFile>::OpenAsync);
        });
    }

    const std::wstring path;
};

}  // namespace

foundation::Uri uriOf(const std::wstring& text) {
    if (text.find(L':') == std::wstring::npos) {
        throw winrt::hresult_invalid_argument();
    }
    return create<foundation::Uri, Uri>(text);
}

std::wstring textOf(const foundation::Uri& uri) {
    return behind<Uri>(uri).text;
}

streams::IBuffer bufferOf(Bytes bytes) {
    return create<streams::IBuffer, Buffer>(std::move(bytes));
}

std::string contentOf(const streams::IInputStream& stream) {
    const Bytes& bytes = behind<Stream>(stream).bytes;
    return {bytes.begin(), bytes.end()};
}

std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y, std::uint8_t colour) {
    return 0xFF000000U | std::uint32_t{colour} << 16U | (y & 255U) << 8U | (x & 255U);
}

Picture pictureOf(double width, double height) {
    const double scale = world().rawPixelsPerViewPixel;
    return {static_cast<std::uint32_t>(width * scale), static_cast<std::uint32_t>(height * scale),
            world().colour};
}

Bytes Picture::pixels() const {
    Bytes bytes(std::size_t{width} * height * 4);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t pixel = pixelAt(x, y, colour);
            std::memcpy(&bytes[(std::size_t{y} * width + x) * 4], &pixel, sizeof pixel);
        }
    }
    return bytes;
}

void writePicture(const streams::IRandomAccessStream& stream, const Picture& picture) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&picture);
    behind<Stream>(stream).bytes.assign(bytes, bytes + sizeof picture);
}

Factories content() {
    return {
        {L"Windows.Foundation.Uri",
         statics(
             [] {
                 using I = foundation::IUriRuntimeClassFactory;
                 return Answers<Object, I>()
                     .on<[](Object&, const winrt::hstring& text) { return uriOf(std::wstring(text)); }>(
                         &Methods<I>::CreateUri);
             },
             [] {
                 using I = foundation::IUriEscapeStatics;
                 return Answers<Object, I>()
                     .on<[](Object&, const winrt::hstring& text) { return Uri::unescape(text); }>(
                         &Methods<I>::UnescapeComponent)
                     .on<[](Object&, const winrt::hstring& text) { return Uri::escape(text); }>(
                         &Methods<I>::EscapeComponent);
             })},
        {L"Windows.Graphics.Imaging.BitmapDecoder", statics([] {
             using I = imaging::IBitmapDecoderStatics;
             return Answers<Object, I>().on<[](Object&, const streams::IRandomAccessStream& stream) {
                 return operation<imaging::BitmapDecoder>(
                     [stream] { return create<imaging::BitmapDecoder, Decoder>(pictureIn(stream)); });
             }>(&Methods<I>::CreateAsync);
         })},
        {L"Windows.Graphics.Imaging.BitmapEncoder", statics([] {
             using I = imaging::IBitmapEncoderStatics;
             return Answers<Object, I>()
                 .on<[](Object&) { return Encoder::png; }>(&Methods<I>::get_PngEncoderId)
                 .on<[](Object&, winrt::guid id, const streams::IRandomAccessStream& stream) {
                     check(id == Encoder::png, "another encoder was asked for");
                     return operation<imaging::BitmapEncoder>(
                         [stream] { return create<imaging::BitmapEncoder, Encoder>(stream); });
                 }>(&Methods<I>::CreateAsync);
         })},
        {L"Windows.Graphics.Imaging.BitmapTransform", factory<Transform>()},
        {L"Windows.Security.Cryptography.CryptographicBuffer", statics([] {
             return Answers<Object, ICryptographicBufferStatics>()
                 .on<[](Object&, const winrt::hstring& text, std::int32_t) {
                     const std::string utf8 = winrt::to_string(text);
                     return bufferOf({utf8.begin(), utf8.end()});
                 }>(&Methods<ICryptographicBufferStatics>::ConvertStringToBinary);
         })},
        {L"Windows.Storage.StorageFile", statics([] {
             using I = storage::IStorageFileStatics;
             return Answers<Object, I>().on<[](Object&, const winrt::hstring& path) {
                 return operation<storage::StorageFile>([path = std::wstring(path)] {
                     if (!world().files.contains(path)) {
                         throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
                     }
                     return create<storage::StorageFile, File>(path);
                 });
             }>(&Methods<I>::GetFileFromPathAsync);
         })},
        {L"Windows.Storage.Streams.DataReader", statics([] {
             using I = streams::IDataReaderFactory;
             return Answers<Object, I>().on<[](Object&, const streams::IInputStream& stream) {
                 return create<streams::DataReader, Reader>(stream);
             }>(&Methods<I>::CreateDataReader);
         })},
        {L"Windows.Storage.Streams.InMemoryRandomAccessStream", factory<Stream>()},
        {L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap", factory<RenderTarget>()},
    };
}

}  // namespace app
