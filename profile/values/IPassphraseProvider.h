// IPassphraseProvider: how a protected string learns the configuration pass
// phrase, without knowing who keeps it (the configuration library, a test,
// a conversion from an old pass phrase to a new one).
// VFixedPassphraseProvider answers a pass phrase given to it.
#pragma once

#include "VString.h"
#include "VUnknown.h"

class IPassphraseProvider : public IUnknown {
public:
    // True, with the pass phrase in passphrase, when a configuration pass
    // phrase is in use; false, with passphrase emptied, when none is. Pass a
    // sensitive string: the pass phrase must not land in a plain one. Safe to
    // call from any thread.
    virtual bool GetPassphrase(VUnicodeString& passphrase) = 0;

protected:
    virtual ~IPassphraseProvider() = default;
};

class VFixedPassphraseProvider : public VUnknown<IPassphraseProvider> {
public:
    // An empty pass phrase means that none is in use.
    explicit VFixedPassphraseProvider(const VUnicodeString& passphrase)
        : passphrase_(Str::Sensitive) {
        passphrase_ = passphrase;
    }

    bool GetPassphrase(VUnicodeString& passphrase) override {
        passphrase = passphrase_;
        return !passphrase_.IsEmpty();
    }

private:
    VUnicodeString passphrase_;
};
