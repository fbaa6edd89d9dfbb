#pragma once

#include <string>
#include <string_view>

/// Ends the program as a finding unless the condition holds. The text says what does not hold.
void require(bool condition, std::string_view property, const std::string& details = {});

/// Bytes in a form that can be read in a report: what is not printable as \xNN.
std::string readable(std::string_view bytes);
