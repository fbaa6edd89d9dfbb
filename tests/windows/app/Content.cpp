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
    return make(L"Windows.Foundation.WwwFormUrlDecoder")
        .on<METHOD(foundation::IWwwFormUrlDecoderRuntimeClass, GetFirstValueByName)>(
            [uri](const hstring& name) {
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
    return make(L"Windows.Storage.Streams.InMemoryRandomAccessStream")
        .on<METHOD(streams::IRandomAccessStream, get_Size)>([bytes] { return bytes->size(); })
        .on<METHOD(streams::IRandomAccessStream, GetInputStreamAt)>(
            [bytes](std::uint64_t) { return streams::IInputStream(streamOver(bytes)); })
        .holding(bytes)
        .also<streams::IInputStream>()
        .on<METHOD(streams::IOutputStream, WriteAsync)>([bytes](const streams::IBuffer& buffer) {
            *bytes = behind<Bytes>(buffer);
            return written(static_cast<std::uint32_t>(bytes->size()));
        });
}

streams::DataReader readerOf(const streams::IInputStream& stream) {
    return make(L"Windows.Storage.Streams.DataReader")
        .on<METHOD(streams::IDataReader, LoadAsync)>(
            [](std::uint32_t size) { return operation<std::uint32_t>([size] { return size; }); })
        .on<METHOD(streams::IDataReader, ReadBytes)>([stream](std::uint32_t size, std::uint8_t* bytes) {
            std::ranges::copy_n(contentOf(stream).begin(), size, bytes);
        });
}

storage::StorageFile fileAt(const std::wstring& first) {
    const auto path = std::make_shared<std::wstring>(first);
    return make(L"Windows.Storage.StorageFile")
        .on<METHOD(storage::IStorageFile, OpenAsync)>([path](std::int32_t) {
            return operation<streams::IRandomAccessStream>(
                [content = world()->files.at(*path)] { return streamOf({content.begin(), content.end()}); });
        })
        .on<METHOD(storage::IStorageItem, get_Path)>([path] { return hstring(*path); })
        .on<METHOD(storage::IStorageItem, RenameAsync)>([path](const hstring& name, std::int32_t) {
            return action([path, name = std::wstring(name)] { *path = L"C:\\temporary\\" + name; });
        })
        .on<METHOD(storage::IStorageItem, DeleteAsyncOverloadDefaultOptions)>([] { return action([] {}); });
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
    return make(L"Windows.Storage.StorageFolder")
        .on<METHOD(storage::IStorageFolder, CreateFileAsync)>([](const hstring& name, std::int32_t) {
            return operation<storage::StorageFile>(
                [name = std::wstring(name)] { return fileAt(L"C:\\temporary\\" + name); });
        });
}

storage::ApplicationData applicationData() {
    return make(L"Windows.Storage.ApplicationData")
        .on<METHOD(storage::IApplicationData, get_TemporaryFolder)>(temporaryFolder);
}

foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation> transfer(bool succeeds) {
    co_await EndOfOperation();
    if (!succeeds) {
        throw winrt::hresult_error(static_cast<HRESULT>(0x80190194));  // what a server refuses with 404
    }
    co_return nullptr;
}

DownloadOperation downloadOf(const foundation::Uri& uri, void*) {
    const bool succeeds = world()->files.contains(textOf(uri));
    return make(L"Windows.Networking.BackgroundTransfer.DownloadOperation")
        .on<METHOD(IDownloadOperation, StartAsync)>([succeeds] { return transfer(succeeds); })
        .on<METHOD(IBackgroundTransferOperation, GetResponseInformation)>(
            [succeeds]() -> ResponseInformation {
                return make(L"Windows.Networking.BackgroundTransfer.ResponseInformation")
                    .constant<METHOD(IResponseInformation, get_StatusCode)>(succeeds ? 200U : 404U);
            });
}

BackgroundDownloader downloader() {
    return make(L"Windows.Networking.BackgroundTransfer.BackgroundDownloader")
        .on<METHOD(IBackgroundDownloader, CreateDownload)>(downloadOf);
}

/// A hash is the end of the data, as long as one of MD5.
Core::HashAlgorithmProvider hashing(const hstring& name) {
    check(name == L"MD5", "another algorithm was asked for");
    return make(L"Windows.Security.Cryptography.Core.HashAlgorithmProvider")
        .on<METHOD(Core::IHashAlgorithmProvider, HashData)>([](const streams::IBuffer& data) {
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
    const auto colon = text.find(L':');
    if (colon == std::wstring::npos) {
        throw winrt::hresult_invalid_argument();
    }
    return make(L"Windows.Foundation.Uri")
        .constant<METHOD(foundation::IUriRuntimeClass, get_AbsoluteUri)>(hstring(text))
        .constant<METHOD(foundation::IUriRuntimeClass, get_SchemeName)>(hstring(text.substr(0, colon)))
        .constant<METHOD(foundation::IUriRuntimeClass, get_Path)>(hstring(pathIn(text)))
        .on<METHOD(foundation::IUriRuntimeClass, get_QueryParsed)>([text] { return queryIn(text); })
        .holding(std::make_shared<std::wstring>(text));
}

std::wstring textOf(const foundation::Uri& uri) {
    return behind<std::wstring>(uri);
}

streams::IBuffer bufferOf(Bytes content) {
    const auto bytes = std::make_shared<Bytes>(std::move(content));
    return make(L"Windows.Storage.Streams.Buffer")
        .on<METHOD(streams::IBuffer, get_Length)>([bytes] { return bytes->size(); })
        .holding(bytes)
        .on<METHOD(winrt::impl::IBufferByteAccess, Buffer)>([bytes] { return bytes->data(); });
}

streams::IRandomAccessStream streamOf(Bytes bytes) {
    return streamOver(std::make_shared<Bytes>(std::move(bytes)));
}

Bytes& contentOf(const streams::IInputStream& stream) {
    return behind<Bytes>(stream);
}

Factories content() {
    return {
        {L"Windows.Foundation.Uri",
         make(L"factory")
             .on<METHOD(foundation::IUriRuntimeClassFactory, CreateUri)>(
                 [](const hstring& text) { return uriOf(std::wstring(text)); })
             .on<METHOD(foundation::IUriEscapeStatics, UnescapeComponent)>(unescape)
             .on<METHOD(foundation::IUriEscapeStatics, EscapeComponent)>(escape)},
        {L"Windows.Networking.BackgroundTransfer.BackgroundDownloader", activating(downloader)},
        {L"Windows.Security.Cryptography.CryptographicBuffer",
         make(L"factory")
             .on<METHOD(ICryptographicBufferStatics, ConvertStringToBinary)>(utf8)
             .on<METHOD(ICryptographicBufferStatics, EncodeToHexString)>(hexadecimal)},
        {L"Windows.Security.Cryptography.Core.HashAlgorithmNames",
         answering<METHOD(Core::IHashAlgorithmNamesStatics, get_Md5)>([] { return hstring(L"MD5"); })},
        {L"Windows.Security.Cryptography.Core.HashAlgorithmProvider",
         answering<METHOD(Core::IHashAlgorithmProviderStatics, OpenAlgorithm)>(hashing)},
        {L"Windows.Storage.ApplicationData",
         answering<METHOD(storage::IApplicationDataStatics, get_Current)>(applicationData)},
        {L"Windows.Storage.StorageFile",
         answering<METHOD(storage::IStorageFileStatics, GetFileFromPathAsync)>(getFile)},
        {L"Windows.Storage.Streams.DataReader",
         answering<METHOD(streams::IDataReaderFactory, CreateDataReader)>(readerOf)},
        {L"Windows.Storage.Streams.InMemoryRandomAccessStream", activating([] { return streamOf({}); })},
    };
}

}  // namespace app
