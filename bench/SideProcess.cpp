#include "SideProcess.h"

#include <sched.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace zarvik::bench {

namespace {

/// For a case with two windows, and for starting, loading and ending, on a busy machine.
unsigned patience(const Settings& settings) {
    return static_cast<unsigned>(2 * settings.seconds) + 180;
}

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
// A file and not a pipe, whose other end the browser's processes could keep open.
using OutputFile = std::unique_ptr<std::FILE, FileClose>;

/// Runs the program with what it prints in the two files, and returns the status as of waitpid.
int run(const std::string& program, const std::vector<std::string>& options, std::FILE* output,
        std::FILE* complaints) {
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const auto& option : options) {
        arguments.push_back(const_cast<char*>(option.c_str()));
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(output), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(complaints), STDERR_FILENO);
    pid_t pid = 0;
    const int error = posix_spawn(&pid, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), "Starting a process");
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string contentsOf(std::FILE* file) {
    std::array<char, 4096> text{};
    const auto length = pread(fileno(file), text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

std::string describeEnd(int status) {
    if (!WIFSIGNALED(status)) {
        return "its process failed";
    }
    return WTERMSIG(status) == SIGALRM ? "its process hung"
                                       : "its process died of signal " + std::to_string(WTERMSIG(status));
}

/// Beside this one. GTK and Qt each want the event loop for themselves, so Qt's side has a program of its
/// own.
std::string programOf(Side side) {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    return folder / (side == Side::qt ? "zarvik-bench-qt" : "zarvik-bench");
}

/// This process and those that it starts run on the first of its processors from now on.
void stayOnOneProcessor() {
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof(processors), &processors) != 0) {
        throw std::system_error(errno, std::generic_category(), "Asking for the processors");
    }
    std::size_t first = 0;
    while (!CPU_ISSET(first, &processors)) {
        ++first;
    }
    CPU_ZERO(&processors);
    CPU_SET(first, &processors);
    if (sched_setaffinity(0, sizeof(processors), &processors) != 0) {
        throw std::system_error(errno, std::generic_category(), "Choosing a processor");
    }
}

}  // namespace

const char* nameOf(Side side) {
    switch (side) {
        case Side::library:
            return "library";
        case Side::bare:
            return "bare";
        case Side::chromium:
            return "chromium";
        case Side::qt:
            return "qt";
    }
    throw std::invalid_argument("There is no such side.");
}

std::optional<std::string> findChromium() {
    const char* const path = std::getenv("PATH");
    // The first is made for this: without the parts that show windows it takes half the memory.
    for (const char* const name : {"chromium-headless-shell", "chromium"}) {
        std::istringstream folders(path ? path : "");
        for (std::string folder; std::getline(folders, folder, ':');) {
            if (auto program = folder + "/" + name; access(program.c_str(), X_OK) == 0) {
                return program;
            }
        }
    }
    return std::nullopt;
}

bool available(Side side) {
    switch (side) {
        case Side::chromium:
            return findChromium().has_value();
        case Side::qt:
            return access(programOf(side).c_str(), X_OK) == 0;
        default:
            return true;
    }
}

void runSide(Side side, const Case& measured, const Settings& settings) {
    alarm(patience(settings));  // ends this process if it hangs
    if (measured.onOneProcessor) {
        stayOnOneProcessor();
    }
    try {
        const auto subject = makeSubject(
            side, {.size = measured.size, .turnsPerSecond = settings.rate.value_or(measured.rate)});
        subject->open(measured.views);
        std::cout << toText(measured.measure(*subject, settings)) << std::flush;
    } catch (const NotServed&) {
        std::cout << std::flush;  // no figures
    }
}

std::optional<Figures> measureInProcess(Side side, const Case& measured, const Settings& settings) {
    const OutputFile output(std::tmpfile());
    // The browsers complain of things that do not matter here.
    const OutputFile complaints(std::tmpfile());
    if (!output || !complaints) {
        throw std::system_error(errno, std::generic_category(), "Making a temporary file");
    }
    std::vector<std::string> arguments{measured.name, "--side", nameOf(side), "--seconds",
                                       std::to_string(settings.seconds)};
    if (settings.rate) {
        arguments.insert(arguments.end(), {"--rate", std::to_string(*settings.rate)});
    }
    const int status = run(programOf(side), arguments, output.get(), complaints.get());
    if (status != 0) {
        throw std::runtime_error(measured.name + ", side " + nameOf(side) + ": " + describeEnd(status) +
                                 "\n" + contentsOf(complaints.get()));
    }
    auto figures = figuresFrom(contentsOf(output.get()));
    return figures.empty() ? std::nullopt : std::optional(std::move(figures));
}

}  // namespace zarvik::bench
