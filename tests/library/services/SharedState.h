#ifndef TESTS_LIBRARY_SERVICES_SHARED_STATE_H
#define TESTS_LIBRARY_SERVICES_SHARED_STATE_H

#include <gtest/gtest.h>

#include "tests/support/AnyListener.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchDirectory.h"

constexpr char kConnectionSegment[] = "QVSDK_GpsConnectionLocalMemory";
constexpr char kSettingSegment[] = "QVSDK_GpsSettingLocalMemory";
constexpr char kLocationSegment[] = "QVSDK_GPS_LocationDataMemory";
constexpr char kTestSegment[] = "QVSDK_Test";

using Texts = std::vector<std::string>;

inline std::filesystem::path objectPath(const std::string& name) {
    return "/dev/shm/" + name;
}

inline std::string contentsOf(const std::string& name) {
    return fileContents(objectPath(name));
}

inline void createObject(const std::string& name, const std::string& contents) {
    std::ofstream(objectPath(name), std::ios::binary) << contents;
}

/** Removes the segments before and after a test, as a restart of the system does; a process keeps its locks. */
struct FreshSegments {
    FreshSegments() { remove(); }
    ~FreshSegments() { remove(); }
    static void remove() {
        for (const char* name : {kConnectionSegment, kSettingSegment, kLocationSegment, kTestSegment}) {
            std::filesystem::remove(objectPath(name));
        }
    }
};

/** What has been logged. Expects every line to come from the class and the operation that its text begins with. */
inline Texts textsOf(const LogCapture& log) {
    for (const LogCapture::Line& line : log.lines()) {
        const std::string source = line.file.substr(line.file.rfind('/') + 1);
        if (source == "QvSharedMemory") {
            EXPECT_EQ(line.file + line.function, "QvFramework/SharedMemory/QvSharedMemoryQvSharedMemory");
            continue;
        }
        const std::string start = line.text.substr(0, line.text.find("()"));
        EXPECT_TRUE(start == source + "::" + line.function || start == source + ":" + line.function) << line.text;
        EXPECT_EQ(line.file.substr(0, 23), "src/Public/Gps/private/") << line.text;
        EXPECT_EQ(line.tag, 1) << line.text;
    }
    return log.texts();
}

/** Records every notification, as "antenna 1". */
class Listener final : public AnyListener {
public:
    void tell(const std::string& what, const std::string& text) override { told.push_back(what + " " + text); }
    Texts told;
};

#endif
