// URIs, streams, files and downloads.

#include <algorithm>
#include <cctype>

#include "World.h"

namespace app {

namespace {

using namespace winrt::Windows::Networking::BackgroundTransfer;
using namespace winrt::Windows::Security::Cryptography;
using winrt::hstring;

hstring unescape(const hstring& escaped) {
    std::string unescaped;
    const std::string from = winrt::to_string(escaped);
    for (std::size_t i = 0; i < from.size(); ++i) {
        const bool code = from[i] == '%' && i + 2 < from.size();
        unescaped += code ? static_cast<char>(std::stoi(from.substr(i + 1, 2), nullptr, 16)) : from[i];
        i += code ? 2 : 0;
    }
    return winrt::to_hstring(unescaped);
}

hstring escape(const hstring& text) {
    std::string escaped;
    for (const char character : winrt::to_string(text)) {
        const bool plain =
            std::isalnum(static_cast<unsigned char>(character)) || std::strchr("-_.~", character);
        escaped +=
            plain ? std::string(1, character) : std::format("%{:02X}", static_cast<unsigned char>(character));
    }
    return winrt::to_hstring(escaped);
}

std::wstring pathIn(const std::wstring& uri) {
    const auto start = std::min(uri.find(L'/', uri.find(L"://") + 3), uri.size());
    return uri.substr(start, uri.find_first_of(L"?#", start) - start);
}

foundation::WwwFormUrlDecoder queryIn(const std::wstring& uri) {
    using I = foundation::IWwwFormUrlDecoderRuntimeClass;
    return make<I>(L"Windows.Foundation.WwwFormUrlDecoder")
        .on<&Methods<I>::GetFirstValueByName>([uri](const hstring& name) {
            const auto marked = L"?" + std::wstring(name) + L"=";
            const auto start = uri.find(marked);
            if (start == std::wstring::npos) {
                throw winrt::hresult_invalid_argument();
            }
            return unescape(hstring(uri.substr(start + marked.size())));
        });
}

foundation::IAsyncOperationWithProgress<std::uint32_t, std::uint32_t> written(std::uint32_t length) {
    co_await EndOfOperation();
    co_return length;
}

streams::IRandomAccessStream streamOver(std::shared_ptr<Bytes> bytes) {
    using I = streams::IRandomAccessStream;
    using Output = streams::IOutputStream;
    return make<I>(L"Windows.Storage.Streams.InMemoryRandomAccessStream")
        .on<&Methods<I>::get_Size>([bytes] { return bytes->size(); })
        .on<&Methods<I>::GetInputStreamAt>(
            [bytes](std::uint64_t) { return streams::IInputStream(streamOver(bytes)); })
        .holding(bytes)
        .as<streams::IInputStream>()
        .as<Output>()
        .on<&Methods<Output>::WriteAsync>([bytes](const streams::IBuffer& buffer) {
            *bytes = behind<Bytes>(buffer);
            return written(static_cast<std::uint32_t>(bytes->size()));
        });
}

streams::DataReader readerOf(const streams::IInputStream& stream) {
    using I = streams::IDataReader;
    return make<I>(L"Windows.Storage.Streams.DataReader")
        .on<&Methods<I>::LoadAsync>(
            [](std::uint32_t size) { return operation<std::uint32_t>([size] { return size; }); })
        .on<&Methods<I>::ReadBytes>([stream](std::uint32_t size, std::uint8_t* bytes) {
            std::ranges::copy_n(contentOf(stream).begin(), size, bytes);
        });
}

storage::StorageFile fileAt(const std::wstring& first) {
    using I = storage::IStorageFile;
    using Item = Methods<storage::IStorageItem>;
    const auto path = std::make_shared<std::wstring>(first);
    return make<I>(L"Windows.Storage.StorageFile")
        .on<&Methods<I>::OpenAsync>([path](std::int32_t) {
            return operation<streams::IRandomAccessStream>(
                [content = world()->files.at(*path)] { return streamOf({content.begin(), content.end()}); });
        })
        .as<storage::IStorageItem>()
        .on<&Item::get_Path>([path] { return hstring(*path); })
        .on<&Item::RenameAsync>([path](const hstring& name, std::int32_t) {
            return action([path, name = std::wstring(name)] { *path = L"C:\\temporary\\" + name; });
        })
        .on<&Item::DeleteAsyncOverloadDefaultOptions>(
            [path] { return action([path] { world()->note(L"deleted: " + *path); }); });
}

auto getFile(const hstring& path) {
    return operation<storage::StorageFile>([path = std::wstring(path)] {
        if (!world()->files.contains(path)) {
            throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
        }
        return fileAt(path);
    });
}

storage::StorageFolder temporaryFolder() {
    using I = storage::IStorageFolder;
    return make<I>(L"Windows.Storage.StorageFolder")
        .on<&Methods<I>::CreateFileAsync>([](const hstring& name, std::int32_t) {
            return operation<storage::StorageFile>(
                [name = std::wstring(name)] { return fileAt(L"C:\\temporary\\" + name); });
        });
}

storage::ApplicationData applicationData() {
    using I = storage::IApplicationData;
    return make<I>(L"Windows.Storage.ApplicationData").on<&Methods<I>::get_TemporaryFolder>(temporaryFolder);
}

foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation> transfer(bool succeeds) {
    co_await EndOfOperation();
    if (!succeeds) {
        throw winrt::hresult_error(static_cast<HRESULT>(0x80190194));  // what a server refuses with 404
    }
    co_return nullptr;
}

DownloadOperation downloadOf(const foundation::Uri& uri, void*) {
    using I = IDownloadOperation;
    using Transfer = IBackgroundTransferOperation;
    using Response = IResponseInformation;
    const bool succeeds = world()->files.contains(textOf(uri));
    return make<I>(L"Windows.Networking.BackgroundTransfer.DownloadOperation")
        .on<&Methods<I>::StartAsync>([succeeds] { return transfer(succeeds); })
        .as<Transfer>()
        .on<&Methods<Transfer>::GetResponseInformation>([succeeds]() -> ResponseInformation {
            return make<Response>(L"Windows.Networking.BackgroundTransfer.ResponseInformation")
                .constant<&Methods<Response>::get_StatusCode>(succeeds ? 200U : 404U);
        });
}

BackgroundDownloader downloader() {
    using I = IBackgroundDownloader;
    return make<I>(L"Windows.Networking.BackgroundTransfer.BackgroundDownloader")
        .on<&Methods<I>::CreateDownload>(downloadOf);
}

/// A hash is the end of the data, as long as one of MD5.
Core::HashAlgorithmProvider hashing(const hstring& name) {
    using I = Core::IHashAlgorithmProvider;
    check(name == L"MD5", "another algorithm was asked for");
    return make<I>(L"Windows.Security.Cryptography.Core.HashAlgorithmProvider")
        .on<&Methods<I>::HashData>([](const streams::IBuffer& data) {
            Bytes hash = behind<Bytes>(data);
            hash.erase(hash.begin(), hash.end() - 16);
            return bufferOf(hash);
        });
}

hstring hexadecimal(const streams::IBuffer& buffer) {
    std::wstring digits;
    for (const std::uint8_t byte : behind<Bytes>(buffer)) {
        digits += std::format(L"{:02x}", byte);
    }
    return hstring(digits);
}

streams::IBuffer utf8(const hstring& text, std::int32_t) {
    const std::string bytes = winrt::to_string(text);
    return bufferOf({bytes.begin(), bytes.end()});
}

}  // namespace

/// Text is cut at its marks and nothing else: tests use URIs in their normal form.
foundation::Uri uriOf(const std::wstring& text) {
    using M = Methods<foundation::IUriRuntimeClass>;
    const auto colon = text.find(L':');
    if (colon == std::wstring::npos) {
        throw winrt::hresult_invalid_argument();
    }
    return make<foundation::IUriRuntimeClass>(L"Windows.Foundation.Uri")
        .constant<&M::get_AbsoluteUri>(hstring(text))
        .constant<&M::get_SchemeName>(hstring(text.substr(0, colon)))
        .constant<&M::get_Path>(hstring(pathIn(text)))
        .on<&M::get_QueryParsed>([text] { return queryIn(text); })
        .holding(std::make_shared<std::wstring>(text));
}

std::wstring textOf(const foundation::Uri& uri) {
    return behind<std::wstring>(uri);
}

streams::IBuffer bufferOf(Bytes content) {
    using I = streams::IBuffer;
    using Access = winrt::impl::IBufferByteAccess;
    const auto bytes = std::make_shared<Bytes>(std::move(content));
    return make<I>(L"Windows.Storage.Streams.Buffer")
        .on<&Methods<I>::get_Length>([bytes] { return bytes->size(); })
        .holding(bytes)
        .as<Access>()
        .on<&Access::Buffer>([bytes] { return bytes->data(); });
}

streams::IRandomAccessStream streamOf(Bytes bytes) {
    return streamOver(std::make_shared<Bytes>(std::move(bytes)));
}

Bytes& contentOf(const streams::IInputStream& stream) {
    return behind<Bytes>(stream);
}

Factories content() {
    using Uris = foundation::IUriRuntimeClassFactory;
    using Escapes = foundation::IUriEscapeStatics;
    using Buffers = ICryptographicBufferStatics;
    using HashNames = Core::IHashAlgorithmNamesStatics;
    using Hashes = Core::IHashAlgorithmProviderStatics;
    using Applications = storage::IApplicationDataStatics;
    using Files = storage::IStorageFileStatics;
    using Readers = streams::IDataReaderFactory;
    return {
        {L"Windows.Foundation.Uri",
         [] {
             return make<Uris>(L"factory")
                 .on<&Methods<Uris>::CreateUri>([](const hstring& text) { return uriOf(std::wstring(text)); })
                 .as<Escapes>()
                 .on<&Methods<Escapes>::UnescapeComponent>(unescape)
                 .on<&Methods<Escapes>::EscapeComponent>(escape);
         }},
        {L"Windows.Networking.BackgroundTransfer.BackgroundDownloader", activating(downloader)},
        {L"Windows.Security.Cryptography.CryptographicBuffer",
         [] {
             return make<Buffers>(L"factory")
                 .on<&Methods<Buffers>::ConvertStringToBinary>(utf8)
                 .on<&Methods<Buffers>::EncodeToHexString>(hexadecimal);
         }},
        {L"Windows.Security.Cryptography.Core.HashAlgorithmNames",
         answering<HashNames, &Methods<HashNames>::get_Md5>([] { return hstring(L"MD5"); })},
        {L"Windows.Security.Cryptography.Core.HashAlgorithmProvider",
         answering<Hashes, &Methods<Hashes>::OpenAlgorithm>(hashing)},
        {L"Windows.Storage.ApplicationData",
         answering<Applications, &Methods<Applications>::get_Current>(applicationData)},
        {L"Windows.Storage.StorageFile", answering<Files, &Methods<Files>::GetFileFromPathAsync>(getFile)},
        {L"Windows.Storage.Streams.DataReader",
         answering<Readers, &Methods<Readers>::CreateDataReader>(readerOf)},
        {L"Windows.Storage.Streams.InMemoryRandomAccessStream", activating([] { return streamOf({}); })},
    };
}

}  // namespace app
