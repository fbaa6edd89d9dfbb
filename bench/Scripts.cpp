#include "Scripts.h"

#include "Pages.h"

namespace zarvik::bench {

namespace {

using Clock = Subject::Clock;
using Seconds = std::chrono::duration<double>;

constexpr std::uint64_t pipelineDepth = 256;
constexpr std::uint64_t messagesAtOnce = 20'000;

/// Lets the caches and compilers of the page warm up.
constexpr Seconds scriptWarmUp{0.5};

struct Run {
    double results = 0;
    Measurement measured;
};

/// Sends scripts of which each gives the number that is due.
class ScriptSender {
  public:
    explicit ScriptSender(Subject& subject) : subject(subject) {}

    /// Keeps up to as many scripts under way for a time, and measures until the last result is there.
    Run run(std::uint64_t underWay, Seconds time) {
        const Reading begin = subject.read();
        const auto first = sent;
        auto arrived = sent;
        while (Clock::now() - begin.time < time) {
            subject.evaluate(sent, "0+" + std::to_string(sent));
            ++sent;
            if (sent - arrived >= underWay) {
                // Half of them, so that it is not this thread's waking up for each that is measured.
                arrived = sent - underWay / 2;
                subject.waitForResults(arrived);
            }
        }
        subject.waitForResults(sent);
        return {.results = static_cast<double>(sent - first),
                .measured = Measurement::between(begin, subject.read())};
    }

  private:
    Subject& subject;
    std::uint64_t sent = 0;
};

/// Measures scripts of which so many are under way at once.
template <std::uint64_t underWay>
Figures measureScripts(Subject& subject, const Settings& settings) {
    subject.show(scriptPage());
    ScriptSender sender(subject);
    sender.run(underWay, scriptWarmUp);
    const auto [results, measured] = sender.run(underWay, Seconds(settings.seconds));
    return {{"rate", results / measured.seconds}, {"cost", 1e6 * measured.treeTime / results}};
}

Target atLeast(int perSecond) {
    return {">= " + std::to_string(perSecond),
            [perSecond](double library, double) { return library >= perSecond; }};
}

std::vector<Line> scriptLines(Target target) {
    return {{"rate", "per second", "%.0f", std::move(target)},
            {"cost", "CPU of all processes, us per result", "%.0f"}};
}

std::string postingScript(std::uint64_t begin, std::uint64_t end) {
    return "for (let i = " + std::to_string(begin) + "; i < " + std::to_string(end) +
           "; ++i) post(String(i));";
}

Figures measureMessages(Subject& subject, const Settings& settings) {
    subject.show(scriptPage());
    std::uint64_t sent = 0;
    const auto sendBatch = [&] {
        const auto begin = sent;
        sent += messagesAtOnce;
        subject.runPosting(postingScript(begin, sent));
        subject.waitForMessages(sent);
    };
    sendBatch();

    std::vector<double> rates;
    const auto begin = Clock::now();
    while (rates.empty() || Clock::now() - begin < Seconds(settings.seconds)) {
        const auto batchBegin = Clock::now();
        sendBatch();
        rates.push_back(messagesAtOnce / Seconds(Clock::now() - batchBegin).count());
    }
    return {{"rate", quantile(rates, 0.5)}};
}

}  // namespace

Case pipelinedScriptsCase() {
    return {.name = "scripts",
            .title = "script results, 256 under way",
            .lines = scriptLines(atLeast(20'000)),
            .measure = measureScripts<pipelineDepth>};
}

Case awaitedScriptsCase() {
    return {.name = "scripts-awaited",
            .title = "script results, each awaited",
            .lines = scriptLines(atLeast(2000)),
            .measure = measureScripts<1>};
}

Case awaitedScriptsOnOneProcessorCase() {
    return {.name = "scripts-one-cpu",
            .title = "script results, each awaited, everything on one processor",
            .lines = scriptLines(atLeast(2000)),
            .measure = measureScripts<1>,
            .onOneProcessor = true};
}

Case messagesCase() {
    return {.name = "messages",
            .title = "messages of the page",
            .lines = {{"rate", "per second, 20000 at once", "%.0f"}},
            .measure = measureMessages};
}

}  // namespace zarvik::bench
