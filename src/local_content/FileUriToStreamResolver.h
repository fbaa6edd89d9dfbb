#pragma once

#include "platform.h"

/// Answers the control's requests for local content: "/file/" and a path is the file's bytes, "/pdf" the
/// viewer page for the document that the query names.
///
/// Stateless: the platform calls it on its own threads, for several requests at once.
class FileUriToStreamResolver
    : public winrt::implements<FileUriToStreamResolver, winrt::Windows::Web::IUriToStreamResolver> {
  public:
    /// The content as a stream. What cannot be opened is logged and fails, which the control takes for a
    /// failed load.
    foundation::IAsyncOperation<streams::IInputStream> UriToStreamAsync(foundation::Uri uri) const;
};

/// The one resolver of the process. Callable on any thread.
winrt::Windows::Web::IUriToStreamResolver sharedResolver();
