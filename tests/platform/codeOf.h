#pragma once

#include <gtest/gtest.h>
#include <winrt/base.h>

/// The failure that `action` ends with, which has to say something, or S_OK.
template <typename Action>
int32_t codeOf(Action action) {
    try {
        action();
    } catch (const winrt::hresult_error& error) {
        EXPECT_FALSE(error.message().empty());
        return error.code();
    }
    return S_OK;
}
