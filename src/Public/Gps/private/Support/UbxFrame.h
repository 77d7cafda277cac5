#ifndef GPS_PRIVATE_UBX_FRAME_H
#define GPS_PRIVATE_UBX_FRAME_H

#include <cstdint>
#include <string_view>

/** Class and id of the UBX messages that the library receives. */
enum class UbxMessage : int {
    None = -1,  ///< no UBX frame, or it ends before the id
    AckNak = 0x0500,
    AckAck = 0x0501,
    CfgPrt = 0x0600,
    MonPt = 0x0A20,
    MonPt2 = 0x0A2B,
};

/**
 * A chunk read as a UBX frame: B5 62, class, id, length of the payload (low byte first), payload, checksum. The chunk
 * may hold any bytes and end anywhere; the checksum is not checked.
 */
class UbxFrame {
public:
    /** @param data `length` bytes, which must outlive the view */
    UbxFrame(const char* data, unsigned int length) : mBytes(data, length) {}

    bool hasSync() const { return mBytes.starts_with("\xB5\x62"); }
    bool isAcknowledgement() const { return mBytes.starts_with("\xB5\x62\x05"); }
    UbxMessage message() const {
        return hasSync() && mBytes.size() >= 4 ? static_cast<UbxMessage>(at(2) << 8 | at(3)) : UbxMessage::None;
    }

    /** Announced bytes of payload; 0 when not all of them are present. */
    unsigned int payloadSize() const {
        if (mBytes.size() < kHeaderSize) return 0;
        const unsigned int announced = at(4) | static_cast<unsigned int>(at(5)) << 8;
        return announced <= mBytes.size() - kHeaderSize ? announced : 0;
    }

    // Values at an offset in the payload; all of their bytes must lie inside it.

    std::uint8_t byteAt(unsigned int offset) const { return at(kHeaderSize + offset); }
    std::uint16_t shortAt(unsigned int offset) const {
        return static_cast<std::uint16_t>(byteAt(offset) | byteAt(offset + 1) << 8);
    }
    std::uint32_t wordAt(unsigned int offset) const {
        return shortAt(offset) | static_cast<std::uint32_t>(shortAt(offset + 2)) << 16;
    }

private:
    static constexpr unsigned int kHeaderSize = 6;

    std::uint8_t at(unsigned int index) const { return static_cast<std::uint8_t>(mBytes[index]); }

    std::string_view mBytes;
};

#endif
