#include "tools/common/RecordFields.h"

#include <gtest/gtest.h>

namespace {

/** Follows a record's fields through its memory: each must begin where the one before ended, but for alignment. */
template <class Record>
class Coverage {
public:
    template <class Owner, class Value>
    void add(const Field<Owner, Value>& field) {
        add(field.name, offset(field.member), sizeof(Value), alignof(Value));
    }
    template <class Owner, class Array, class Count>
    void add(const CountedField<Owner, Array, Count>& field) {
        add(field.name, offset(field.member), sizeof(Array), alignof(Array));
    }

    std::size_t end() const { return mEnd; }

private:
    template <class Value>
    std::size_t offset(Value Record::*member) const {
        return static_cast<std::size_t>(reinterpret_cast<const char*>(&(mRecord.*member)) -
                                        reinterpret_cast<const char*>(&mRecord));
    }

    void add(const char* name, std::size_t offset, std::size_t size, std::size_t alignment) {
        EXPECT_EQ(offset, (mEnd + alignment - 1) / alignment * alignment) << name << " is not the next field";
        mEnd = offset + size;
    }

    Record mRecord{};
    std::size_t mEnd = 0;
};

template <class Record>
class RecordFields : public testing::Test {};

using Records = testing::Types<GPGGA, GPGLL, GPGSA, GPGSV_SATELLITE, GPGSV, GPRMC, GPVTG, GPZDA, PUBX, PARSE_NMEA,
                               PASCD_SAMPLE, PASCD, LOCATION_DATA, PRODUCTION_DATA, GPS_PRODUCTION_CHECK_DATA>;
TYPED_TEST_SUITE(RecordFields, Records);

TYPED_TEST(RecordFields, AreAllDescribedInDeclarationOrder) {
    Coverage<TypeParam> coverage;
    std::apply([&](const auto&... field) { (coverage.add(field), ...); }, kFields<TypeParam>);
    constexpr std::size_t kAlignment = alignof(TypeParam);
    EXPECT_EQ((coverage.end() + kAlignment - 1) / kAlignment * kAlignment, sizeof(TypeParam));
}

TEST(CountedRecordFields, ShowNoMoreSatellitesThanTheRecordHolds) {
    struct CountSatellites {
        std::size_t& count;
        void operator()(const char*, std::span<const GPGSV_SATELLITE> satellites) { count = satellites.size(); }
        void operator()(const char*, long long) {}
    };
    const struct {
        unsigned inView;
        std::size_t shown;
    } cases[] = {{0, 0}, {3, 3}, {128, 128}, {129, 128}, {0xFFFFFFFF, 128}};
    for (const auto& [inView, shown] : cases) {
        GPGSV record{};
        record.SatView = inView;
        std::size_t count = 9999;
        visitFields(record, CountSatellites{count});
        EXPECT_EQ(count, shown) << inView;
    }
}

}  // namespace
