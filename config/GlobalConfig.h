// GlobalConfig: the options that belong to no session, shared by the terminal
// client, the file-transfer client and the tray program. Each option of
// GlobalOptionTable.h is a typed member of its kind; the object loads them
// from, and saves them to, the global options key of a profile store: "Global"
// below the store's root (HKEY_CURRENT_USER\SOFTWARE\Quillon\Global in the
// registry, <configuration folder>\Global.ini with the INI files).
//
// An object is used by one thread at a time.
#pragma once

#include <cstddef>

#include "GlobalOptionTable.h"
#include "IPassphraseProvider.h"
#include "VProfileStore.h"
#include "VReportMessageParams.h"

// Which client's names the product-dependent options take.
enum class GlobalProduct {
    Terminal,  // the plain names
    Transfer,  // the names with " FWX" appended
};

// The option index: one entry per row of the table, in its order.
enum class GlobalOption : size_t {
#define GLOBAL_OPTION_INDEX(member, kind, name, value, form) member,
    GLOBAL_OPTIONS(GLOBAL_OPTION_INDEX)
#undef GLOBAL_OPTION_INDEX
        Count
};

class GlobalConfig {
public:
    // The global options key below the store's root.
    static constexpr wchar_t KeyName[] = L"Global";
    static constexpr size_t OptionCount = static_cast<size_t>(GlobalOption::Count);

    // Every option holds its default and its name for product; the pass
    // phrase member seals and opens through provider (null: no pass phrase,
    // so texts are protected with the user's logon).
    explicit GlobalConfig(GlobalProduct product = GlobalProduct::Terminal,
                          IPassphraseProvider* provider = nullptr);

    GlobalProduct GetProduct() const { return product_; }

    // Reads every option from key, in the table's order. An option the key
    // does not hold, or holds damaged (another kind, a text not of its form),
    // takes its default; an absent switch or pass phrase is marked modified,
    // so that the next Save writes it. A key that is not open (a missing
    // global options key) gives every option its default, as an empty one.
    // False, with the first failure in report, when a value could not be read
    // for another reason; the other options are loaded all the same.
    bool Load(VProfileKey& key, VReportMessageParams& report);

    // Saves every option with its own Save (only what changed or is modified,
    // unless force), then flushes key. False, with the first failure in
    // report, when a write or the flush fails; the next Save then writes
    // every option again, so nothing that failed is taken for stored.
    bool Save(VProfileKey& key, bool force, VReportMessageParams& report);

    // Load from the global options key of a store of factory (of
    // CurrentProfileStoreFactory() when null), which is remembered for
    // SaveToStore. A store or key that does not exist is no error. False,
    // with CONFIG_GLOBAL_OPTIONS_UNREADABLE in report, when the key exists
    // but cannot be read; the options then keep their defaults.
    bool LoadFromStore(VProfileStoreFactory* factory, VReportMessageParams& report);

    // Saves what changed back to the key that LoadFromStore read (of the
    // current store when there was none), creating it when missing. False,
    // with CONFIG_GLOBAL_OPTIONS_NOT_SAVED in report, when it cannot be opened
    // or written.
    bool SaveToStore(VReportMessageParams& report);

    // The member of index; throws VContainerOutOfRange beyond OptionCount.
    VProfileData& GetOption(size_t index);
    const VProfileData& GetOption(size_t index) const;
    VProfileData& GetOption(GlobalOption option) { return GetOption(static_cast<size_t>(option)); }

    // The member whose value name for this object's product is valueName
    // (compared without regard to case, as the registry does); null when none.
    VProfileData* FindOption(const VUnicodeString& valueName);
    const VProfileData* FindOption(const VUnicodeString& valueName) const;

    // The switch named valueName: a policy value of that name wins for the
    // start-up options; otherwise the member's value. False, with value
    // untouched, when there is no such option or it is not a switch.
    bool ReadSwitch(const VUnicodeString& valueName, bool& value) const;

    // The value name of option index for product, and the former name it is
    // read under when absent (empty when none). VContainerOutOfRange beyond
    // OptionCount.
    static const VUnicodeString& GetValueName(size_t index, GlobalProduct product);
    static const VUnicodeString& GetFormerName(size_t index, GlobalProduct product);
    static bool IsStartUpOption(size_t index);
    // The plain names of the options that each product keeps apart.
    static VArray<VUnicodeString> GetProductDependentNames();

    // The options, named as in the table (GlobalOptionTable.h).
#define GLOBAL_OPTION_MEMBER(member, kind, name, value, form) \
    GlobalKind::kind member = MakeGlobalOption<GlobalKind::kind>(name, value);
    GLOBAL_OPTIONS(GLOBAL_OPTION_MEMBER)
#undef GLOBAL_OPTION_MEMBER

private:
    void BindNames();

    GlobalProduct product_;
    // The store LoadFromStore read; not owned (start-up keeps the factories).
    VProfileStoreFactory* factory_ = nullptr;
    // Set by a failed Save, so that the next one writes everything.
    bool saveEverything_ = false;
};
