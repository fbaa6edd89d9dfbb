#include "host/PlayerProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace {

constexpr std::chrono::seconds limit{120};

}  // namespace

PlayerProgram::PlayerProgram(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(),
                     std::filesystem::read_symlink("/proc/self/exe").parent_path() / "zarvik-player");
    std::vector<char*> raw;
    for (auto& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (folder / "output").c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int error = posix_spawn(&process, raw[0], &actions, nullptr, raw.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("The player cannot be started");
    }
}

PlayerProgram::~PlayerProgram() {
    if (process != 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

int PlayerProgram::wait() {
    const auto end = std::chrono::steady_clock::now() + limit;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void PlayerProgram::interrupt() const {
    kill(process, SIGINT);
}

std::string PlayerProgram::output() const {
    return readFile(folder / "output");
}

PlayerResult runPlayer(std::vector<std::string> arguments) {
    PlayerProgram program(std::move(arguments));
    const int exitCode = program.wait();
    return {.exitCode = exitCode, .output = program.output()};
}
