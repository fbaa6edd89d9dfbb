#pragma once

/// Keeps a page from taking the machine from the engine. Called once, on the page's thread, when its process
/// starts:
/// - threads that start later, such as workers, yield to the engine's,
/// - the process ends when it has more memory than half of the machine's, or than the megabytes that
///   WEBVIEW_MEMORY_LIMIT says, also while a script runs,
/// - the kernel ends it rather than the engine if memory runs out.
void take_fair_share();

/// Ends the process when the engine's has ended, also while a script runs. `process` is a descriptor of that
/// process (pidfd), owned from now on; only the first one matters.
void end_with_engine(int process);

/// Lets the page's thread, and those that it starts later, yield to the engine's threads once the other end
/// of `calm` has closed, also while a script runs. The descriptor is owned from now on; only the first one
/// matters.
void yield_in_crowds(int calm);
