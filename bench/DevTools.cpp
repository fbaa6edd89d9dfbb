#include "DevTools.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "Side.h"

namespace zarvik::bench {

namespace {

// Where the browser expects its ends of the two pipes.
constexpr int commandsOfBrowser = 3;
constexpr int answersOfBrowser = 4;

constexpr std::chrono::seconds patience{60};
constexpr std::chrono::seconds patienceAtEnd{5};

void require(bool fine, const char* what) {
    if (!fine) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// Both ends out of the way of the numbers that the browser's ends get.
std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    require(pipe2(ends.data(), O_CLOEXEC) == 0, "Making a pipe");
    for (int& end : ends) {
        const int moved = fcntl(end, F_DUPFD_CLOEXEC, answersOfBrowser + 1);
        require(moved >= 0, "Making a pipe");
        close(end);
        end = moved;
    }
    return ends;
}

std::vector<std::string> argumentsFor(const std::string& program, const std::string& profile) {
    std::vector<std::string> arguments{
        program, "--headless", "--remote-debugging-pipe", "--user-data-dir=" + profile, "--disable-gpu",
        "--disable-software-rasterizer", "--hide-scrollbars", "--mute-audio", "--no-first-run",
        "--disable-background-networking", "--disable-component-update", "--disable-sync",
        "--disable-extensions", "--disable-default-apps",
        // All views are looked at, though Chromium sees no window.
        "--disable-renderer-backgrounding", "--disable-background-timer-throttling",
        "--disable-backgrounding-occluded-windows"};
    if (geteuid() == 0) {
        arguments.emplace_back("--no-sandbox");  // it refuses to start as root with it
    }
    arguments.emplace_back("about:blank");
    return arguments;
}

}  // namespace

DevTools::DevTools(Listener listener) : listener(std::move(listener)) {
    std::signal(SIGPIPE, SIG_IGN);  // if the browser dies
    auto name = (std::filesystem::temp_directory_path() / "zarvik-bench-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "Making a folder");
    profile = name;
    try {
        start();
    } catch (...) {
        end();
        throw;
    }
    reader = std::thread([this] { read(); });
}

DevTools::~DevTools() {
    end();
}

void DevTools::start() {
    const auto program = findChromium();
    if (!program) {
        throw std::runtime_error("There is no Chromium: the command 'chromium-headless-shell' is missing.");
    }
    const auto commands = makePipe();
    const auto answers = makePipe();
    toBrowser = commands[1];
    fromBrowser = answers[0];

    const auto texts = argumentsFor(*program, profile);
    std::vector<char*> arguments;
    for (const auto& text : texts) {
        arguments.push_back(const_cast<char*>(text.c_str()));
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, commands[0], commandsOfBrowser);
    posix_spawn_file_actions_adddup2(&actions, answers[1], answersOfBrowser);
    // What it prints is not for the reader of a table.
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error = posix_spawn(&process, program->c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(commands[0]);
    close(answers[1]);
    if (error != 0) {
        process = 0;
        throw std::system_error(error, std::generic_category(), "Starting Chromium");
    }
}

void DevTools::end() {
    if (process != 0) {
        // It ends when nobody can command it any more.
        {
            const std::scoped_lock lock(mutex);
            closed = true;
            close(toBrowser);
        }
        const auto deadline = std::chrono::steady_clock::now() + patienceAtEnd;
        while (waitpid(process, nullptr, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                kill(process, SIGKILL);
                waitpid(process, nullptr, 0);
                break;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    if (reader.joinable()) {
        reader.join();
    }
    if (fromBrowser >= 0) {
        close(fromBrowser);
    }
    std::error_code ignored;
    std::filesystem::remove_all(profile, ignored);
}

DevTools::Json DevTools::call(const std::string& session, const std::string& method, Json parameters) {
    // Shared with a reply that comes after the waiting has ended.
    auto promise = std::make_shared<std::promise<Json>>();
    auto reply = promise->get_future();
    send(session, method, std::move(parameters),
         [promise](Json& text) { promise->set_value(std::move(text)); });
    if (reply.wait_for(patience) != std::future_status::ready) {
        throw std::runtime_error("Chromium does not answer " + method + ".");
    }
    auto answer = reply.get();
    if (answer.contains("error")) {
        throw std::runtime_error(method + ": " + answer["error"].value("message", "failed"));
    }
    return answer["result"];
}

void DevTools::send(const std::string& session, const std::string& method, Json parameters, Reply reply) {
    const std::scoped_lock lock(mutex);
    if (closed) {
        return;
    }
    Json command{{"id", ++lastId}, {"method", method}, {"params", std::move(parameters)}};
    if (!session.empty()) {
        command["sessionId"] = session;
    }
    if (reply) {
        awaited.emplace(lastId, std::move(reply));
    }
    const auto text = command.dump();
    // Each command ends with a NUL, as each answer does.
    for (std::size_t sent = 0; sent <= text.size();) {
        const auto count = write(toBrowser, text.c_str() + sent, text.size() + 1 - sent);
        if (count < 0 && errno != EINTR) {
            closed = true;
            return;
        }
        sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

void DevTools::read() {
    std::string text;
    std::vector<char> chunk(std::size_t{1} << 20);
    while (true) {
        const auto count = ::read(fromBrowser, chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        const std::string_view arrived(chunk.data(), static_cast<std::size_t>(count));
        std::size_t begin = 0;
        for (auto nul = arrived.find('\0'); nul != std::string_view::npos; nul = arrived.find('\0', begin)) {
            text += arrived.substr(begin, nul - begin);
            receive(text);
            text.clear();
            begin = nul + 1;
        }
        text += arrived.substr(begin);
    }
    const std::scoped_lock lock(mutex);
    closed = true;
}

void DevTools::receive(std::string_view text) {
    auto message = Json::parse(text);
    if (message.contains("method")) {
        listener(message.value("sessionId", ""), message["method"], message["params"]);
        return;
    }
    Reply reply;
    {
        const std::scoped_lock lock(mutex);
        const auto place = awaited.find(message["id"].get<std::uint64_t>());
        if (place == awaited.end()) {
            return;
        }
        reply = std::move(place->second);
        awaited.erase(place);
    }
    reply(message);
}

}  // namespace zarvik::bench
