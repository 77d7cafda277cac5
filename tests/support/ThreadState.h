#ifndef TESTS_SUPPORT_THREAD_STATE_H
#define TESTS_SUPPORT_THREAD_STATE_H

#include <sys/types.h>

#include <fstream>
#include <string>
#include <thread>

/** Returns when a thread of any process sleeps in the kernel, or has ended. */
inline void waitUntilBlocked(pid_t thread) {
    for (;;) {
        const std::string id = std::to_string(thread);
        // An emulator makes up /proc/ID/stat of its own process.
        std::ifstream file("/proc/" + id + "/task/" + id + "/stat");
        std::string text;
        std::getline(file, text);
        const std::size_t state = text.rfind(") ");
        if (state == std::string::npos || text[state + 2] == 'S' || text[state + 2] == 'Z') return;
        std::this_thread::yield();
    }
}

#endif
