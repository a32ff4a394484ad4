// ISynchObject: a lock shared between threads and processes, reference-counted
// like every interface of the library (the last Release destroys the object).
#pragma once

#include <windows.h>

#include <unknwn.h>

class ISynchObject : public IUnknown {
public:
    // Waits, without time limit, until the caller owns the lock. False only
    // when there is nothing to wait for (the lock could not be created).
    virtual bool Lock() = 0;
    // Gives up ownership; false when the caller did not own the lock.
    virtual bool Unlock() = 0;

protected:
    virtual ~ISynchObject() = default;
};
