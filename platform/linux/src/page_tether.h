#pragma once

#include "file_system.h"

namespace runtime {

/// What ties the processes of one view's pages to this one: they end with it, also while a script runs, and
/// yield while there are as many views as processors, since pages that do nothing but draw could then take
/// all processors from the engine. User-interface thread only.
class page_tether {
  public:
    page_tether();
    ~page_tether();
    page_tether(page_tether const&) = delete;
    page_tether& operator=(page_tether const&) = delete;

    /// For the view's page processes: readable, though they need not read, once they are to yield; its other
    /// end closes with this process or view. -1 when there can be none.
    int end_for_pages() const { return reading.get(); }

  private:
    void yield(bool begin) const;

    file_descriptor reading;
    file_descriptor writing;
};

}  // namespace runtime
