#ifndef QVFRAMEWORK_FOUNDATION_QV_THREAD_ANNOTATIONS_H
#define QVFRAMEWORK_FOUNDATION_QV_THREAD_ANNOTATIONS_H

/** Attributes for clang's -Wthread-safety; nothing for other compilers. */
#if defined(__clang__)
#define QV_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define QV_THREAD_ATTRIBUTE(x)
#endif

#define QV_CAPABILITY QV_THREAD_ATTRIBUTE(capability("mutex"))
#define QV_SCOPED_CAPABILITY QV_THREAD_ATTRIBUTE(scoped_lockable)
#define QV_GUARDED_BY(x) QV_THREAD_ATTRIBUTE(guarded_by(x))
#define QV_REQUIRES(...) QV_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define QV_RETURN_CAPABILITY(x) QV_THREAD_ATTRIBUTE(lock_returned(x))
#define QV_EXCLUDES(...) QV_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define QV_ACQUIRE(...) QV_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define QV_RELEASE(...) QV_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define QV_NO_THREAD_SAFETY_ANALYSIS QV_THREAD_ATTRIBUTE(no_thread_safety_analysis)

#endif
