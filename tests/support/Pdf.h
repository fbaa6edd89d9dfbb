#pragma once

#include <string>

/// A PDF document of A4 pages, each of one colour and with a text "Page <number> of the test". It holds as
/// many bytes more as `ballast` says, in an attachment of its own.
std::string makePdf(int pages, std::size_t ballast = 0);
