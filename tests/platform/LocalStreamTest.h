#pragma once

#include <winrt/Windows.Storage.h>

#include <map>
#include <mutex>

#include "PageTest.h"
#include "support/TemporaryFolder.h"

/// Local content of tests: paths with what they stand for, and the requests so far. Any thread.
struct Site {
    using Stream =
        winrt::Windows::Foundation::IAsyncOperation<winrt::Windows::Storage::Streams::IInputStream>;

    /// Content in memory, and content that is a file.
    void page(std::string const& path, std::string const& content);
    void file(std::string const& path, std::string const& file);
    /// What a request for the path does instead.
    void on(std::string const& path, std::function<Stream()> action);

    Stream open(std::string path);
    std::vector<std::string> requests() const;
    /// The number of requests under way at the same time, at most.
    int mostAtOnce() const;

  private:
    mutable std::mutex mutex;
    std::map<std::string, std::function<Stream()>> actions;
    std::vector<std::string> asked;
    int underWay = 0;
    int most = 0;
};

/// Tests of local content in web views.
class LocalStreamTest : public PageTest {
  protected:
    using Uri = winrt::Windows::Foundation::Uri;
    using Resolver = winrt::Windows::Web::IUriToStreamResolver;

    LocalStreamTest();

    static Resolver resolverOf(std::shared_ptr<Site> const& site);
    static std::string uriOf(std::string const& path, std::wstring const& identifier = L"Test");

    /// Navigates without waiting.
    void go(WebView const& view, std::string const& path, std::wstring const& identifier = L"Test");

    /// Navigates, and tells how the navigation ends.
    std::string visit(WebView const& view, std::string const& path);

    /// What an asynchronous JavaScript function's body returns or throws in the page, as a text.
    static std::string run(WebView const& view, std::string const& body);

    /// The navigation events of a view, from now on.
    using Events = std::shared_ptr<std::vector<std::string>>;
    static Events eventsOf(WebView const& view);
    static std::vector<std::string> taken(Events const& events);

    std::shared_ptr<Site> site = std::make_shared<Site>();
    TemporaryFolder folder;
};
