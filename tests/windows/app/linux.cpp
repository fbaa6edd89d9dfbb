// Plays the scenario here: linux PLUGIN.so FOLDER_URL SERVER_URL

#include <cstdlib>

#include "Scenario.h"

int main(int count, char** arguments) {
    if (count != 4) {
        return 2;
    }
    const zarvik::host::Plugin library(arguments[1]);
    playScenario(library.exports, connectRecorder(library.exports), arguments[2], arguments[3]);
    std::_Exit(0);
}
