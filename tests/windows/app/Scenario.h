#pragma once

#include <string>

#include "zarvik/host/Plugin.h"
#include "zarvik/host/Recorder.h"

/// What an engine without a device does with the plug-in, on any platform. Prints all that the plug-in says,
/// in order: the same lines everywhere.
///
/// `folder` is the "file:" URL of a folder with the page "page.html". What the platform alone has to say,
/// such as the text of a system error, is left out of the lines.
void playScenario(const zarvik::host::PluginExports& plugin, zarvik::host::Recorder& recorder,
                  const std::string& folder);
