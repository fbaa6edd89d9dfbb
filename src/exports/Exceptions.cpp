#include "exports/Exceptions.h"

#include "exports/LogTexts.h"
#include "platform.h"

namespace {

std::string failureCode(const winrt::hresult_error& error) {
    return "HResult: " + std::to_string(static_cast<std::int32_t>(error.code()));
}

}  // namespace

std::optional<std::string> currentExceptionMessage() {
    try {
        throw;
    } catch (const winrt::hresult_error& error) {
        // The platform has no text for some of its codes.
        const auto message = winrt::to_string(error.message());
        return message.empty() ? failureCode(error) : message;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return std::nullopt;
    }
}

std::string currentExceptionText() {
    try {
        throw;
    } catch (const winrt::hresult_error& error) {
        return failureCode(error) + ", message: " + winrt::to_string(error.message());
    } catch (...) {
        const auto message = currentExceptionMessage();
        return message ? "message: " + *message : log_texts::unknownException;
    }
}
