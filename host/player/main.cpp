#include <csignal>
#include <cstdio>
#include <exception>

#include "Player.h"
#include "ScriptRunner.h"

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;
constexpr int exitInterrupted = 130;

void interruptOn(int signal) {
    struct sigaction action{};
    action.sa_handler = [](int) { zarvik::player::Player::interrupt(); };
    action.sa_flags = SA_RESETHAND;  // a second one ends the program at once
    sigaction(signal, &action, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const auto options = zarvik::player::parseOptions(argc, argv);
        if (const int* exitCode = std::get_if<int>(&options)) {
            return *exitCode;
        }
        interruptOn(SIGINT);
        interruptOn(SIGTERM);
        zarvik::player::Player(std::get<zarvik::player::Options>(options)).run();
    } catch (const zarvik::player::Interrupted&) {
        return exitInterrupted;
    } catch (const zarvik::player::ScriptError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return exitUsage;
    } catch (const zarvik::player::ScriptFailure& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return exitFailure;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zarvik-player: %s\n", error.what());
        return exitFailure;
    }
    return 0;
}
