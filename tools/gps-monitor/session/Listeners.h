#ifndef GPS_MONITOR_LISTENERS_H
#define GPS_MONITOR_LISTENERS_H

#include <string>

#include "Gps/GpsListeners.h"
#include "tools/gps-monitor/model/Model.h"
#include "tools/gps-monitor/session/Recorder.h"
#include "tools/gps-monitor/terminal/PlainWriter.h"

namespace monitor {

/** Logs a fix that was lost or regained in the model and, when there is one, to the writer. */
void watchFix(Model& model, PlainWriter* writer);

/** Updates the model by all notifications, writes a line for each if there is a writer, and records raw sentences. */
class Listeners : public GpsNmeaListener,
                  public GpsParseNmeaListener,
                  public GpsLocationDataListener,
                  public GpsVersionListener,
                  public GpsConnectionListener,
                  public GpsSettingListener,
                  public GpsProductionListener {
public:
    /** @param writer may be null; all must outlive this object */
    Listeners(Model& model, PlainWriter* writer, Recorder& recorder)
        : mModel(model), mWriter(writer), mRecorder(recorder) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) override;

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override;
    void notifyParseGgaSentence(const GPGGA* record) override;
    void notifyParseGllSentence(const GPGLL* record) override;
    void notifyParseGsaSentence(const GPGSA* record) override;
    void notifyParseGsvSentence(const GPGSV* record) override;
    void notifyParseRmcSentence(const GPRMC* record) override;
    void notifyParseVtgSentence(const GPVTG* record) override;
    void notifyParseZdaSentence(const GPZDA* record) override;
    void notifyParsePubxSentence(const PUBX* record) override;

    void notifyLocationData(const LOCATION_DATA* record) override;
    void notifyRmcData(const GPRMC* record) override;
    void notifyGgaData(const GPGGA* record) override;
    void notifyPascdData(const PASCD* record) override;

    void notifyGpsVersionInfo(const char* version, unsigned int length) override;
    void notifyGpsConnectionStatus(GpsConnectionStatus status) override;
    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) override;

    void notyfySwitchGpsProductionModeRequestResponse(bool acknowledged) override;
    void notifyStartGpsProductionCheckResponse(bool acknowledged) override;
    void notyfyGpsColdStartRequestResponse(bool acknowledged) override;
    void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) override;
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override;

private:
    /** `text` follows the notification's name in the line; `change` is made to the model. */
    template <class Change>
    void handle(Notification notification, const std::string& text, Change change);
    template <class Record, class Change>
    void handleRecord(Notification notification, const Record& record, Change change);
    /** The answer to the request of that name; `subject` follows it in the line. */
    void handleAnswer(Notification notification, bool acknowledged, std::string_view request,
                      const std::string& subject = "");
    template <class Record>
    void handleCheckResult(Notification notification, const Record& record);

    Model& mModel;
    PlainWriter* mWriter;
    Recorder& mRecorder;
};

/** Takes the position from the raw sentences in a second datum. */
class OtherDatumListener : public GpsNmeaListener {
public:
    explicit OtherDatumListener(Model& model) : mModel(model) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) override;

private:
    Model& mModel;
};

}  // namespace monitor

#endif
