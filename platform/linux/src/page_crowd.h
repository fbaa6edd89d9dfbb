#pragma once

namespace runtime {

/// One of the views of this program. With as many of them as processors, pages that do nothing but draw could
/// take all processors from the engine. Their processes yield then, for good; before, a page draws faster
/// without. User-interface thread only.
class page_crowd {
  public:
    page_crowd();
    ~page_crowd();
    page_crowd(page_crowd const&) = delete;
    page_crowd& operator=(page_crowd const&) = delete;

    /// A descriptor for page processes, where they see no more than its other end closing: then they are to
    /// yield. Throws when there can be none.
    static int calm();
};

}  // namespace runtime
