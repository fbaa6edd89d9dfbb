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
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace zarvik::bench {

namespace {

/// For a case with two windows, and for starting, loading and ending, on a busy machine.
unsigned patience(const Settings& settings) {
    return static_cast<unsigned>(2 * settings.seconds) + 120;
}

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
// A file and not a pipe, whose other end the browser's processes could keep open.
using OutputFile = std::unique_ptr<std::FILE, FileClose>;

/// Runs this program with its standard output in the file, and returns the status as of waitpid.
int run(const std::vector<std::string>& options, std::FILE* output) {
    std::vector<char*> arguments{program_invocation_name};
    for (const auto& option : options) {
        arguments.push_back(const_cast<char*>(option.c_str()));
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fileno(output), STDOUT_FILENO);
    pid_t pid = 0;
    const int error = posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, arguments.data(), environ);
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
    std::array<char, 1024> text{};
    const auto length = pread(fileno(file), text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

std::string describeEnd(int status) {
    if (!WIFSIGNALED(status)) {
        return "its process failed";  // and has said why
    }
    return WTERMSIG(status) == SIGALRM ? "its process hung"
                                       : "its process died of signal " + std::to_string(WTERMSIG(status));
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
    return side == Side::library ? "library" : "bare";
}

void runSide(Side side, const Case& measured, const Settings& settings) {
    alarm(patience(settings));  // ends this process if it hangs
    if (measured.onOneProcessor) {
        stayOnOneProcessor();
    }
    const auto subject =
        side == Side::library ? makeLibrarySubject(settings.rate.value_or(measured.rate)) : makeBareSubject();
    std::cout << toText(measured.measure(*subject, settings)) << std::flush;
}

Figures measureInProcess(Side side, const Case& measured, const Settings& settings) {
    const OutputFile output(std::tmpfile());
    if (!output) {
        throw std::system_error(errno, std::generic_category(), "Making a temporary file");
    }
    std::vector<std::string> arguments{measured.name, "--side", nameOf(side), "--seconds",
                                       std::to_string(settings.seconds)};
    if (settings.rate) {
        arguments.insert(arguments.end(), {"--rate", std::to_string(*settings.rate)});
    }
    const int status = run(arguments, output.get());
    if (status != 0) {
        throw std::runtime_error(std::string(measured.name) + ", " + nameOf(side) +
                                 " side: " + describeEnd(status));
    }
    return figuresFrom(contentsOf(output.get()));
}

}  // namespace zarvik::bench
