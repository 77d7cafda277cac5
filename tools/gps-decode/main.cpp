#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "tools/common/Program.h"
#include "tools/gps-decode/Decoder.h"
#include "tools/gps-decode/GpxTrack.h"
#include "tools/gps-decode/Input.h"
#include "tools/gps-decode/Interrupt.h"
#include "tools/gps-decode/JsonLines.h"
#include "tools/gps-decode/Options.h"
#include "tools/gps-decode/Output.h"
#include "tools/gps-decode/Progress.h"
#include "tools/gps-decode/RawSentences.h"

namespace {

constexpr std::size_t kBlock = 128UL * 1024;
constexpr int kSignalStatus = 128;  // plus the signal's number, as shells have it

void discardMessage(void*, const char*, const char*, int, int, const char*) {}

std::unique_ptr<decode::Format> formatOf(const decode::Options& options) {
    if (options.isRaw) return std::make_unique<decode::RawSentences>();
    if (options.isGpx) return std::make_unique<decode::GpxTrack>();
    return std::make_unique<decode::JsonLines>();
}

/** Feeds the input to the decoder, and writes what comes of every block before it waits for the next one. */
void decodeAll(decode::Input& input, const decode::Interrupt& interrupt, decode::Decoder& decoder, std::string& text) {
    decode::Progress progress(input.size());
    std::vector<char> block(kBlock);
    while (interrupt.waitToRead(input.fd())) {
        const std::size_t length = input.read(block.data(), block.size());
        if (length == 0) break;
        decoder.feed(block.data(), static_cast<unsigned>(length));
        decode::writeOutput(text);
        text.clear();
        progress.advance(length);
    }
    decoder.finish();
}

int decodeStream(const decode::Options& options) {
    if (!options.isVerbose) QvDbgOutput::setSink(&discardMessage, nullptr);
    decode::Input input(options.file);
    const decode::Interrupt interrupt;
    const auto format = formatOf(options);
    std::string text;
    decode::Decoder decoder(options.setup, *format, text);

    format->begin(text);
    decodeAll(input, interrupt, decoder, text);
    format->end(text);
    decode::writeOutput(text);
    std::fprintf(stderr, "gps-decode: %lu chunks, %lu delivered, %lu refused, %lu bytes dropped\n", decoder.chunks(),
                 decoder.delivered(), decoder.chunks() - decoder.delivered(), decoder.droppedBytes());
    return interrupt.signal() == 0 ? 0 : kSignalStatus + interrupt.signal();
}

/** A reader of the output who has had enough is no problem. */
int run(const decode::Options& options) {
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
