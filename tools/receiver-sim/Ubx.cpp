#include "tools/receiver-sim/Ubx.h"

#include "tools/receiver-sim/Nmea.h"

namespace sim {

namespace {

/** Fletcher's sum over class, id, length and payload. */
std::string checksumBytes(std::string_view bytes) {
    unsigned char a = 0;
    unsigned char b = 0;
    for (const char byte : bytes) {
        a = static_cast<unsigned char>(a + static_cast<unsigned char>(byte));
        b = static_cast<unsigned char>(b + a);
    }
    return {static_cast<char>(a), static_cast<char>(b)};
}

}  // namespace

MessageId idOf(std::string_view bytes) {
    return {static_cast<unsigned char>(bytes.at(0)), static_cast<unsigned char>(bytes.at(1))};
}

std::string ubxFrame(MessageId id, std::string_view payload) {
    std::string covered{static_cast<char>(id.messageClass), static_cast<char>(id.id), 0, 0};
    writeUnsigned(covered, 2, 2, payload.size());
    covered += payload;
    return std::string(kUbxSync) + covered + checksumBytes(covered);
}

bool isUbxFrame(std::string_view bytes) {
    if (!bytes.starts_with(kUbxSync) || bytes.size() < kUbxOverhead) return false;
    if (bytes.size() != announcedLength(bytes) + kUbxOverhead) return false;
    return bytes.substr(bytes.size() - 2) == checksumBytes(bytes.substr(2, bytes.size() - 4));
}

std::size_t announcedLength(std::string_view frame) {
    return static_cast<std::size_t>(readUnsigned(frame, 4, 2));
}

std::uint64_t readUnsigned(std::string_view bytes, std::size_t offset, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = width; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
    return value;
}

void writeUnsigned(std::string& bytes, std::size_t offset, std::size_t width, std::uint64_t value) {
    for (std::size_t i = 0; i < width; ++i)
        bytes.at(offset + i) = static_cast<char>(value >> 8 * i & 0xFF);
}

std::string hexadecimal(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        text += formatted("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    return text;
}

}  // namespace sim
