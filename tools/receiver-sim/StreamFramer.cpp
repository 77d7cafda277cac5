#include "tools/receiver-sim/StreamFramer.h"

#include <algorithm>
#include <optional>

#include "tools/receiver-sim/Ubx.h"

namespace sim {

namespace {

constexpr std::size_t kMaxPayload = 8192;
constexpr std::size_t kMaxSentence = 1024;

/** The kind and length of the piece at the start of the bytes; empty when more bytes are needed. */
struct Start {
    Piece::Kind kind;
    std::size_t length;
};
constexpr Start kOther{Piece::Kind::Other, 1};

std::optional<Start> sentenceStart(std::string_view bytes) {
    for (std::size_t i = 1; i < std::min(bytes.size(), kMaxSentence); ++i) {
        const char character = bytes[i];
        if (character == '\n') return Start{Piece::Kind::Sentence, i + 1};
        const bool isText = character == '\r' || (character >= ' ' && character <= '~');
        if (!isText || character == '$') return Start{Piece::Kind::Other, i};
    }
    return bytes.size() < kMaxSentence ? std::nullopt : std::optional(kOther);
}

std::optional<Start> frameStart(std::string_view bytes) {
    if (bytes.starts_with(kSwitchToProduction)) return Start{Piece::Kind::Frame, kSwitchToProduction.size()};
    if (bytes.size() < kUbxHeaderSize) {
        const bool mayBecomeFrame = bytes.size() < kUbxSync.size() || bytes.starts_with(kUbxSync);
        return mayBecomeFrame ? std::nullopt : std::optional(kOther);
    }
    if (!bytes.starts_with(kUbxSync) || announcedLength(bytes) > kMaxPayload) return kOther;
    const std::size_t length = announcedLength(bytes) + kUbxOverhead;
    if (bytes.size() < length) return std::nullopt;
    return isUbxFrame(bytes.substr(0, length)) ? Start{Piece::Kind::Frame, length} : kOther;
}

std::optional<Start> startOf(std::string_view bytes) {
    if (bytes.front() == '$') return sentenceStart(bytes);
    if (bytes.front() == kUbxSync.front()) return frameStart(bytes);
    return kOther;
}

void append(std::vector<Piece>& pieces, Piece::Kind kind, std::string_view bytes) {
    const bool continues = kind == Piece::Kind::Other && !pieces.empty() && pieces.back().kind == kind;
    if (continues) {
        pieces.back().bytes += bytes;
    } else {
        pieces.push_back({kind, std::string(bytes)});
    }
}

}  // namespace

std::vector<Piece> StreamFramer::push(std::string_view bytes) {
    mBuffer += bytes;
    return cut(false);
}

std::vector<Piece> StreamFramer::giveUp() {
    return cut(true);
}

std::vector<Piece> StreamFramer::cut(bool isRestMissing) {
    std::vector<Piece> pieces;
    std::string_view rest(mBuffer);
    while (!rest.empty()) {
        auto start = startOf(rest);
        if (!start && !isRestMissing) break;
        if (!start) start = kOther;
        append(pieces, start->kind, rest.substr(0, start->length));
        rest.remove_prefix(start->length);
    }
    mBuffer.erase(0, mBuffer.size() - rest.size());
    return pieces;
}

}  // namespace sim
