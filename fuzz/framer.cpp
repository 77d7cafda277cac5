
#include "GpsHal/GpsHalFramer.h"
#include "fuzz/ExactBuffer.h"
#include "tests/support/Messages.h"

namespace {

struct Frames {
    std::vector<std::string> chunks;
    unsigned long dropped = 0;
};

/** Feeds the stream in pieces of a size; what comes out must not depend on it. */
Frames frame(const std::uint8_t* data, std::size_t size, std::size_t piece) {
    Frames frames;
    GpsHalFramer framer;
    const auto keep = [&](const void* chunk, unsigned length) {
        frames.chunks.emplace_back(static_cast<const char*>(chunk), length);
    };
    for (std::size_t at = 0; at < size; at += piece) {
        ExactBuffer part(data + at, std::min(piece, size - at));
        framer.feed(part.data(), part.size(), keep);
    }
    framer.finish(keep);
    frames.dropped = framer.droppedBytes();
    return frames;
}

bool isIntact(const std::string& chunk) {
    if (chunk[0] == '$') return chunk.back() == '\n' && chunk.find('$', 1) == std::string::npos;
    return chunk.ends_with(ubxChecksum(std::string_view(chunk).substr(2, chunk.size() - 4)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const Frames whole = frame(data, size, size);
    const Frames pieces = frame(data, size, 1 + data[0] % 16);
    require(whole.chunks == pieces.chunks && whole.dropped == pieces.dropped);
    std::size_t kept = 0;
    for (const std::string& chunk : whole.chunks) {
        require(isIntact(chunk));
        kept += chunk.size();
    }
    require(kept + whole.dropped == size);
    return 0;
}
