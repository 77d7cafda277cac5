#include "tools/receiver-sim/PortAction.h"

#include <utility>

#include "tools/receiver-sim/Nmea.h"
#include "tools/receiver-sim/Ubx.h"

namespace sim {

PortAction makeAction(std::string bytes, Report report) {
    PortAction action;
    action.bytes = std::move(bytes);
    action.reports.push_back(std::move(report));
    return action;
}

PortAction sendAction(const Piece& piece) {
    switch (piece.kind) {
        case Piece::Kind::Sentence:
            return sendSentence(piece.bytes);
        case Piece::Kind::Frame:
            return sendFrame(piece.bytes);
        case Piece::Kind::Other:
            break;
    }
    return makeAction(piece.bytes, Report::object({{"event", "bytes"}, {"hex", hexadecimal(piece.bytes)}}));
}

PortAction sendSentence(const std::string& sentence) {
    const std::string text = sentence.substr(0, sentence.find_first_of("\r\n"));
    return makeAction(sentence, Report::object({{"event", "sentence"}, {"kind", nmeaKind(sentence)}, {"text", text}}));
}

PortAction sendFrame(const std::string& frame) {
    const MessageId id = idOf(std::string_view(frame).substr(kUbxSync.size()));
    return makeAction(
        frame,
        Report::object({{"event", "frame"}, {"class", id.messageClass}, {"id", id.id}, {"hex", hexadecimal(frame)}}));
}

}  // namespace sim
