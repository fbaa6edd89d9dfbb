#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

/// Takes an input apart from its beginning. Behind its end there are zeros.
class InputReader {
  public:
    explicit InputReader(std::span<const std::uint8_t> input) : input(input) {}

    bool isAtEnd() const { return input.empty(); }

    std::uint8_t takeByte() {
        if (input.empty()) {
            return 0;
        }
        const auto byte = input.front();
        input = input.subspan(1);
        return byte;
    }

    std::uint32_t takeNumber() { return take<std::uint32_t>(); }
    double takeReal() { return take<double>(); }

  private:
    template <typename T>
    T take() {
        T value{};
        const auto count = std::min(sizeof value, input.size());
        std::memcpy(&value, input.data(), count);
        input = input.subspan(count);
        return value;
    }

    std::span<const std::uint8_t> input;
};
