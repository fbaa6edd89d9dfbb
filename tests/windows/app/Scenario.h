#pragma once

#include <string>

#include "zarvik/host/Plugin.h"
#include "zarvik/host/Recorder.h"

/// Records what the plug-in says from now on. The recorder is there until the process ends.
zarvik::host::Recorder& connectRecorder(const zarvik::host::PluginExports& plugin);

/// What an engine without a device does with the plug-in, on any platform. Prints all that the plug-in says,
/// in order: the same lines everywhere.
///
/// `folder` is the "file:" URL of a folder with the page "page.html", `server` the URL of a web server with
/// the document "paper.pdf" and nothing else. What the platform alone has to say, such as the text of a
/// system error, is left out of the lines.
void playScenario(const zarvik::host::PluginExports& plugin, zarvik::host::Recorder& recorder,
                  const std::string& folder, const std::string& server);
