#ifndef RECEIVER_SIM_UBX_H
#define RECEIVER_SIM_UBX_H

#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace sim {

/** Class and id of a binary message. */
struct MessageId {
    unsigned char messageClass;
    unsigned char id;
    auto operator<=>(const MessageId&) const = default;
};

/** Class and id, the first two bytes. */
MessageId idOf(std::string_view bytes);

constexpr std::string_view kUbxSync{"\xB5\x62", 2};
/** Bytes before the payload: sync, class, id, length. */
constexpr std::size_t kUbxHeaderSize = 6;
constexpr std::size_t kUbxOverhead = kUbxHeaderSize + 2;

/** The command that switches to production mode: announces 20 bytes of payload, has 14 and no checksum. */
constexpr std::string_view kSwitchToProduction{
    "\xB5\x62\x06\x45\x14\x00\x00\x00\x00\x00\x00\x01\x00\x00\x01\x00\x1E\x00\xE8\x03", 20};

/** A whole frame around the payload. */
std::string ubxFrame(MessageId id, std::string_view payload);

/** Whether the bytes are one frame whose checksum holds. */
bool isUbxFrame(std::string_view bytes);

/** Number of payload bytes that a frame's header announces; the header must be there. */
std::size_t announcedLength(std::string_view frame);

/** Unsigned little-endian integer; the bytes must be there. */
std::uint64_t readUnsigned(std::string_view bytes, std::size_t offset, std::size_t width);
void writeUnsigned(std::string& bytes, std::size_t offset, std::size_t width, std::uint64_t value);

/** Little-endian IEEE number (float or double). */
template <class Number>
Number readNumber(std::string_view bytes, std::size_t offset) {
    using Bits = std::conditional_t<sizeof(Number) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Number>(static_cast<Bits>(readUnsigned(bytes, offset, sizeof(Number))));
}

/** "b5620601...". */
std::string hexadecimal(std::string_view bytes);

}  // namespace sim

#endif
