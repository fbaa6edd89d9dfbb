#pragma once

/// The Windows Runtime API that the sources are written against, in one place so that both builds can
/// precompile it. <unknwn.h> comes first: it lets the C++/WinRT headers work with classic COM interfaces.
#include <unknwn.h>
// A macro of that header, which would rename a member of the XAML animation types.
#undef GetCurrentTime

#include <winrt/Windows.ApplicationModel.Core.h>
#include <winrt/Windows.Data.Json.h>
#include <winrt/Windows.Foundation.Collections.h>
#include <winrt/Windows.Foundation.h>
#include <winrt/Windows.Graphics.Display.h>
#include <winrt/Windows.Graphics.Imaging.h>
#include <winrt/Windows.Networking.BackgroundTransfer.h>
#include <winrt/Windows.Security.Cryptography.Core.h>
#include <winrt/Windows.Security.Cryptography.h>
#include <winrt/Windows.Storage.Streams.h>
#include <winrt/Windows.Storage.h>
#include <winrt/Windows.UI.Core.h>
#include <winrt/Windows.UI.ViewManagement.h>
#include <winrt/Windows.UI.Xaml.Controls.h>
#include <winrt/Windows.UI.Xaml.Media.Imaging.h>
#include <winrt/Windows.UI.Xaml.Media.h>
#include <winrt/Windows.UI.Xaml.h>
#include <winrt/Windows.UI.h>
#include <winrt/Windows.Web.Http.Filters.h>
#include <winrt/Windows.Web.Http.Headers.h>
#include <winrt/Windows.Web.Http.h>
#include <winrt/Windows.Web.h>
#include <winrt/ZarvikWebViewRuntimeComponent.h>

namespace controls = winrt::Windows::UI::Xaml::Controls;
namespace foundation = winrt::Windows::Foundation;
namespace http = winrt::Windows::Web::Http;
namespace imaging = winrt::Windows::Graphics::Imaging;
namespace json = winrt::Windows::Data::Json;
namespace storage = winrt::Windows::Storage;
namespace streams = winrt::Windows::Storage::Streams;
namespace xaml = winrt::Windows::UI::Xaml;
