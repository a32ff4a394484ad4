// Work that runs in the background and then hands its request on: the
// procedure (IDeferredProcedure), the record of its completion
// (CompletionInfo) and whoever goes on from there (IThreadedCommandSink).
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <cstdint>

#include "VString.h"
#include "VUnknown.h"

struct CompletionInfo;

class IThreadedCommandSink : public virtual IUnknown {
public:
    // The command has ended. Called on its worker thread; must not throw.
    virtual void OnCommandComplete(void* context, CompletionInfo& info) = 0;

protected:
    virtual ~IThreadedCommandSink() = default;
};

struct CompletionInfo {
    void* context = nullptr;             // the request's, handed back untouched
    VRefPtr<IThreadedCommandSink> sink;  // called by the worker thread when the command ends
    VRefPtr<IThreadedCommandSink> next;  // the request's own handler, which goes on with it
    DWORD code = 0;    // the exit code, or the error that kept the command from starting
    uint8_t flag = 0;  // the procedure's flag byte when the command ended
};

// What a caller defers until a command has ended.
struct DeferredRequest {
    void* context = nullptr;
    VRefPtr<IThreadedCommandSink> handler;
};

class IDeferredProcedure : public virtual IUnknown {
public:
    // Runs commandLine in the background, then hands the completion record
    // to request.handler on the worker thread. Throws std::system_error when
    // no thread can be started. One command at a time.
    virtual void Start(const VUnicodeString& commandLine, const DeferredRequest& request) = 0;
    // Sets the flag byte (cleared by Start): the handler finds it set in the
    // record and may drop the request. The command itself runs to its end.
    virtual void Cancel() = 0;

protected:
    virtual ~IDeferredProcedure() = default;
};
