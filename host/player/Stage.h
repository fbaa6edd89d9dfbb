#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "Camera.h"
#include "Shape.h"

namespace zarvik::player {

/// The objects of the scene: one surface for each page, side by side on a floor. It never changes; another
/// number or size of pages makes another stage.
class Stage {
  public:
    struct Hit {
        std::size_t surface = 0;
        Point page;
    };

    explicit Stage(const std::vector<host::Size>& pages);

    const std::vector<Shape>& surfaces() const { return shapes; }

    /// The page that a ray meets first; nothing where it meets none, or the back of one.
    std::optional<Hit> pick(const Ray& ray) const;

    /// The camera that has all surfaces in the window, below its toolbar.
    Camera camera(host::Size window, int toolbarHeight) const;

  private:
    std::vector<Shape> shapes;
};

}  // namespace zarvik::player
