#ifndef TESTS_LIBRARY_SERVICES_SHARED_STATE_H
#define TESTS_LIBRARY_SERVICES_SHARED_STATE_H

#include <gtest/gtest.h>

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
        for (const char* name : {kConnectionSegment, kSettingSegment, kLocationSegment, kTestSegment})
            std::filesystem::remove(objectPath(name));
    }
};

/** The texts of lines, each of which must come from the class and the operation that its text begins with. */
inline Texts textsOf(const std::vector<LogCapture::Line>& lines) {
    Texts texts;
    for (const LogCapture::Line& line : lines) {
        texts.push_back(line.text);
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
    return texts;
}

#endif
