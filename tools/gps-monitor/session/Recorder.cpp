#include "tools/gps-monitor/session/Recorder.h"

#include <fcntl.h>
#include <fmt/chrono.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace monitor {

namespace {

constexpr mode_t kFileMode = 0666;

std::string pathOfNow() {
    return fmt::format("gps-{:%Y%m%d-%H%M%S}.nmea", fmt::gmtime(std::time(nullptr)));
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return false;
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

}  // namespace

Recorder::Recorder(Model& model, PlainWriter* writer, const std::string& path)
    : mModel(model), mWriter(writer), mPath(path) {
    if (!path.empty()) open();
}

Recorder::~Recorder() {
    if (mFile >= 0) close();
}

void Recorder::toggle() {
    const std::lock_guard lock(mMutex);
    if (mFile >= 0) return close();
    if (mPath.empty()) mPath = pathOfNow();
    try {
        open();
    } catch (const std::system_error& error) {
        fail(error.what());
    }
}

void Recorder::write(std::string_view sentence) {
    const std::lock_guard lock(mMutex);
    if (mFile < 0) return;
    if (writeAll(mFile, sentence)) {
        mModel.update([](MonitorState& state) { ++state.recording->sentences; });
        return;
    }
    const std::system_error error(errno, std::generic_category(), "cannot record to " + mPath);
    close();
    fail(error.what());
}

void Recorder::open() {
    // Without O_NONBLOCK a pipe that has no reader would block the monitor.
    constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    mFile = ::open(mPath.c_str(), kFlags, kFileMode);
    if (mFile < 0) throw std::system_error(errno, std::generic_category(), "cannot record to " + mPath);
    mModel.update([this](MonitorState& state) { state.recording = Recording{mPath}; });
}

void Recorder::close() {
    ::close(std::exchange(mFile, -1));
    mModel.update([](MonitorState& state) {
        const auto& [path, sentences] = *state.recording;
        addLog(state, fmt::format("recorded {} sentences to {}", sentences, path), std::time(nullptr));
        state.recording.reset();
    });
}

void Recorder::fail(const std::string& reason) {
    if (mWriter != nullptr) mWriter->line("log " + reason);
    mModel.update([&](MonitorState& state) {
        addLog(state, reason, std::time(nullptr));
        state.recordingProblem = reason;
    });
}

}  // namespace monitor
