// Plays the scenario here: linux PLUGIN.so FOLDER_URL

#include <cstdlib>

#include "Scenario.h"

namespace {

zarvik::host::Recorder recorder;

using zarvik::host::Record;

void record(Record::Kind kind, const char* target, const char* method, const char* payload) {
    Record record;
    record.kind = kind;
    record.target = target;
    record.method = method;
    record.payload = payload;
    recorder.add(std::move(record));
}

template <Record::Kind kind>
void log(const char* line) {
    record(kind, "", "", line);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    const zarvik::host::Plugin library(arguments[1]);
    const auto& plugin = library.exports;
    plugin.WebView_setLogFunctions(log<Record::Kind::info>, log<Record::Kind::warning>,
                                   log<Record::Kind::error>);
    plugin.WebView_setSendMessageFunction([](const char* target, const char* method, const char* payload) {
        record(Record::Kind::message, target, method, payload);
    });
    plugin.WebView_setDataResultCallback([](const char* target, const char* id, const std::uint8_t*,
                                            std::int32_t) { record(Record::Kind::data, target, id, ""); });
    playScenario(plugin, recorder, arguments[2]);
    std::_Exit(0);
}
