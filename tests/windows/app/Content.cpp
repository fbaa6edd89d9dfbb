// URIs, streams, pictures and files.

#include <algorithm>

#include "World.h"

namespace app {

MakeObject webFactoryOf(const std::wstring& className);

namespace {

using winrt::Windows::Security::Cryptography::ICryptographicBufferStatics;

using Bytes = std::vector<std::uint8_t>;

/// Text is cut at its marks and nothing else: tests use URIs in their normal form.
struct Uri : Object {
    explicit Uri(std::wstring text) : Object(L"Windows.Foundation.Uri", Threads::any), text(std::move(text)) {
        using I = foundation::IUriRuntimeClass;
        using Decoder = foundation::IWwwFormUrlDecoderRuntimeClass;
        static const auto table =
            Answers<Uri, I>()
                .on<[](Uri& self, void** value) { out(value, winrt::hstring(self.text)); }>(
                    &Methods<I>::get_AbsoluteUri)
                .on<[](Uri& self, void** value) {
                    out(value, winrt::hstring(self.text.substr(0, self.text.find(L':'))));
                }>(&Methods<I>::get_SchemeName)
                .on<[](Uri& self, void** value) {
                    const auto host = self.text.find(L"://") + 3;
                    const auto start = std::min(self.text.find(L'/', host), self.text.size());
                    out(value, winrt::hstring(
                                   self.text.substr(start, self.text.find_first_of(L"?#", start) - start)));
                }>(&Methods<I>::get_Path)
                .on<[](Uri& self, void** value) {
                    out(value, project<foundation::WwwFormUrlDecoder>(self));
                }>(&Methods<I>::get_QueryParsed);
        static const auto decoder = Answers<Uri, Decoder>().on<[](Uri& self, void* name, void** value) {
            const auto marked = L"?" + std::wstring(in<winrt::hstring>(name)) + L"=";
            const auto start = self.text.find(marked);
            if (start == std::wstring::npos) {
                throw winrt::hresult_invalid_argument();
            }
            const auto escaped = self.text.substr(start + marked.size());
            out(value, foundation::Uri::UnescapeComponent(escaped));
        }>(&Methods<Decoder>::GetFirstValueByName);
        add(table);
        add(decoder);
    }

    const std::wstring text;
};

struct UriClass : Object {
    UriClass() : Object(L"Uri's factory", Threads::any) {
        using I = foundation::IUriRuntimeClassFactory;
        using Escape = foundation::IUriEscapeStatics;
        static const auto table = Answers<UriClass, I>().on<[](UriClass&, void* text, void** uri) {
            out(uri, uriOf(std::wstring(in<winrt::hstring>(text))));
        }>(&Methods<I>::CreateUri);
        static const auto escape =
            Answers<UriClass, Escape>()
                .on<[](UriClass&, void* text, void** result) {
                    std::string unescaped;
                    const std::string from = winrt::to_string(in<winrt::hstring>(text));
                    for (std::size_t i = 0; i < from.size(); ++i) {
                        const bool code = from[i] == '%' && i + 2 < from.size();
                        unescaped +=
                            code ? static_cast<char>(std::stoi(from.substr(i + 1, 2), nullptr, 16)) : from[i];
                        i += code ? 2 : 0;
                    }
                    out(result, winrt::to_hstring(unescaped));
                }>(&Methods<Escape>::UnescapeComponent)
                .on<[](UriClass&, void* text, void** result) {
                    constexpr std::string_view digits = "0123456789ABCDEF";
                    std::string escaped;
                    for (const char character : winrt::to_string(in<winrt::hstring>(text))) {
                        const auto code = static_cast<std::uint8_t>(character);
                        if (std::isalnum(code) ||
                            std::string_view("-_.~").find(character) != std::string_view::npos) {
                            escaped += character;
                        } else {
                            escaped.append({'%', digits[code >> 4U], digits[code & 15U]});
                        }
                    }
                    out(result, winrt::to_hstring(escaped));
                }>(&Methods<Escape>::EscapeComponent);
        add(table);
        add(escape);
    }
};

struct Buffer : Object {
    explicit Buffer(Bytes content)
        : Object(L"Windows.Storage.Streams.Buffer", Threads::any), content(std::move(content)) {
        using I = streams::IBuffer;
        using Access = winrt::impl::IBufferByteAccess;
        static const auto table = Answers<Buffer, I>().on<[](Buffer& self, std::uint32_t* length) {
            *length = static_cast<std::uint32_t>(self.content.size());
        }>(&Methods<I>::get_Length);
        static const auto access = [] {
            Table slots(winrt::guid_of<Access>());
            slots.slots[slotOf(&Access::Buffer)] =
                reinterpret_cast<void*>(+[](Face* self, std::uint8_t** bytes) noexcept -> std::int32_t {
                    *bytes = static_cast<Buffer*>(self->object)->content.data();
                    return S_OK;
                });
            return slots;
        }();
        add(table);
        add(access);
    }

    Bytes content;
};

/// A stream in memory with its reader and its decoder, which all share the bytes.
struct Stream : Object {
    Stream() : Object(L"Windows.Storage.Streams.InMemoryRandomAccessStream", Threads::any) {
        using I = streams::IRandomAccessStream;
        using Output = streams::IOutputStream;
        static const auto table =
            Answers<Stream, I>()
                .on<[](Stream& self, std::uint64_t* size) { *size = self.content.size(); }>(
                    &Methods<I>::get_Size)
                .on<[](Stream& self, std::uint64_t, void** input) {
                    *input = self.query(winrt::guid_of<streams::IInputStream>());
                }>(&Methods<I>::GetInputStreamAt);
        static const Answers<Stream, streams::IInputStream> input;
        static const auto output =
            Answers<Stream, Output>().on<[](Stream& self, void* buffer, void** result) {
                const auto& bytes = in<streams::IBuffer>(buffer);
                self.content.assign(bytes.data(), bytes.data() + bytes.Length());
                out(result, written(bytes.Length()));
            }>(&Methods<Output>::WriteAsync);
        add(table);
        add(input);
        add(output);
    }

    static foundation::IAsyncOperationWithProgress<std::uint32_t, std::uint32_t> written(
        std::uint32_t length) {
        co_await EndOfOperation();
        co_return length;
    }

    Bytes content;
};

struct Reader : Object {
    explicit Reader(streams::IInputStream stream)
        : Object(L"Windows.Storage.Streams.DataReader", Threads::any), stream(std::move(stream)) {
        using I = streams::IDataReader;
        static const auto table =
            Answers<Reader, I>()
                .on<[](Reader&, std::uint32_t size, void** result) {
                    out(result, operation<std::uint32_t>([size] {
                                    return size;
                                }).as<streams::DataReaderLoadOperation>());
                }>(&Methods<I>::LoadAsync)
                .on<[](Reader& self, std::uint32_t size, std::uint8_t* bytes) {
                    std::ranges::copy_n(behind<Stream>(self.stream).content.begin(), size, bytes);
                }>(&Methods<I>::ReadBytes);
        add(table);
    }

    streams::IInputStream stream;
};

struct ReaderClass : Object {
    ReaderClass() : Object(L"DataReader's factory", Threads::any) {
        using I = streams::IDataReaderFactory;
        static const auto table = Answers<ReaderClass, I>().on<[](ReaderClass&, void* stream, void** reader) {
            out(reader, create<streams::DataReader, Reader>(in<streams::IInputStream>(stream)));
        }>(&Methods<I>::CreateDataReader);
        add(table);
    }
};

Picture pictureIn(const streams::IRandomAccessStream& stream) {
    Picture picture;
    const Bytes& content = behind<Stream>(stream).content;
    if (content.size() != sizeof picture) {
        throw winrt::hresult_error(static_cast<HRESULT>(0x88982F50));  // no decoder
    }
    std::memcpy(&picture, content.data(), sizeof picture);
    return picture;
}

/// A decoder, its frame and the pixels.
struct Decoder : Object {
    explicit Decoder(Picture picture)
        : Object(L"Windows.Graphics.Imaging.BitmapDecoder", Threads::any), picture(picture) {
        using Frame = imaging::IBitmapFrame;
        using Pixels = imaging::IPixelDataProvider;
        static const Answers<Decoder, imaging::IBitmapDecoder> first;
        static const auto frame =
            Answers<Decoder, Frame>()
                .on<[](Decoder& self, std::uint32_t* width) { *width = self.picture.width; }>(
                    &Methods<Frame>::get_PixelWidth)
                .on<[](Decoder& self, std::uint32_t* height) { *height = self.picture.height; }>(
                    &Methods<Frame>::get_PixelHeight)
                .on<[](Decoder& self, std::int32_t format, std::int32_t alpha, void*,
                       std::int32_t orientation, std::int32_t color, void** result) {
                    if (format != static_cast<std::int32_t>(imaging::BitmapPixelFormat::Bgra8) ||
                        alpha != static_cast<std::int32_t>(imaging::BitmapAlphaMode::Premultiplied) ||
                        orientation || color) {
                        finding("pixels were asked for in another format");
                    }
                    out(result, operation<imaging::PixelDataProvider>([picture = self.picture] {
                            return create<imaging::PixelDataProvider, Decoder>(picture);
                        }));
                }>(&Methods<Frame>::GetPixelDataTransformedAsync);
        static const auto pixels =
            Answers<Decoder, Pixels>().on<[](Decoder& self, std::uint32_t* size, std::uint8_t** bytes) {
                const winrt::com_array<std::uint8_t> all(self.picture.pixels());
                std::tie(*size, *bytes) = winrt::detach_abi(const_cast<winrt::com_array<std::uint8_t>&>(all));
            }>(&Methods<Pixels>::DetachPixelData);
        add(first);
        add(frame);
        add(pixels);
    }

    const Picture picture;
};

struct DecoderClass : Object {
    DecoderClass() : Object(L"BitmapDecoder's factory", Threads::any) {
        using I = imaging::IBitmapDecoderStatics;
        static const auto table =
            Answers<DecoderClass, I>().on<[](DecoderClass&, void* stream, void** result) {
                out(result,
                    operation<imaging::BitmapDecoder>([stream = in<streams::IRandomAccessStream>(stream)] {
                        return create<imaging::BitmapDecoder, Decoder>(pictureIn(stream));
                    }));
            }>(&Methods<I>::CreateAsync);
        add(table);
    }
};

struct Transform : Object {
    Transform() : Object(L"Windows.Graphics.Imaging.BitmapTransform", Threads::any) {
        static const Answers<Transform, imaging::IBitmapTransform> table;
        add(table);
    }
};

/// Its files are the bare pixels.
struct Encoder : Object {
    explicit Encoder(streams::IRandomAccessStream stream)
        : Object(L"Windows.Graphics.Imaging.BitmapEncoder", Threads::any), stream(std::move(stream)) {
        using I = imaging::IBitmapEncoder;
        static const auto table =
            Answers<Encoder, I>()
                .on<[](Encoder& self, std::int32_t, std::int32_t, std::uint32_t width, std::uint32_t height,
                       double, double, std::uint32_t size, std::uint8_t* bytes) {
                    if (size != width * height * 4) {
                        throw winrt::hresult_invalid_argument();
                    }
                    self.pixels.assign(bytes, bytes + size);
                }>(&Methods<I>::SetPixelData)
                .on<[](Encoder& self, void** result) {
                    out(result, action([stream = self.stream, pixels = self.pixels] {
                            behind<Stream>(stream).content = pixels;
                        }));
                }>(&Methods<I>::FlushAsync);
        add(table);
    }

    streams::IRandomAccessStream stream;
    Bytes pixels;
};

struct EncoderClass : Object {
    EncoderClass() : Object(L"BitmapEncoder's factory", Threads::any) {
        using I = imaging::IBitmapEncoderStatics;
        static constexpr winrt::guid png{
            0x27949969, 0x876A, 0x41D7, {0x94, 0x47, 0x56, 0x8F, 0x6A, 0x35, 0xA4, 0xDC}};
        static const auto table =
            Answers<EncoderClass, I>()
                .on<[](EncoderClass&, winrt::guid* id) { *id = png; }>(&Methods<I>::get_PngEncoderId)
                .on<[](EncoderClass&, winrt::guid id, void* stream, void** result) {
                    if (id != png) {
                        throw winrt::hresult_invalid_argument();
                    }
                    out(result, operation<imaging::BitmapEncoder>(
                                    [stream = in<streams::IRandomAccessStream>(stream)] {
                                        return create<imaging::BitmapEncoder, Encoder>(stream);
                                    }));
                }>(&Methods<I>::CreateAsync);
        add(table);
    }
};

/// Who renders keeps the bitmap until that has ended.
struct RenderTarget : Object {
    RenderTarget() : Object(L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap") {
        using I = xaml::Media::Imaging::IRenderTargetBitmap;
        static const auto table =
            Answers<RenderTarget, I>()
                .on<[](RenderTarget& self, std::int32_t* width) {
                    *width = static_cast<std::int32_t>(self.picture.width);
                }>(&Methods<I>::get_PixelWidth)
                .on<[](RenderTarget& self, std::int32_t* height) {
                    *height = static_cast<std::int32_t>(self.picture.height);
                }>(&Methods<I>::get_PixelHeight)
                .on<[](RenderTarget& self, void*, std::int32_t width, std::int32_t height, void** result) {
                    out(result, action([&self, width, height] {
                            ++world().renderings;
                            const double scale = world().rawPixelsPerViewPixel;
                            self.picture = {static_cast<std::uint32_t>(width * scale),
                                            static_cast<std::uint32_t>(height * scale), world().colour};
                        }));
                }>(&Methods<I>::RenderToSizeAsync)
                .on<[](RenderTarget& self, void** result) {
                    out(result, operation<streams::IBuffer>(
                                    [picture = self.picture] { return bufferOf(picture.pixels()); }));
                }>(&Methods<I>::GetPixelsAsync);
        add(table);
    }

    Picture picture;
};

struct File : Object {
    explicit File(std::wstring path)
        : Object(L"Windows.Storage.StorageFile", Threads::any), path(std::move(path)) {
        using I = storage::IStorageFile;
        static const auto table = Answers<File, I>().on<[](File& self, std::int32_t, void** result) {
            out(result, operation<streams::IRandomAccessStream>([path = self.path] {
                    auto stream = create<streams::IRandomAccessStream, Stream>();
                    const std::string& content = world().files.at(path);
                    behind<Stream>(stream).content.assign(content.begin(), content.end());
                    return stream;
                }));
        }>(&Methods<I>::OpenAsync);
        add(table);
    }

    const std::wstring path;
};

struct FileClass : Object {
    FileClass() : Object(L"StorageFile's statics", Threads::any) {
        using I = storage::IStorageFileStatics;
        static const auto table = Answers<FileClass, I>().on<[](FileClass&, void* path, void** result) {
            out(result, operation<storage::StorageFile>([path = std::wstring(in<winrt::hstring>(path))] {
                    if (!world().files.contains(path)) {
                        throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
                    }
                    return create<storage::StorageFile, File>(path);
                }));
        }>(&Methods<I>::GetFileFromPathAsync);
        add(table);
    }
};

struct Cryptography : Object {
    Cryptography() : Object(L"Windows.Security.Cryptography.CryptographicBuffer", Threads::any) {
        using I = ICryptographicBufferStatics;
        static const auto table =
            Answers<Cryptography, I>().on<[](Cryptography&, void* text, std::int32_t, void** buffer) {
                const std::string utf8 = winrt::to_string(in<winrt::hstring>(text));
                out(buffer, bufferOf({utf8.begin(), utf8.end()}));
            }>(&Methods<I>::ConvertStringToBinary);
        add(table);
    }
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
    const Bytes& content = behind<Stream>(stream).content;
    return {content.begin(), content.end()};
}

std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y, std::uint8_t colour) {
    return 0xFF000000U | std::uint32_t{colour} << 16U | (y & 255U) << 8U | (x & 255U);
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
    behind<Stream>(stream).content.assign(bytes, bytes + sizeof picture);
}

MakeObject contentFactoryOf(const std::wstring& className) {
    static const std::map<std::wstring, MakeObject> factories = {
        {L"Windows.Foundation.Uri", make<UriClass>},
        {L"Windows.Graphics.Imaging.BitmapDecoder", make<DecoderClass>},
        {L"Windows.Graphics.Imaging.BitmapEncoder", make<EncoderClass>},
        {L"Windows.Graphics.Imaging.BitmapTransform", make<Factory<Transform>>},
        {L"Windows.Security.Cryptography.CryptographicBuffer", make<Cryptography>},
        {L"Windows.Storage.StorageFile", make<FileClass>},
        {L"Windows.Storage.Streams.DataReader", make<ReaderClass>},
        {L"Windows.Storage.Streams.InMemoryRandomAccessStream", make<Factory<Stream>>},
        {L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap", make<Factory<RenderTarget>>},
    };
    const auto found = factories.find(className);
    return found == factories.end() ? webFactoryOf(className) : found->second;
}

}  // namespace app
