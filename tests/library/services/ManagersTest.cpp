#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Version/GpsVersionManager.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Messages.h"
#include "tests/support/Processes.h"

// What the managers refuse or leave alone, beyond what a controller can cause.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kShort[] = "$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n";

class Managers : public testing::Test {
protected:
    /** Expects the lines so far, each of which begins with the class that logged it. */
    void expectLogged(const Texts& texts) { EXPECT_EQ(textsOf(mLog.take()), texts); }

    const FreshSegments segments;
    LogCapture mLog;
    Listener mListener{"L"};
};

TEST_F(Managers, RefuseMissingArguments) {
    GpsConnectionManager connection;
    GpsConnectionStatus status{};
    EXPECT_FALSE(connection.parseConnectionStatus(nullptr, &status) ||
                 connection.parseConnectionStatus(kShort, nullptr) || connection.getGpsConnectionStatus(nullptr) ||
                 connection.readLocalMemory(nullptr));
    GpsSettingManager setting;
    EXPECT_FALSE(setting.analizeGpsSettingResponse(nullptr, 10, &mListener) ||
                 setting.analizeGpsSettingResponse(kAck.data(), 0, &mListener) ||
                 setting.analizeGpsSettingResponse(kAck.data(), 10, nullptr) || setting.readLocalMemory(nullptr));
    GpsVersionManager version;  // no answer carries one
    EXPECT_FALSE(version.requestGpsVersionInfo(nullptr) || version.parseGpsVersionData(kAck.data(), &mListener) ||
                 version.gpsVersionInfoResponse(kAck.data(), 10, &mListener));
    const std::string argument = "() Argument Error";
    const std::string antenna = "GpsConnectionManager::", answer = "GpsSettingManager::analizeGpsSettingResponse";
    expectLogged({antenna + "parseConnectionStatus" + argument + "\n",
                  antenna + "parseConnectionStatus" + argument + "\n",
                  antenna + "getGpsConnectionStatus" + argument + "\n", antenna + "readLocalMemory" + argument + "!\n",
                  answer + argument + "\n", answer + argument + "\n", answer + argument + "\n",
                  "GpsSettingManager::readLocalMemory" + argument + "!\n",
                  "GpsVersionManager::requestGpsVersionInfo" + argument});

    GpsProductionManager production;
    production.setRequestType(REQUEST_TYPE_COLD_START);
    EXPECT_FALSE(production.switchGpsProductionResponse(kAck.data(), 0, &mListener));
    for (const char* const data : {static_cast<const char*>(nullptr), kAck.data()}) {
        Listener* const to = data == nullptr ? &mListener : nullptr;
        EXPECT_FALSE(production.switchGpsProductionResponse(data, 4, to) ||
                     production.parseGpsProductionData(data, to, 100) ||
                     production.parseGpsProductionDataMonPt(data, to, 100) ||
                     production.parseGpsProductionDataMonPt2(data, to, 100));
    }
    EXPECT_TRUE(production.switchGpsProductionResponse(kAck.data(), 10, &mListener)) << "nothing has changed";
    EXPECT_THAT(mListener.take(), ElementsAre("L:cold start yes"));
    production.setRequestType(static_cast<RequestType>(77));
    EXPECT_TRUE(production.switchGpsProductionResponse(kAck.data(), 10, &mListener));
    EXPECT_FALSE(production.switchGpsProductionResponse("\xB5\x62\x06", 3, &mListener));
    expectLogged({"GpsProductionManager::switchGpsProductionResponse() unknown RequestType\n",
                  "GpsProductionManager::switchGpsProductionResponse() unknown response\n"});
}

TEST_F(Managers, StoreTheAntennaStatusForEveryProcessAndDeliverIt) {
    GpsConnectionManager manager;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{&mListener}, {nullptr}, {&mListener}};
    manager.changeGpsConnectionStatus(nullptr, list, 3);
    manager.changeGpsConnectionStatus(kShort, nullptr, 3);
    manager.changeGpsConnectionStatus(kShort, list, 2);
    EXPECT_THAT(mListener.take(), ElementsAre("L:antenna 2"));
    manager.setConnectionStatus(GPS_CONNECTION_STATUS_OK);  // this process's copy only
    expectInProcess([] { EXPECT_EQ(GpsConnectionManager().getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT); });
    EXPECT_EQ(contentsOf(kConnectionSegment), std::string("\4\0\0\0\2\0\0\0", 8));
    EXPECT_TRUE(manager.getGpsConnectionStatus(&mListener));
    EXPECT_THAT(mListener.take(), ElementsAre("L:antenna 2"));
}

TEST_F(Managers, KeepACopyOfWhatCannotBeShared) {
    for (const char* const segment : {kConnectionSegment, kSettingSegment})
        createObject(segment, "short");
    GpsConnectionManager connection;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{&mListener}};
    connection.changeGpsConnectionStatus(kShort, list, 1);
    EXPECT_EQ(connection.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT);
    connection.setConnectionStatus(GPS_CONNECTION_STATUS_OPEN);
    EXPECT_EQ(connection.getConnectionStatus(), GPS_CONNECTION_STATUS_OPEN);
    EXPECT_THAT(mListener.take(), IsEmpty());
    const std::string antenna = "GpsConnectionManager::", noData = "() lpData = NULL\n";
    const std::string get = antenna + "getConnectionStatus() readLocalMemory Error!\n";
    expectLogged({"mmap error\n", antenna + "readLocalMemory" + noData, get, antenna + "writeLocalMemory" + noData,
                  antenna + "parseConnectionStatus() writeLocalMemory Error!\n", antenna + "readLocalMemory" + noData,
                  get, antenna + "readLocalMemory" + noData, get});

    auto [link, peer] = GpsHalMemoryLink::makePair();
    GpsHal::setLink(std::move(link));
    GpsController controller;  // which receives
    mLog.take();
    GpsSettingManager setting;
    EXPECT_EQ(setting.getBaseAndFinishFlg(), std::pair(GEODETIC_SYSTEM_WGS84, false));
    EXPECT_FALSE(setting.requestGpsSetting(GPS_SETTING_DATUM_TOKYO));
    const GPS_SETTING_LOCAL_MEMORY record{};
    EXPECT_FALSE(setting.writeLocalMemory(&record));
    const std::string settings = "GpsSettingManager::";
    expectLogged({"mmap error\n", settings + "readLocalMemory" + noData,
                  settings + "getBaseGeodeticSystem() readLocalMemory Error!\n", settings + "readLocalMemory" + noData,
                  settings + "getSettingFinishFlg() readLocalMemory Error!\n", settings + "readLocalMemory" + noData,
                  settings + "requestGpsSetting() readLocalMemory Error!\n", settings + "writeLocalMemory" + noData});
    EXPECT_EQ(peer->written().size(), 52U) << "it was sent";
    EXPECT_TRUE(setting.analizeGpsSettingResponse(kAck.data(), 10, &mListener)) << "the request stays queued";
    EXPECT_THAT(mListener.take(), ElementsAre("L:setting 5 yes"));
}

/** Offers the first `length` bytes, after which nothing may be read. */
bool parse(const std::string& frame, std::size_t length, Listener& listener) {
    const std::vector<char> exact(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length));
    return GpsProductionManager().parseGpsProductionData(exact.data(), &listener, static_cast<unsigned>(length));
}

/** A MonPt2 payload with so many entries. */
std::string monPt2(unsigned char first, unsigned char second) {
    std::string payload(24 + 28 * first + 36 * second, '\0');
    payload[2] = static_cast<char>(first);
    payload[3] = static_cast<char>(second);
    return payload;
}

TEST_F(Managers, RefuseProductionResultsTooShortForWhatTheyAnnounce) {
    const struct {
        unsigned char id;
        std::string payload;
        const char* name;
    } cases[] = {
        {0x20, std::string(52, '\0'), "MonPt"}, {0x2B, monPt2(0, 0), "MonPt2"}, {0x2B, monPt2(255, 255), "MonPt2"}};
    for (const auto& row : cases) {
        const std::string frame = ubxFrame(0x0A, row.id, row.payload);
        const std::size_t end = frame.size() - 2;  // of the payload
        std::size_t refused = 0;
        for (std::size_t length = 4; length < end; ++length, ++refused)
            EXPECT_FALSE(parse(frame, length, mListener)) << length;
        for (std::size_t announced = 0; announced < 0x10000; announced += announced < 70 ? 1 : 97) {
            if (announced >= row.payload.size() && announced <= row.payload.size() + 2) continue;
            std::string other = frame;  // with all bytes present
            other[4] = static_cast<char>(announced);
            other[5] = static_cast<char>(announced >> 8);
            EXPECT_FALSE(parse(other, other.size(), mListener)) << announced;
            ++refused;
        }
        EXPECT_THAT(mListener.take(), IsEmpty());
        for (std::size_t length = end; length <= frame.size(); ++length)
            EXPECT_TRUE(parse(frame, length, mListener)) << length;
        EXPECT_EQ(mListener.take().size(), 3u);
        expectLogged(Texts(refused, std::string("GpsProductionManager::parseGpsProductionData() : "
                                                "parseGpsProductionData") +
                                        row.name + "() = false\n"));
    }
}

TEST_F(Managers, RefuseOtherFramesAsProductionResults) {
    const auto expect = [&](auto parser, const std::string& start, const std::string& text) {
        GpsProductionManager manager;
        const unsigned read = text.find("Header") != std::string::npos ? 2 : 4;
        EXPECT_FALSE((manager.*parser)((start + '\x5E' + std::string(95, '\0')).data(), &mListener, 100) ||
                     (manager.*parser)(start.data(), &mListener, read));
        expectLogged(Texts(2, "GpsProductionManager:" + text + "\n"));
    };
    const auto monPt = &GpsProductionManager::parseGpsProductionDataMonPt;
    const auto monPt2 = &GpsProductionManager::parseGpsProductionDataMonPt2;
    expect(monPt, "\xB5\x63\x0A\x20", "parseGpsProductionDataMonPt() Header Error [b5][63]");
    expect(monPt, "\xB5\x62\x0A\x2B", ":parseGpsProductionDataMonPt() ID Error [0a][2b]");
    expect(monPt2, "\x01\x62\x0A\x2B", ":parseGpsProductionDataMonPt2() Header Error [01][62]");
    expect(monPt2, "\xB5\x62\xFF\x2B", ":parseGpsProductionDataMonPt2() ID Error [ff][2b]");
    EXPECT_THAT(mListener.take(), IsEmpty());
}

}  // namespace
