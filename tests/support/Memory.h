#pragma once

/// The bytes of memory that this process has, without what its allocator could give back.
long residentMemory();
