// Makes chosen calls of the library fail, or lets a case act in front of them.
//
// The linker of unit_tests sends the calls named below to fault_injection*.cpp instead of to the
// libraries (its option --wrap; the list is in tests/unit/CMakeLists.txt). They are passed on
// unchanged unless an object of this header says otherwise, and only on the thread that made it.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_FAULT_INJECTION_H
#define RGEN_TESTS_SUPPORT_FAULT_INJECTION_H

#include <functional>

namespace rgen_test {

// What a failing call does instead of its work is said behind each name.
enum class Call {
    Malloc,                 // gives null
    Calloc,                 // gives null
    Realloc,                // gives null and leaves the block as it is
    New,                    // raises std::bad_alloc
    ShareXmlContext,        // sharedXmlParserContext: gives no reference
    CreateDirectory,        // Boost.Filesystem: gives false and creates nothing
    TellFileKind,           // Boost.Filesystem: gives the kind of a Windows reparse point
    ReadXmlFile,            // xmlReadFile: gives null
    NewXmlDocument,         // xmlNewDoc: gives null
    NewXmlNode,             // xmlNewNode: gives null
    NewXmlChild,            // xmlNewChild: gives null
    NewXmlAttribute,        // xmlNewProp: gives null
    NewXPathContext,        // xmlXPathNewContext: gives null
    EvaluateXPath,          // xmlXPathEvalExpression: gives null
    NewOutputBuffer,        // xmlOutputBufferCreateIO: gives null
    SaveXmlDocument,        // xmlSaveFormatFileTo: writes all, then gives the code of a full disk
    NewTransformContext,    // xsltNewTransformContext: gives null
    SaveTransformResult,    // xsltSaveResultToString: gives -1 and no text
    WriteFile,              // WriteFile, write: writes nothing and fails (errno is EIO)
    WriteFileInterrupted,   // write: writes nothing and fails with EINTR
    WriteFileShort,         // WriteFile, write: writes the first half and succeeds
    DeleteName,             // unlink: fails
    DescribeFile,           // fstat: fails
    WaitInterrupted,        // poll: fails with EINTR
    Wait,                   // poll: fails with EINVAL
    QueryExitCode,          // GetExitCodeProcess, waitid: fails
    QueryInterrupted,       // waitid: fails with EINTR
    OpenProcessDescriptor,  // the system call pidfd_open: fails
    PrepareSpawn,           // each posix_spawn function that is given file actions or attributes to
                            // fill: fails
    ReadThreadAttributes,   // pthread_getattr_np: fails
    ReadThreadStack,        // pthread_attr_getstack: fails
    SetThreadPointer,       // pthread_setspecific: fails with ENOMEM
    LockMutex               // pthread_mutex_lock: fails with EAGAIN
};

// While it lives, one call fails: the first one of that kind from now on, or the one with the given
// number. Several objects may live at once.
class FailingCall {
public:
    explicit FailingCall(Call call, int number = 1);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    // True when the call has been made and has failed.
    bool reached() const { return remaining_ == 0; }

protected:
    FailingCall(Call call, int number, std::function<void()> action);

private:
    friend bool failsNow(Call call);

    Call call_;
    int remaining_;
    std::function<void()> action_;
    unsigned long long thread_;
    FailingCall* next_;
};

// While it lives, an action runs in front of one call, which is then passed on.
class InterceptedCall : public FailingCall {
public:
    InterceptedCall(Call call, std::function<void()> action, int number = 1)
        : FailingCall(call, number, std::move(action)) {}
};

// For the replacements of the calls: counts this call and tells whether it has to fail.
bool failsNow(Call call);

// The number of the calling thread; found without allocating memory.
unsigned long long currentThreadNumber();

}  // namespace rgen_test

#endif
