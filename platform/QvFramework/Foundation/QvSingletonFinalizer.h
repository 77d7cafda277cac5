#ifndef QVFRAMEWORK_FOUNDATION_QV_SINGLETON_FINALIZER_H
#define QVFRAMEWORK_FOUNDATION_QV_SINGLETON_FINALIZER_H

/** Destroys the process's singletons. A forked child never destroys those of its parent. */
class QvSingletonFinalizer {
public:
    /** Adds a function to run once, at process exit or at the next finalize(), whichever comes first. */
    static void addDestroyFunc(void (*function)());

    /** Runs the functions added so far, newest first, and removes them. */
    static void finalize();
};

#endif
