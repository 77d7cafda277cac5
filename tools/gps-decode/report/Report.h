#ifndef GPS_DECODE_REPORT_REPORT_H
#define GPS_DECODE_REPORT_REPORT_H

#include "tools/gps-decode/report/LogSummary.h"

namespace decode {

/** One HTML page of a whole log, written at its end. */
class Report : public FixFormat {
public:
    Report(const std::string& name, std::chrono::milliseconds gap) : FixFormat(gap) { mLog.name = name; }

    void write(const Event& event, std::string& text) override;
    void endChunk(const ChunkEnd& end) override;
    void end(std::string& text) override;

private:
    void writeFix(const Fix& fix, std::string& text) override;
    void addPlace(const Fix& fix);
    void addOutage(const Fix& fix);
    void closeOutage(const std::optional<UtcTime>& to);
    void addToEpoch(const Event& event);
    void finishEpoch();
    void addSatellites(const GPGSV& gsv, std::string_view talker);
    void addAntenna(GpsConnectionStatus status);
    void addNote(const std::string& text, bool isRepeated);

    LogSummary mLog;
    std::optional<SparsePath::Point> mLastPlace;
    std::optional<Outage> mOutage;  // that has not ended
    std::optional<UtcTime> mEpoch;
    bool mIsAfterFirstEpoch = false;
    unsigned mEpochKinds = 0;  // bits of the sentences that the epoch has
    unsigned mStarts = 0;
    std::optional<GpsConnectionStatus> mAntenna;
};

}  // namespace decode

#endif
