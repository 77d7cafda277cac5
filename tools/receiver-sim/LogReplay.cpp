#include "tools/receiver-sim/LogReplay.h"

#include "tools/receiver-sim/Nmea.h"

namespace sim {

namespace {

std::vector<Piece> piecesOf(std::string_view log) {
    StreamFramer framer;
    std::vector<Piece> pieces = framer.push(log);
    for (Piece& piece : framer.giveUp())
        pieces.push_back(std::move(piece));
    return pieces;
}

}  // namespace

LogReplay::LogReplay(std::string_view log) {
    bool hasRmc = false;
    for (const Piece& piece : piecesOf(log)) {
        const bool isRmc = piece.kind == Piece::Kind::Sentence && nmeaKind(piece.bytes) == "RMC";
        if (mEpochs.empty() || (isRmc && hasRmc)) mEpochs.emplace_back();
        hasRmc = hasRmc || isRmc;
        mEpochs.back().push_back(sendAction(piece));
    }
}

std::vector<PortAction> LogReplay::takeEpoch() {
    return mEpochs.at(mNext++);
}

}  // namespace sim
