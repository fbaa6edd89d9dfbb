#pragma once

#include <string>

#include "zarvik/host/Image.h"

/// A page whose pixel (x, y) has the colour of testPattern(), whatever the view's size is: every pixel
/// differs from its neighbours, so a shifted row or a scaled picture cannot pass.
extern const std::string patternPage;

/// The picture of the pattern page in a view of this size.
zarvik::host::Image testPattern(int width, int height);

zarvik::host::Image upsideDown(const zarvik::host::Image& image);

/// A page in one colour.
std::string colourPage(int red, int green, int blue);

/// Whether all pixels have one colour.
bool isFilled(const zarvik::host::Image& image, int red, int green, int blue);

/// A page that changes with every frame.
extern const std::string animatedPage;
