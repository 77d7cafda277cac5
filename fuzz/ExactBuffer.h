#ifndef FUZZ_EXACT_BUFFER_H
#define FUZZ_EXACT_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "QvFramework/Foundation/QvDbgOutput.h"

/** The input in its own allocation, so that a read past its end is detected. */
class ExactBuffer {
public:
    ExactBuffer(const std::uint8_t* data, std::size_t size) : mBytes(data, data + size) {}

    char* data() { return reinterpret_cast<char*>(mBytes.data()); }
    unsigned int size() const { return static_cast<unsigned int>(mBytes.size()); }

private:
    std::vector<std::uint8_t> mBytes;
};

/** Discards the log: there are millions of messages. */
inline void silenceLog() {
    QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
}

/** Ends the fuzzer with a finding when the condition does not hold. */
inline void require(bool condition) {
    if (!condition) __builtin_trap();
}

#endif
