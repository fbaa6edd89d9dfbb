#pragma once

#include <string>

/// A PDF document of A4 pages, each of one colour and with a text "Page <number> of the test".
std::string makePdf(int pages);
