#include "local_content/LocalContent.h"

#include "webview/UwpWebView.h"

void local_content::loadFile(UwpWebView& view, const std::string& url) {
    view.reportLoadFailure("This version can't show local files. Cannot load the URL " + url);
}

void local_content::loadPdf(UwpWebView& view, const std::string& url) {
    view.reportLoadFailure("This version can't show PDF documents. Cannot load the URL " + url);
}
