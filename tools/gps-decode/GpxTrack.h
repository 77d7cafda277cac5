#ifndef GPS_DECODE_GPX_TRACK_H
#define GPS_DECODE_GPX_TRACK_H

#include "tools/gps-decode/FixFormat.h"

namespace decode {

/** The positions as one GPX 1.1 track. Speed and course are in the TrackPointExtension, which most readers know. */
class GpxTrack : public FixFormat {
public:
    GpxTrack(std::string name, std::chrono::milliseconds gap) : FixFormat(gap), mName(std::move(name)) {}

    void begin(std::string& text) override;
    void end(std::string& text) override;

private:
    void writeFix(const Fix& fix, std::string& text) override;
    void endSegment(std::string& text);

    const std::string mName;
    bool mIsInSegment = false;
};

}  // namespace decode

#endif
