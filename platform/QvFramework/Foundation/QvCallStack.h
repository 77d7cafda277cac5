#ifndef QVFRAMEWORK_FOUNDATION_QV_CALL_STACK_H
#define QVFRAMEWORK_FOUNDATION_QV_CALL_STACK_H

/** Call stacks for debugging. */
class QvCallStack {
public:
    /** Writes the caller's call stack to the debug output, at most `depth` frames; -1 for all. */
    static void dumpDirectly(int depth);
};

#endif
