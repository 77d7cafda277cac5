#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>

#include "tools/gps-monitor/Monitor.h"
#include "tools/gps-monitor/session/Session.h"
#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr std::chrono::milliseconds kShortestRedraw{100};
constexpr std::chrono::seconds kLongestRedraw{1};  // ages and the link's status change without an event

/** Draws the screen when the model changes, and carries out keys and signals. */
class Screen {
public:
    Screen(const Options& options, Model& model, Signals& signals, Terminal& terminal)
        : mModel(model),
          mSignals(signals),
          mTerminal(terminal),
          mDatum(options.datum),
          mSession(options, model, nullptr),
          mReadsKeys(isatty(STDIN_FILENO) != 0) {
        mControls.coordinates = options.coordinates;
        mControls.speed = options.speed;
    }

    void run() {
        while (!mIsEnding && !mSession.isOver()) {
            if (Clock::now() >= nextDraw()) draw();
            waitForEvent();
            handleSignals();
            handleKeys();
        }
    }

private:
    Clock::time_point nextDraw() const {
        return mLastDraw + (mHasChanged ? Clock::duration(kShortestRedraw) : Clock::duration(kLongestRedraw));
    }

    void draw() {
        const MonitorState state = mModel.snapshot();
        Canvas canvas(mTerminal.width(), mTerminal.height());
        drawScreen(canvas, {state, mControls, mDatum, mSession.link(state), Clock::now()});
        mTerminal.show(canvas);
        mLastDraw = Clock::now();
        mHasChanged = false;
    }

    void waitForEvent() {
        pollfd waited[] = {
            {mSignals.fd(), POLLIN, 0},
            {mReadsKeys ? STDIN_FILENO : -1, POLLIN, 0},
            {mHasChanged ? -1 : mModel.changed().fd(), POLLIN, 0},  // a change is known: wait for the next draw
        };
        poll(waited, 3, millisecondsUntil(std::min(nextDraw(), mSession.end())));
        if ((waited[1].revents & (POLLHUP | POLLERR)) != 0) mIsEnding = true;
        if (waited[2].revents != 0) {
            mModel.changed().clear();
            mHasChanged = true;
        }
    }

    void handleSignals() {
        while (const auto signal = mSignals.take()) {
            if (isEndSignal(*signal)) mIsEnding = true;
            if (*signal == SIGWINCH) mTerminal.resize();
            if (*signal == SIGTSTP) mTerminal.suspend();
            drawSoon();
        }
    }

    void handleKeys() {
        if (!mReadsKeys) return;
        for (int pressed = mTerminal.readKey(); pressed >= 0; pressed = mTerminal.readKey()) {
            if (const Key* key = mControls.press(pressed, mModel.snapshot())) perform(*key);
            drawSoon();
        }
    }

    void perform(const Key& key) {
        Requester& requester = mSession.requester();
        switch (key.action) {
            case Action::quit:
                mIsEnding = true;
                break;
            case Action::redraw:
                mTerminal.redraw();
                break;
            case Action::record:
                mSession.recorder().toggle();
                break;
            case Action::setting:
                requester.requestSetting(key.setting);
                break;
            case Action::version:
                requester.requestVersion();
                break;
            case Action::productionCheck:
                requester.requestProductionCheck();
                break;
            case Action::publishLocation:
                requester.publishLocation();
                break;
            case Action::reset:
                requester.requestReset();
                break;
            case Action::coldStart:
                requester.requestColdStart();
                break;
            default:
                break;
        }
    }

    void drawSoon() { mLastDraw = Clock::time_point(); }

    Model& mModel;
    Signals& mSignals;
    Terminal& mTerminal;
    const GeodeticSystem mDatum;
    Session mSession;
    Controls mControls;
    const bool mReadsKeys;
    Clock::time_point mLastDraw;
    bool mHasChanged = false;
    bool mIsEnding = false;
};

}  // namespace

void runScreen(const Options& options, Model& model, Signals& signals, Terminal& terminal) {
    Screen(options, model, signals, terminal).run();
}

}  // namespace monitor
