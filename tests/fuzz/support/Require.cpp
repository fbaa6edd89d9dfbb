#include "fuzz/support/Require.h"

#include <cstdlib>
#include <iostream>

void require(bool condition, std::string_view property, const std::string& details) {
    if (!condition) {
        std::cerr << "==== Does not hold: " << property << (details.empty() ? "" : ": ") << details
                  << std::endl;
        std::abort();
    }
}

std::string readable(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= ' ' && byte < 0x7F && character != '\\') {
            text += character;
        } else {
            text += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        }
    }
    return text;
}
