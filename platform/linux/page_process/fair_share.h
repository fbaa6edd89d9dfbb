#pragma once

/// Keeps a page from taking the machine from the engine. Called once, on the page's thread, when its process
/// starts:
/// - threads that start later, such as workers, yield to the engine's,
/// - the process ends when it has more memory than half of the machine's, or than the megabytes that
///   WEBVIEW_MEMORY_LIMIT says, also while a script runs,
/// - the kernel ends it rather than the engine if memory runs out.
void take_fair_share();

/// Ends the process when the engine's has ended, or its view, and lets the page's thread yield when it is to,
/// both also while a script runs. `tether` is a descriptor that says so (see page_tether), owned from now on;
/// only the first one matters.
void follow(int tether);
