#include "Case.h"
#include "Frames.h"
#include "Input.h"
#include "Pdf.h"
#include "Scripts.h"

namespace zarvik::bench {

const std::vector<Case>& cases() {
    static const std::vector<Case> all{elementsCase(),       canvasCase(),
                                       stillCase(),          pipelinedScriptsCase(),
                                       awaitedScriptsCase(), awaitedScriptsOnOneProcessorCase(),
                                       messagesCase(),       inputCase(),
                                       fastInputCase(),      pdfCase()};
    return all;
}

}  // namespace zarvik::bench
