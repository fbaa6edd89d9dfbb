#pragma once

#include <string>

/// The user agent of all web views of the process. Callable on any thread.
namespace user_agent {

void set(const std::string& userAgent);

/// Takes the text of a mobile browser, or goes back to the platform's default.
void setToMobile(bool mobile);

}  // namespace user_agent
