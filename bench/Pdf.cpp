#include "Pdf.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "Pages.h"
#include "support/Pdf.h"

namespace zarvik::bench {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int loads = 3;

/// Within the red part of the first page, which viewers put into the middle.
constexpr Point pagePoint{640, 600};
constexpr Pixel red{0, 0, 0xff, 0xff};

/// A document on disk, for the duration of a measurement.
class Document {
  public:
    explicit Document(int pages) : path(std::filesystem::temp_directory_path() / "zarvik-bench-XXXXXX.pdf") {
        constexpr int endingSize = 4;
        std::string name = path.string();
        const int file = mkstemps(name.data(), endingSize);
        if (file < 0) {
            throw std::runtime_error("No temporary file can be made.");
        }
        close(file);
        path = name;
        if (!(std::ofstream(path, std::ios::binary) << makePdf(pages)).flush()) {
            throw std::runtime_error("The document cannot be written.");
        }
    }
    ~Document() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    std::string url() const { return "file://" + path.string(); }

  private:
    std::filesystem::path path;
};

double median(Subject& subject, int pages) {
    const Document document(pages);
    std::vector<double> times;
    for (int i = 0; i < loads; ++i) {
        subject.show(stillPage());
        subject.watch(pagePoint);
        const auto begin = Subject::Clock::now();
        subject.loadUrl(document.url());
        times.push_back(Milliseconds(subject.waitForColour(red) - begin).count());
    }
    return quantile(times, 0.5);
}

Figures measurePdf(Subject& subject, const Settings&) {
    return {{"few", median(subject, 3)}, {"many", median(subject, 300)}};
}

}  // namespace

Case pdfCase() {
    return {.name = "pdf",
            .title = "PDF document on disk, until the first page is seen",
            .lines = {{"few", "3 pages, ms", "%.0f"}, {"many", "300 pages, ms", "%.0f"}},
            .measure = measurePdf};
}

}  // namespace zarvik::bench
