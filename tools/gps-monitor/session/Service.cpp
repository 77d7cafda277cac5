#include "tools/gps-monitor/session/Service.h"

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tools/common/Text.h"

namespace monitor {

namespace {

/** A message's place in the source, to be printed before it. */
std::string where(std::string_view file, int line, const char* function) {
    if (file.empty()) return "";
    return fmt::format("{}:{} {}: ", tool::printable(file), line, tool::printable(function));
}

}  // namespace

Service::LogSink::LogSink(Model& model, PlainWriter* writer) : mModel(model), mWriter(writer) {
    QvDbgOutput::setSink(&LogSink::log, this);
}

Service::LogSink::~LogSink() {
    QvDbgOutput::setSink(nullptr, nullptr);
}

void Service::LogSink::log(void* sink, const char* file, const char* function, int line, int, const char* text) {
    const LogSink& self = *static_cast<LogSink*>(sink);
    const std::string message = tool::printable(tool::withoutLineEnd(text));
    if (self.mWriter != nullptr) self.mWriter->line("log " + where(file, line, function) + message);
    const std::string_view path(file);
    const std::string entry = where(path.substr(path.rfind('/') + 1), line, function) + message;
    self.mModel.update([&](MonitorState& state) {
        addLog(state, entry, std::time(nullptr));
        if (std::this_thread::get_id() == self.mThread) state.lastLogMessage = message;
    });
}

Service::Service(Model& model, PlainWriter* writer, Recorder& recorder, GeodeticSystem datum)
    : mLogSink(model, writer),
      mListeners(model, writer, recorder),
      mOtherDatumListener(model),
      mGps(Gps::GetInstance()) {
    mStartMessage = model.snapshot().lastLogMessage;
    mGps->registerGpsSettingListener(&mListeners);
    mGps->registerGpsProductionListener(&mListeners);
    mGps->registerGpsVersionListener(&mListeners);
    mGps->registerGpsLocationDataListener(&mListeners);
    mGps->registerGpsConnectionListener(&mListeners);
    mGps->registerGpsParseNmeaListener(&mListeners, datum);
    mGps->registerGpsNmeaListener(&mListeners, datum);
    // A raw listener, because a parse listener of a datum that is not delivered would keep every epoch from completion.
    mGps->registerGpsNmeaListener(&mOtherDatumListener, otherDatum(datum));
}

Service::~Service() {
    mGps->unRegisterGpsNmeaListener(&mOtherDatumListener);
    mGps->unRegisterGpsNmeaListener(&mListeners);
    mGps->unRegisterGpsParseNmeaListener(&mListeners);
    mGps->unRegisterGpsConnectionListener(&mListeners);
    mGps->unRegisterGpsLocationDataListener(&mListeners);
    mGps->unRegisterGpsVersionListener(&mListeners);
    mGps->unRegisterGpsProductionListener(&mListeners);
    mGps->unRegisterGpsSettingListener(&mListeners);
    QvSingletonFinalizer::finalize();
}

}  // namespace monitor
