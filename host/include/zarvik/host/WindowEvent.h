#pragma once

#include <string>

namespace zarvik::host {

/// What the user does with mouse and keyboard.
struct WindowEvent {
    enum class Kind {
        pointerMoved,
        pointerLeft,
        buttonPressed,
        buttonReleased,
        wheelTurned,
        keyPressed,  // repeated while the key is held
        textTyped,
        uncovered  // what was drawn may be lost
    };

    Kind kind = Kind::pointerMoved;
    double x = 0;  // where the pointer is, in pixels of the drawing area from its upper left corner
    double y = 0;
    double wheelX = 0;  // notches, to the right and down
    double wheelY = 0;
    int button = 0;      // 0 left, 1 right, 2 middle
    std::string key{};   // of keyPressed: the name that web pages know it by, or its letter; empty for keys
                         // without one
    std::string text{};  // of textTyped: one character
    bool control = false;
    bool alt = false;
};

}  // namespace zarvik::host
