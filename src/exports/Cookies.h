#pragma once

#include <string>

/// The cookies of the process, which all web views share, as JSON texts. Callable on any thread; each call
/// returns when its work is done. Failures are logged.
///
/// A cookie is an object with the texts "Name", "Value", "Domain" and "Path", the number "ExpirationDate" and
/// the booleans "HttpOnly" and "Secure". ExpirationDate is in seconds since 1970-01-01 UTC; null marks a
/// cookie that ends with the session.
namespace cookies {

/// The answer: an object whose "Items" is the array of the URL's cookies, only those with the name unless the
/// name is empty. {"Items": []} if the lookup fails.
std::string get(const std::string& url, const std::string& cookieName);

/// Sets one cookie; false if that failed. Name and Domain are required. Missing, null or empty keys mean: an
/// empty Value, the Path "/", not HttpOnly, not Secure, and a session cookie, which an ExpirationDate of 0
/// means too.
bool set(const std::string& cookieJson);

/// Deletes the URL's cookies, only those with the name unless the name is empty.
void remove(const std::string& url, const std::string& cookieName);

}  // namespace cookies
