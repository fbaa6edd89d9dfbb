#include "Case.h"
#include "Frames.h"
#include "Input.h"
#include "Scripts.h"

namespace zarvik::bench {

const std::vector<Case>& cases() {
    static const std::vector<Case> all{elementsCase(), canvasCase(), stillCase(),    scriptsCase(),
                                       messagesCase(), inputCase(),  fastInputCase()};
    return all;
}

}  // namespace zarvik::bench
