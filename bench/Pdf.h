#pragma once

#include "Case.h"

namespace zarvik::bench {

/// From the call that loads a PDF document on disk until its first page is seen.
Case pdfCase();

}  // namespace zarvik::bench
