#pragma once

#include <webkit2/webkit-web-extension.h>

/// Once, when the process begins, before it has threads that read its environment.
void allow_local_media();

/// Lets <video> and <audio> of a local page play local content: the engine plays from the addresses that its
/// media framework knows a source for, which are those of the web. For the document that the page begins with
/// now; does nothing if that is none of local content. Main thread of the page process.
void offer_local_media(WebKitWebPage* page);
