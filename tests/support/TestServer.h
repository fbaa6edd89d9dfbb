#pragma once

#include <httplib.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A web server on loopback, on a port of its own, for the duration of a test.
class TestServer {
  public:
    struct Request {
        std::string path;
        std::multimap<std::string, std::string> headers;

        /// Empty when the request does not have it.
        std::string header(const std::string& name) const {
            const auto found = headers.find(name);
            return found == headers.end() ? std::string() : found->second;
        }
    };
    using Handler = httplib::Server::Handler;

    enum class Scheme { http, https };

    /// With https the certificate is self-signed, so a browser refuses it.
    explicit TestServer(Scheme scheme = Scheme::http);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    /// Serves an HTML document; `body` is what follows the doctype.
    void page(const std::string& path, const std::string& body, int status = 200);
    void content(const std::string& path, const std::string& type, const std::string& content,
                 int status = 200);
    void on(const std::string& path, Handler handler);
    void redirect(const std::string& path, const std::string& url);

    /// Serves a document that does not come before the server ends, or a short while has passed.
    void stalledPage(const std::string& path);

    std::string url(const std::string& path) const;
    /// The same server as another origin.
    std::string otherOriginUrl(const std::string& path) const;
    int port() const { return boundPort; }

    /// The requests for a path so far.
    std::vector<Request> requests(const std::string& path) const;
    bool waitForRequest(const std::string& path) const;

  private:
    std::unique_ptr<httplib::Server> server;
    std::string origin;
    int boundPort = 0;
    mutable std::mutex mutex;
    std::vector<Request> received;
    std::map<std::string, Handler> handlers;
    std::atomic<bool> ending = false;
    std::thread thread;
};

/// A port on loopback on which nothing listens.
int closedPort();
