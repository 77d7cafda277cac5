#include "QvFramework/SharedMemory/QvSharedMemory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <numeric>

#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"
#include "tests/support/SystemFaults.h"

namespace {

using namespace std::string_literals;
using Memory = QvSharedMemory<int, 2>;  // 12 bytes

class SharedMemory : public testing::Test {
protected:
    const FreshSegments segments;
};

TEST_F(SharedMemory, SegmentWithoutItsLockCountsAsUnmapped) {
    createObject("QVSDK_TestUnlocked.lock", "no lock");
    const LogCapture log;
    EXPECT_EQ(Memory("QVSDK_TestUnlocked").getData(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(objectPath("QVSDK_TestUnlocked")));
    std::filesystem::remove(objectPath("QVSDK_TestUnlocked.lock"));
    EXPECT_NE(Memory("QVSDK_TestUnlocked").getData(), nullptr) << "the next holder works";
}

TEST_F(SharedMemory, StandardDescriptorsThatTheHostHasClosedAreNotTaken) {
    expectInProcess([] {
        close(STDIN_FILENO);
        close(STDERR_FILENO);
        const Memory memory(kTestSegment);
        EXPECT_NE(memory.getData(), nullptr);
        EXPECT_EQ(dup(STDOUT_FILENO), STDIN_FILENO) << "it is still closed";
        EXPECT_EQ(dup(STDOUT_FILENO), STDERR_FILENO);
    });
}

TEST_F(SharedMemory, ObjectThatExistsIsFinishedUsedOrRefusedByItsLength) {
    const mode_t before = umask(077);
    const auto modeOf = [](const std::string& name) { return std::filesystem::status(objectPath(name)).permissions(); };
    for (std::size_t length = 0; length < 20; ++length) {
        createObject(kTestSegment, std::string(length, 'x'));
        std::filesystem::permissions(objectPath(kTestSegment), std::filesystem::perms(length == 0 ? 0600 : 0664));
        const LogCapture log;
        const bool isTaken = length == 0 || length >= 12;
        EXPECT_EQ(Memory(kTestSegment).getData() != nullptr, isTaken) << length;
        EXPECT_EQ(textsOf(log.lines()), isTaken ? Texts() : Texts{"mmap error\n"}) << length;
        const std::string contents = length == 0 ? std::string(8, '\0') : std::string(length - (isTaken ? 4 : 0), 'x');
        EXPECT_EQ(contentsOf(kTestSegment), isTaken ? "\x08\0\0\0"s + contents : contents);
        EXPECT_EQ(modeOf(kTestSegment), std::filesystem::perms(0664)) << length;
    }
    EXPECT_EQ(modeOf(kTestSegment + std::string(".lock")), std::filesystem::perms(0660));
    EXPECT_EQ(umask(before), 077u) << "as it was";
}

TEST_F(SharedMemory, FaultIsReportedAndDoesNotOutliveItsCause) {
    const struct {
        const char* fault;
        bool isExisting;  // whether the object has been created before
        Faults faults;
        std::string texts;
    } cases[] = {
        {"creation refused", false, {"shm_open", {EACCES}}, "shm_open error\n"},
        {"no descriptor left", true, {"shm_open", {EMFILE}}, "shm_open error\n"},
        {"opening failed", true, {"shm_open", {0, EMFILE}}, "mmap error\n"},
        {"opening refused", true, {"shm_open", {0, EACCES, EACCES}}, "mmap error\n"},
        {"opening refused as a creation", true, {"shm_open", {0, EACCES}}, ""},
        {"sizing failed", false, {"ftruncate", {EIO}}, "ftruncate error\nmmap error\n"},
        {"no memory", false, {"posix_fallocate", {ENOSPC}}, "ftruncate error\nmmap error\n"},
        {"reserving interrupted", true, {"posix_fallocate", {EINTR, EINTR}}, ""},
        {"mapping failed", false, {"mmap", {ENOMEM}}, "mmap error\n"},
        {"mapping of an old object failed", true, {"mmap", {ENOMEM}}, "mmap error\n"},
    };
    const std::string unwritten = "LocationDataMemory::write() lpData = NULL\n";
    const std::string unmapped = unwritten + "LocationDataMemory::read() lpData = NULL\n" + unwritten;
    const auto held = [] { return std::pair(entriesOf("/proc/self/fd"), entriesOf("/proc/self/map_files")); };
    const std::string untouched(sizeof(GPS_LOCATION_DATA_SHARE), '\x5A');
    EXPECT_FALSE(LocationDataMemory().read(nullptr));  // and its lock, which stays
    const auto before = held();
    for (const auto& row : cases) {
        SCOPED_TRACE(row.fault);
        FreshSegments::remove();
        if (row.isExisting) LocationDataMemory();
        GPS_LOCATION_DATA_SHARE record;
        const LogCapture log;
        letFail(row.faults);
        std::memcpy(static_cast<void*>(&record), untouched.data(), sizeof(record));
        auto memory = std::make_unique<LocationDataMemory>();
        const bool isRead = memory->read(&record);
        EXPECT_TRUE(isRead == row.texts.empty() && memory->write(&record) == isRead);
        memory.reset();
        EXPECT_TRUE(isRead || std::memcmp(&record, untouched.data(), sizeof(record)) == 0) << "left alone";
        EXPECT_TRUE(areAllFaultsTaken()) << "called as often as it was to fail";
        EXPECT_TRUE(LocationDataMemory().read(&record)) << "the next holder works";
        EXPECT_EQ(held(), before);
        const Texts texts = textsOf(log.lines());
        EXPECT_EQ(std::accumulate(texts.begin(), texts.end(), std::string()),
                  row.texts.empty() ? "" : row.texts + unmapped);
    }
}

}  // namespace
