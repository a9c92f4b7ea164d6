// Makes chosen calls fail, or lets a case act right before them.
//
// The linker sends the calls of the enumeration to replacements instead of to the libraries, as its
// option --wrap says: allocations to allocation_faults.cpp in every program that injects faults,
// those of the XML libraries and of the system to library_faults.cpp and system_faults_*.cpp in
// unit_tests. The replacements pass the calls on unchanged unless an object of this header says
// otherwise, and only on the thread that made it.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_FAULT_INJECTION_H
#define RGEN_TESTS_SUPPORT_FAULT_INJECTION_H

#include <bitset>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <utility>

namespace rgen_test {

// The comment says what a failing call does instead of its work.
enum class Call {
    Malloc,                 // returns null
    Calloc,                 // returns null
    Realloc,                // returns null and leaves the block as it is
    New,                    // every form of operator new: throws std::bad_alloc or returns null
    ShareXmlContext,        // sharedXmlParserContext: returns no reference
    CreateDirectory,        // Boost.Filesystem: returns false and creates nothing
    TellFileKind,           // Boost.Filesystem: returns the kind of a Windows reparse point
    ReadXmlFile,            // xmlReadFile: returns null
    NewXmlDocument,         // xmlNewDoc: returns null
    NewXmlNode,             // xmlNewNode: returns null
    NewXmlChild,            // xmlNewChild: returns null
    NewXmlAttribute,        // xmlNewProp: returns null
    NewXPathContext,        // xmlXPathNewContext: returns null
    EvaluateXPath,          // xmlXPathEvalExpression: returns null
    NewOutputBuffer,        // xmlOutputBufferCreateIO: returns null
    SaveXmlDocument,        // xmlSaveFormatFileTo: writes all, then returns the code of a full disk
    NewTransformContext,    // xsltNewTransformContext: returns null
    SaveTransformResult,    // xsltSaveResultToString: returns -1 and no text
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
    LockMutex,              // pthread_mutex_lock: fails with EAGAIN
    FileOperation           // one that io_faults_posix.h watches: what its fault says
};
constexpr std::size_t callCount = static_cast<std::size_t>(Call::FileOperation) + 1;

enum class FailureForm {
    One,     // a single call fails
    AllFrom  // that call and all later ones fail
};

// While it lives, one call fails: the first one of that kind from now on, or the one with that
// number. Several objects may live at once.
class FailingCall {
public:
    explicit FailingCall(Call call, int number = 1)
        : FailingCall({call}, static_cast<std::size_t>(number), FailureForm::One) {}
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    // True when the call has been made and has failed.
    bool reached() const { return count_ >= number_; }

protected:
    // Calls of all these kinds are counted together. With the number 0 none of them fails.
    FailingCall(std::initializer_list<Call> calls, std::size_t number, FailureForm form,
                std::function<void()> action = nullptr);

    std::size_t count() const { return count_; }

private:
    friend bool failsNow(Call call);
    bool countsAsFailure(Call call) const;

    std::bitset<callCount> calls_;
    std::size_t number_;
    FailureForm form_;
    // Mutable, since cases declare these objects const.
    mutable std::size_t count_ = 0;
    std::function<void()> action_;
    unsigned long long thread_;
    FailingCall* next_;
};

// While it lives, an action runs right before one call, which is then passed on.
class InterceptedCall : public FailingCall {
public:
    InterceptedCall(Call call, std::function<void()> action, int number = 1)
        : FailingCall({call}, static_cast<std::size_t>(number), FailureForm::One,
                      std::move(action)) {}
};

// While it lives, allocations of every kind are counted together, and the one with that number
// fails, alone or with all later ones. The number 0 lets all of them succeed.
class FailingAllocation : public FailingCall {
public:
    explicit FailingAllocation(std::size_t number = 0, FailureForm form = FailureForm::One)
        : FailingCall({Call::Malloc, Call::Calloc, Call::Realloc, Call::New}, number, form) {}

    // The allocations so far, the one that failed included; later ones may be missing.
    using FailingCall::count;
};

// For the replacements of the calls: counts this call and tells whether it has to fail.
bool failsNow(Call call);

}  // namespace rgen_test

#endif
