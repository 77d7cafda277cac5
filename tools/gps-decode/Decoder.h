#ifndef GPS_DECODE_DECODER_H
#define GPS_DECODE_DECODER_H

#include <array>
#include <string>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceText.h"
#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"
#include "GpsHal/GpsHalFramer.h"
#include "tools/gps-decode/Event.h"
#include "tools/gps-decode/LibraryLog.h"
#include "tools/gps-decode/Listeners.h"
#include "tools/gps-decode/Selection.h"

namespace decode {

/** The receiver's and the listeners' setup, and what is written. */
struct Setup {
    GeodeticSystem base = GEODETIC_SYSTEM_WGS84;    ///< of the receiver
    GeodeticSystem wanted = GEODETIC_SYSTEM_WGS84;  ///< of the listeners
    bool settingFinished = true;
    bool readsLfAsCrLf = false;
    bool isVerbose = false;
    Selection selection;
};

/** Number of chunks, by Refusal. */
using RefusalCounts = std::array<unsigned long, static_cast<std::size_t>(Refusal::Count)>;

/**
 * Cuts a byte stream into chunks and dispatches them to one listener of each kind as the service does, without the
 * shared memory.
 */
class Decoder {
public:
    /** @param format gets every selected event, and writes to `text`; both must outlive this object */
    Decoder(const Setup& setup, Format& format, std::string& text);

    void feed(const char* data, unsigned length);
    /** The stream has ended. */
    void finish();

    unsigned long chunks() const { return mFramer.chunks(); }
    /** Chunks of which at least one listener was notified. */
    unsigned long delivered() const { return mDelivered; }
    /** Bytes that belong to no chunk. */
    unsigned long droppedBytes() const { return mFramer.droppedBytes(); }
    const RefusalCounts& refusals() const { return mRefusals; }

    // Called by `route`, as those of the service.

    void connectionStatusProc(const char* chunk, unsigned length);
    void nmeaSentenceProc(const char* chunk, unsigned length);
    void parseNmeaSentenceProc(const char* chunk, unsigned length);
    void parseGpsProductionDataProc(const char* chunk, unsigned length);
    // Without requests nothing waits for an acknowledgement.
    void responseGpsSettingProc(const char*, unsigned) { mRefusal = Refusal::Frame; }
    void responseGpsProductionProc(const char*, unsigned) {}

private:
    void take(const unsigned char* chunk, unsigned length);
    void receive(const char* name, const Event::Content& content);
    Refusal sentenceRefusal() const;

    const Setup mSetup;
    Format& mFormat;
    std::string& mText;
    LibraryLog mLog;
    GpsHalFramer mFramer;
    GpsParseNmeaManager mParser;
    GpsProductionManager mProduction;
    Listeners mListeners;
    UtcClock mClock;
    unsigned mStarts = 0;

    // Of the current chunk.
    std::string mWithCr;
    std::string_view mChunk;
    sentence_text::Sentence mSentence;
    bool mIsChecked = false;  // it is a sentence with a correct checksum, mSentence
    bool mHasTime = false;
    bool mIsDelivered = false;
    bool mHasRecord = false;
    Refusal mRefusal = Refusal::None;  // if it gives no record

    unsigned long mDelivered = 0;
    RefusalCounts mRefusals{};
};

}  // namespace decode

#endif
