#pragma once

#include <functional>
#include <memory>
#include <string>

#include "local_content/LocalUrls.h"

/// Shows PDF documents in one web view, which owns it: fetches those from the network into the app's
/// temporary folder and opens the viewer page. UI thread.
class PdfLoader : public std::enable_shared_from_this<PdfLoader> {
  public:
    /// What the view does for it, while the loader exists.
    struct View {
        /// Opens the viewer page for the document at a path. May throw.
        std::function<void(const winrt::hstring& path)> showDocument;
        std::function<void(const std::string& reason)> reportLoadFailure;
    };

    explicit PdfLoader(View view) : view(std::move(view)) {}
    PdfLoader(const PdfLoader&) = delete;
    PdfLoader& operator=(const PdfLoader&) = delete;

    /// Loads the document of a PDF URL, in place of one that is on its way. Throws what the platform says of
    /// the URL; what prevents the load later is reported as a failed load.
    void load(const std::string& url);
    /// Forgets the download in progress, if any, since something else is shown.
    void abandon();
    /// Ends the download in progress, if any, as a failed load.
    void stop();

    const local_urls::PdfSources& sources() const { return pdfSources; }

  private:
    struct Download;

    /// Runs a download and shows the document, if it is still wanted then.
    static foundation::IAsyncAction run(std::weak_ptr<PdfLoader> loader, std::shared_ptr<Download> download);
    void show(const Download& download);

    const View view;
    std::shared_ptr<Download> current;
    local_urls::PdfSources pdfSources;
};
