#pragma once

#include "Engine.h"

// What the engine does with a device, one scenario each. Whatever is wrong is a finding.

void playRendering(Engine& engine);
void playFaults(Engine& engine);
