#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/common/Program.h"
#include "tools/gps-decode/CsvTable.h"
#include "tools/gps-decode/Decoder.h"
#include "tools/gps-decode/GpxTrack.h"
#include "tools/gps-decode/Input.h"
#include "tools/gps-decode/Interrupt.h"
#include "tools/gps-decode/JsonLines.h"
#include "tools/gps-decode/Options.h"
#include "tools/gps-decode/Output.h"
#include "tools/gps-decode/Progress.h"
#include "tools/gps-decode/RawSentences.h"
#include "tools/gps-decode/report/Report.h"

namespace {

using decode::Options;
using decode::Refusal;

constexpr std::size_t kBlock = 128UL * 1024;
constexpr int kSignalStatus = 128;  // plus the signal's number, as in shells

constexpr const char* kRefusalNames[] = {"none",  "checksum", "length", "line end", "field",
                                         "datum", "kind",     "text",   "frame"};
static_assert(std::size(kRefusalNames) == static_cast<std::size_t>(Refusal::Count));

std::unique_ptr<decode::Format> formatOf(const Options& options, const std::string& inputName) {
    const std::string name = std::filesystem::path(inputName).filename();
    switch (options.form) {
        case Options::Form::Raw:
            return std::make_unique<decode::RawSentences>();
        case Options::Form::Gpx:
            return std::make_unique<decode::GpxTrack>(name, options.gap);
        case Options::Form::Csv:
            return std::make_unique<decode::CsvTable>(options.gap);
        case Options::Form::Report:
            return std::make_unique<decode::Report>(name, options.gap);
        case Options::Form::Json:
            break;
    }
    return std::make_unique<decode::JsonLines>();
}

/** Decodes the input, and writes the output of every block before it waits for the next one. */
void decodeAll(decode::Input& input, const decode::Interrupt& interrupt, decode::Decoder& decoder, std::string& text,
               decode::Output& output) {
    decode::Progress progress(input.size());
    std::vector<char> block(kBlock);
    while (interrupt.waitToRead(input.fd())) {
        const std::size_t length = input.read(block.data(), block.size());
        if (length == 0) break;
        decoder.feed(block.data(), static_cast<unsigned>(length));
        output.write(text);
        text.clear();
        progress.advance(length);
    }
    decoder.finish();
}

void printCounts(const decode::Decoder& decoder) {
    const decode::RefusalCounts& refusals = decoder.refusals();
    if (const unsigned long count = refusals[static_cast<std::size_t>(Refusal::LineEnd)]; count > 0) {
        fmt::print(stderr, "gps-decode: {} sentence(s) end in LF alone and give no record; --lf reads LF as CR LF\n",
                   count);
    }
    std::string reasons;
    for (std::size_t reason = 1; reason < refusals.size(); ++reason) {
        if (refusals[reason] == 0) continue;
        reasons += fmt::format("{}{} {}", reasons.empty() ? "" : ", ", refusals[reason], kRefusalNames[reason]);
    }
    if (!reasons.empty()) fmt::print(stderr, "gps-decode: without a record: {}\n", reasons);
    fmt::print(stderr, "gps-decode: {} chunks, {} delivered, {} refused, {} bytes dropped\n", decoder.chunks(),
               decoder.delivered(), decoder.chunks() - decoder.delivered(), decoder.droppedBytes());
}

int decodeStream(const Options& options) {
    decode::Input input(options.file);
    decode::Output output(options.output);
    const decode::Interrupt interrupt;
    const auto format = formatOf(options, input.name());
    std::string text;
    decode::Decoder decoder(options.setup, *format, text);

    format->begin(text);
    decodeAll(input, interrupt, decoder, text, output);
    format->end(text);
    output.write(text);
    printCounts(decoder);
    return interrupt.signal() == 0 ? 0 : kSignalStatus + interrupt.signal();
}

/** A reader that closes the output ends the program without an error. */
int run(const Options& options) {
    try {
        return decodeStream(options);
    } catch (const decode::ReaderGone&) {
        return 0;
    }
}

}  // namespace

int main(int argc, char** argv) {
    return tool::runProgram("gps-decode", argc, argv, &decode::parseOptions, &run);
}
