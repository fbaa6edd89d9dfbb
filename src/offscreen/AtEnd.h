#pragma once

#include <utility>

/// Does its work at the end of its scope, whichever way that comes: what others wait for must not depend on
/// nothing having been thrown. The work itself throws nothing.
template <typename Work>
class AtEnd {
  public:
    explicit AtEnd(Work work) : work(std::move(work)) {}
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;
    ~AtEnd() { work(); }

  private:
    const Work work;
};
