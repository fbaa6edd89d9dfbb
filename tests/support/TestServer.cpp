#include "support/TestServer.h"

#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <chrono>
#include <stdexcept>

namespace {

using namespace std::chrono_literals;

constexpr auto stallLimit = 20s;

std::unique_ptr<httplib::Server> makeHttpsServer() {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(2048), EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
    X509_set_pubkey(certificate.get(), key.get());
    auto* const name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("127.0.0.1"),
                               -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> address(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1"), X509_EXTENSION_free);
    X509_add_ext(certificate.get(), address.get(), -1);
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    return std::make_unique<httplib::SSLServer>(certificate.get(), key.get());
}

}  // namespace

TestServer::TestServer(Scheme scheme)
    : server(scheme == Scheme::https ? makeHttpsServer() : std::make_unique<httplib::Server>()),
      origin(scheme == Scheme::https ? "https://" : "http://") {
    // Stalled pages must not keep the others waiting.
    server->new_task_queue = [] { return new httplib::ThreadPool(16); };
    server->set_keep_alive_timeout(1);
    // The server's own table of handlers must not change while it runs, and tests add pages at any time.
    const auto serve = [this](const httplib::Request& request, httplib::Response& response) {
        Handler handler;
        {
            const std::lock_guard lock(mutex);
            received.push_back({request.path, {request.headers.begin(), request.headers.end()}});
            const auto found = handlers.find(request.path);
            if (found == handlers.end()) {
                response.status = 404;
                return;
            }
            handler = found->second;
        }
        handler(request, response);
    };
    server->Get(".*", serve);
    server->Post(".*", serve);
    boundPort = server->bind_to_any_port("127.0.0.1");
    if (boundPort <= 0) {
        throw std::runtime_error("The test server cannot listen on loopback");
    }
    thread = std::thread([this] { server->listen_after_bind(); });
    while (!server->is_running()) {
        std::this_thread::yield();
    }
}

TestServer::~TestServer() {
    ending = true;
    server->stop();
    thread.join();
}

void TestServer::page(const std::string& path, const std::string& body, int status) {
    content(path, "text/html; charset=utf-8", "<!doctype html>" + body, status);
}

void TestServer::content(const std::string& path, const std::string& type, const std::string& content,
                         int status) {
    on(path, [type, content, status](const httplib::Request&, httplib::Response& response) {
        response.status = status;
        response.set_content(content, type);
    });
}

void TestServer::on(const std::string& path, Handler handler) {
    const std::lock_guard lock(mutex);
    handlers[path] = std::move(handler);
}

void TestServer::redirect(const std::string& path, const std::string& url) {
    on(path, [url](const httplib::Request&, httplib::Response& response) { response.set_redirect(url); });
}

void TestServer::stalledPage(const std::string& path) {
    on(path, [this](const httplib::Request&, httplib::Response& response) {
        const auto limit = std::chrono::steady_clock::now() + stallLimit;
        while (!ending && std::chrono::steady_clock::now() < limit) {
            std::this_thread::sleep_for(10ms);
        }
        response.status = 503;
    });
}

std::string TestServer::url(const std::string& path) const {
    return origin + "127.0.0.1:" + std::to_string(boundPort) + path;
}

std::string TestServer::otherOriginUrl(const std::string& path) const {
    return origin + "localhost:" + std::to_string(boundPort) + path;
}

std::vector<TestServer::Request> TestServer::requests(const std::string& path) const {
    const std::lock_guard lock(mutex);
    std::vector<Request> matching;
    for (const auto& request : received) {
        if (request.path == path) {
            matching.push_back(request);
        }
    }
    return matching;
}

bool TestServer::waitForRequest(const std::string& path) const {
    for (const auto limit = std::chrono::steady_clock::now() + 10s; std::chrono::steady_clock::now() < limit;
         std::this_thread::sleep_for(5ms)) {
        if (!requests(path).empty()) {
            return true;
        }
    }
    return false;
}

int closedPort() {
    return TestServer().port();
}
