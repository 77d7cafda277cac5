#ifndef RECEIVER_SIM_STREAM_FRAMER_H
#define RECEIVER_SIM_STREAM_FRAMER_H

#include <string>
#include <string_view>
#include <vector>

namespace sim {

/** A part of a byte stream. */
struct Piece {
    enum class Kind {
        Sentence,  ///< from "$" through the line feed
        Frame,     ///< a binary frame whose checksum holds, or the command that switches to production mode
        Other,     ///< bytes that belong to neither
    };
    Kind kind;
    std::string bytes;
};

/** Cuts a byte stream into pieces, which together are the stream, byte for byte. */
class StreamFramer {
public:
    /** The pieces that are complete with these bytes. */
    std::vector<Piece> push(std::string_view bytes);

    /** Gives up an incomplete piece and scans the bytes after its start again. */
    std::vector<Piece> giveUp();

    bool isUnfinished() const { return !mBuffer.empty(); }

private:
    std::vector<Piece> cut(bool isRestMissing);

    std::string mBuffer;
};

}  // namespace sim

#endif
