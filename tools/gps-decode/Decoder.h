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

/** How the receiver and the listeners are set up, and what of the stream is written. */
struct Setup {
    GeodeticSystem base = GEODETIC_SYSTEM_WGS84;    ///< in which the receiver reports
    GeodeticSystem wanted = GEODETIC_SYSTEM_WGS84;  ///< by the listeners
    bool settingFinished = true;
    bool readsLfAsCrLf = false;
    bool isVerbose = false;
    Selection selection;
};

/** Number of chunks by the reason why they gave no record and no status; those that did are Refusal::None. */
using RefusalCounts = std::array<unsigned long, static_cast<std::size_t>(Refusal::Count)>;

/**
 * Cuts a byte stream into chunks and dispatches them as the service does, to one listener of each kind, without using
 * the memory that processes share.
 */
class Decoder {
public:
    /** @param format gets every selected event at once; must outlive this object, as must `text`, to which it writes */
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

    // Steps for the chunks that `route` passes on, as in the service.

    void connectionStatusProc(const char* chunk, unsigned length);
    void nmeaSentenceProc(const char* chunk, unsigned length);
    void parseNmeaSentenceProc(const char* chunk, unsigned length);
    void parseGpsProductionDataProc(const char* chunk, unsigned length);
    // No requests are made, so an acknowledgement has no receiver.
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
    bool mIsChecked = false;  // mSentence is what the parser gets
    bool mHasTime = false;
    bool mIsDelivered = false;
    bool mHasRecord = false;
    Refusal mRefusal = Refusal::None;  // if it has no record

    unsigned long mDelivered = 0;
    RefusalCounts mRefusals{};
};

}  // namespace decode

#endif
