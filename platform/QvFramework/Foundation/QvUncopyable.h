#ifndef QVFRAMEWORK_FOUNDATION_QV_UNCOPYABLE_H
#define QVFRAMEWORK_FOUNDATION_QV_UNCOPYABLE_H

/** Private base of classes that must not be copied. */
class QvUncopyable {
public:
    QvUncopyable(const QvUncopyable&) = delete;
    QvUncopyable& operator=(const QvUncopyable&) = delete;

protected:
    constexpr QvUncopyable() = default;
    ~QvUncopyable() = default;
};

#endif
