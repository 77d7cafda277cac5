#ifndef GPSHAL_GPS_HAL_FRAMER_H
#define GPSHAL_GPS_HAL_FRAMER_H

#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * Cuts the receiver's byte stream into chunks and drops what lies between them.
 *
 * A chunk is one NMEA sentence, from `$` through its line feed, or one UBX frame (B5 62, class, id, length of the
 * payload as two bytes with the low one first, payload, checksum) whose Fletcher checksum holds. A sentence is at most
 * 1024 bytes of printable ASCII and carriage returns; another `$` starts it over. A payload is at most 8192 bytes.
 *
 * Damage costs no intact chunk: of bytes that turn out to be none, only the first is dropped and the rest is scanned
 * again. Chunks and counts do not depend on how the stream is split into calls. Nothing is allocated, and the time is
 * proportional to the number of bytes. One thread at a time.
 */
class GpsHalFramer : private QvUncopyable {
public:
    /**
     * Takes the next bytes of the stream and calls `sink(unsigned char* chunk, unsigned length)` for every chunk that
     * they complete, in order. The sink may change the chunk's bytes, which are valid during the call only. It must not
     * call the framer.
     */
    template <class Sink>
    void feed(const void* data, unsigned length, Sink&& sink);

    /**
     * The line has been silent for 250 ms: gives up an unfinished frame and calls `sink` for the chunks inside it,
     * which a damaged length had included. An unfinished sentence stays.
     */
    template <class Sink>
    void pause(Sink&& sink);

    /** The stream has ended: as pause(), but gives up an unfinished sentence too. Another stream may follow. */
    template <class Sink>
    void finish(Sink&& sink);

    /** Whether the last bytes are the beginning of a frame. */
    bool isInsideFrame() const { return mBegin < mEnd && mBuffer[mBegin] != '$'; }
    /** Chunks found since construction. */
    unsigned long chunks() const { return mChunks; }
    /** Bytes dropped since construction, without those of an unfinished chunk. */
    unsigned long droppedBytes() const { return mDroppedBytes; }

private:
    static constexpr unsigned kMaxSentence = 1024;
    static constexpr unsigned kMaxPayload = 8192;
    static constexpr unsigned kFrameOverhead = 8;
    static constexpr unsigned kCapacity = 2 * (kMaxPayload + kFrameOverhead);

    struct Chunk {
        unsigned char* data;
        unsigned length;  // 0: no chunk
    };
    /** What the bytes at mBegin are. */
    struct Verdict {
        enum Kind { kChunk, kNoise, kUnfinished } kind;
        unsigned length;
    };

    enum class GiveUp { kNothing, kFrames, kEverything };

    template <class Sink>
    void deliver(GiveUp giveUp, Sink&& sink);
    unsigned append(const unsigned char* data, unsigned length);
    void compact();
    Chunk next(GiveUp giveUp);
    Verdict judge();
    Verdict judgeNoise() const;
    Verdict judgeSentence();
    Verdict judgeFrame();
    bool checksumHolds(unsigned begin, unsigned end);

    unsigned char mBuffer[kCapacity];
    unsigned mBegin = 0;  // first byte that is not yet decided
    unsigned mEnd = 0;
    unsigned mSeen = 1;  // bytes of the sentence at mBegin that need no second look

    // For each position, the sum of the bytes before it and the sum of these sums. The checksum of any range is a
    // difference of them, so that bytes inside many broken frames are summed only once.
    unsigned char mSums[kCapacity + 1] = {};
    unsigned char mSumsOfSums[kCapacity + 1] = {};
    unsigned mSummed = 0;  // last position that has its sums

    unsigned long mChunks = 0;
    unsigned long mDroppedBytes = 0;
};

template <class Sink>
void GpsHalFramer::feed(const void* data, unsigned length, Sink&& sink) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (length > 0) {
        const unsigned taken = append(bytes, length);
        bytes += taken;
        length -= taken;
        deliver(GiveUp::kNothing, sink);
    }
}

template <class Sink>
void GpsHalFramer::pause(Sink&& sink) {
    deliver(GiveUp::kFrames, sink);
}

template <class Sink>
void GpsHalFramer::finish(Sink&& sink) {
    deliver(GiveUp::kEverything, sink);
}

template <class Sink>
void GpsHalFramer::deliver(GiveUp giveUp, Sink&& sink) {
    for (Chunk chunk = next(giveUp); chunk.length != 0; chunk = next(giveUp)) {
        sink(chunk.data, chunk.length);
    }
}

#endif
