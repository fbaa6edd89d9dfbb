#include "support/Processes.h"

#include <fstream>
#include <functional>
#include <string>
#include <string_view>

#include "zarvik/host/ProcessTree.h"

namespace {

/// The kernel cuts names off after 15 characters.
constexpr std::string_view pageProcessName = "WebKitWebProces";

std::vector<pid_t> processesWhere(const std::function<bool(std::string_view)>& matches) {
    std::vector<pid_t> found;
    for (const auto& [process, time] : zarvik::host::processTreeTimes()) {
        // Number, name in parentheses, state
        std::string status;
        std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), status);
        const auto begin = status.find('(') + 1;
        const auto end = status.rfind(')');
        if (end == std::string::npos || status.compare(end, 3, ") Z") == 0) {
            continue;  // it has ended, only its parent has not asked yet
        }
        if (matches(std::string_view(status).substr(begin, end - begin))) {
            found.push_back(process);
        }
    }
    return found;
}

}  // namespace

std::vector<pid_t> browserProcesses() {
    return processesWhere([](std::string_view name) {
        return name.starts_with("WebKit") || name == "bwrap" || name == "xdg-dbus-proxy";
    });
}

std::vector<pid_t> pageProcesses() {
    return processesWhere([](std::string_view name) { return name == pageProcessName; });
}
