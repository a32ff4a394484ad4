#include "GlobalConfig.h"

#include <iterator>
#include <vector>

#include "ConfigMessages.h"
#include "RegistrySettings.h"

namespace {

// What the table says of each option besides its kind and default, and where
// its member is: the option-index table.
struct OptionRow {
    const wchar_t* name;
    GlobalOptionForm form;
    VProfileData& (*member)(GlobalConfig&);
};

constexpr OptionRow Rows[] = {
#define GLOBAL_OPTION_ROW(member, kind, name, value, form) \
    {name, form, [](GlobalConfig& config) -> VProfileData& { return config.member; }},
    GLOBAL_OPTIONS(GLOBAL_OPTION_ROW)
#undef GLOBAL_OPTION_ROW
};
static_assert(std::size(Rows) == GlobalConfig::OptionCount);

constexpr wchar_t ProductSuffix[] = L" FWX";

// The value names and former names of every option for one product, made
// once, so that loading only shares them.
struct BoundNames {
    std::vector<VUnicodeString> names;
    std::vector<VUnicodeString> formers;  // empty where there is none
};

VUnicodeString NameFor(const wchar_t* plain, bool perProduct, GlobalProduct product) {
    VUnicodeString name(plain);
    if (perProduct && product == GlobalProduct::Transfer) name += ProductSuffix;
    return name;
}

BoundNames Bind(GlobalProduct product) {
    BoundNames bound;
    for (const OptionRow& row : Rows) {
        const unsigned flags = row.form.flags;
        bound.names.push_back(NameFor(row.name, flags & GlobalOptionForm::PerProductName, product));
        bound.formers.push_back(
            row.form.formerName
                ? NameFor(row.form.formerName, flags & GlobalOptionForm::PerProductFormer, product)
                : VUnicodeString());
    }
    return bound;
}

const BoundNames& NamesOf(GlobalProduct product) {
    static const BoundNames terminal = Bind(GlobalProduct::Terminal);
    static const BoundNames transfer = Bind(GlobalProduct::Transfer);
    return product == GlobalProduct::Transfer ? transfer : terminal;
}

size_t Checked(size_t index) {
    if (index >= GlobalConfig::OptionCount) throw VContainerOutOfRange();
    return index;
}

// The defaults of every option, made once: a load takes them from here for
// what the key does not hold.
const GlobalConfig& Defaults() {
    static const GlobalConfig defaults;
    return defaults;
}

// Keeps the first failure of a load that is not an absent or damaged value.
class LoadFailures {
public:
    LoadFailures(VProfileKey& key, VReportMessageParams& report) : key_(key), report_(report) {}

    // After an option found nothing to read: why.
    void Check() {
        if (failed_ || !key_.IsOpen()) return;
        const DWORD code = key_.GetLastErrorParams().GetMessageCode();
        if (code == ERROR_SUCCESS || code == CONFIG_VALUE_ABSENT ||
            code == CONFIG_VALUE_NOT_CONVERTIBLE || code == ERROR_INVALID_DATA)
            return;
        report_ = key_.GetLastErrorParams();
        failed_ = true;
    }
    bool Failed() const { return failed_; }

private:
    VProfileKey& key_;
    VReportMessageParams& report_;
    bool failed_ = false;
};

template <class Kind>
void LoadOption(Kind& option, const Kind& defaults, const VUnicodeString& formerName,
                VProfileKey& key, LoadFailures& failures) {
    const bool found = formerName.IsEmpty()
                           ? option.Load(key, defaults.Get())
                           : option.LoadWithFormerName(key, formerName, defaults.Get());
    if (!found) failures.Check();
}

// The index of the option named valueName (without regard to case, as the
// registry compares names); OptionCount when none is.
size_t IndexOf(const std::vector<VUnicodeString>& names, const VUnicodeString& valueName) {
    size_t index = 0;
    while (index < names.size() && !names[index].EqualsNoCase(valueName)) ++index;
    return index;
}

bool IsMissingKey(DWORD code) {
    // No store at all records nothing.
    return code == ERROR_SUCCESS || code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

}  // namespace

GlobalConfig::GlobalConfig(GlobalProduct product, IPassphraseProvider* provider)
    : product_(product) {
    BindNames();
    ConfigPassphrase.SetPassphraseProvider(provider);
}

void GlobalConfig::BindNames() {
    const BoundNames& bound = NamesOf(product_);
    for (size_t i = 0; i < OptionCount; ++i) GetOption(i).SetName(bound.names[i]);
}

bool GlobalConfig::Load(VProfileKey& key, VReportMessageParams& report) {
    BindNames();
    const GlobalConfig& defaults = Defaults();
    const std::vector<VUnicodeString>& formers = NamesOf(product_).formers;
    LoadFailures failures(key, report);
#define GLOBAL_OPTION_LOAD(member, kind, name, value, form)                                      \
    LoadOption(member, defaults.member, formers[static_cast<size_t>(GlobalOption::member)], key, \
               failures);
    GLOBAL_OPTIONS(GLOBAL_OPTION_LOAD)
#undef GLOBAL_OPTION_LOAD
    return !failures.Failed();
}

bool GlobalConfig::Save(VProfileKey& key, bool force, VReportMessageParams& report) {
    force = force || saveEverything_;
    bool saved = true;
    const auto fail = [&] {
        if (saved) report = key.GetLastErrorParams();
        saved = false;
    };
    key.ClearWritten();
    for (size_t i = 0; i < OptionCount; ++i) {
        if (!GetOption(i).Save(key, force)) fail();
    }
    // The file back end writes at the flush; its failure is the save's.
    if (key.WasWritten() && !key.Flush()) fail();
    saveEverything_ = !saved;
    return saved;
}

bool GlobalConfig::LoadFromStore(VProfileStoreFactory* factory, VReportMessageParams& report) {
    factory_ = factory ? factory : CurrentProfileStoreFactory();
    VProfileStore store(factory_, true);
    VProfileKey key(store.GetRootKey(), KeyName, false);
    VReportMessageParams failure;
    bool read = key.IsOpen() || IsMissingKey(key.GetLastErrorParams().GetMessageCode());
    if (!read) failure = key.GetLastErrorParams();
    read = Load(key, failure) && read;
    if (!read) report.Set(CONFIG_GLOBAL_OPTIONS_UNREADABLE, failure.GetTextAsString());
    return read;
}

bool GlobalConfig::SaveToStore(VReportMessageParams& report) {
    VProfileStore store(factory_);
    VProfileKey key(store.GetRootKey(), KeyName, true);
    VReportMessageParams failure;
    bool saved;
    if (key.IsOpen()) {
        saved = Save(key, false, failure);
    } else {
        failure = key.GetLastErrorParams();
        saveEverything_ = true;
        saved = false;
    }
    if (!saved) report.Set(CONFIG_GLOBAL_OPTIONS_NOT_SAVED, failure.GetTextAsString());
    return saved;
}

VProfileData& GlobalConfig::GetOption(size_t index) { return Rows[Checked(index)].member(*this); }

const VProfileData& GlobalConfig::GetOption(size_t index) const {
    return const_cast<GlobalConfig&>(*this).GetOption(index);
}

VProfileData* GlobalConfig::FindOption(const VUnicodeString& valueName) {
    const size_t index = IndexOf(NamesOf(product_).names, valueName);
    return index < OptionCount ? &GetOption(index) : nullptr;
}

const VProfileData* GlobalConfig::FindOption(const VUnicodeString& valueName) const {
    return const_cast<GlobalConfig&>(*this).FindOption(valueName);
}

bool GlobalConfig::ReadSwitch(const VUnicodeString& valueName, bool& value) const {
    const size_t index = IndexOf(NamesOf(product_).names, valueName);
    if (index == OptionCount) return false;
    const auto* flag = dynamic_cast<const VProfile<bool>*>(&GetOption(index));
    if (!flag) return false;
    // An administrator enforces these machine-wide, for example FIPS mode.
    uint32_t policy = 0;
    if (IsStartUpOption(index) && GetPolicyDword(flag->GetName(), policy)) {
        value = policy != 0;
        return true;
    }
    value = flag->Get();
    return true;
}

const VUnicodeString& GlobalConfig::GetValueName(size_t index, GlobalProduct product) {
    return NamesOf(product).names[Checked(index)];
}

const VUnicodeString& GlobalConfig::GetFormerName(size_t index, GlobalProduct product) {
    return NamesOf(product).formers[Checked(index)];
}

bool GlobalConfig::IsStartUpOption(size_t index) {
    return (Rows[Checked(index)].form.flags & GlobalOptionForm::StartUpOption) != 0;
}

VArray<VUnicodeString> GlobalConfig::GetProductDependentNames() {
    VArray<VUnicodeString> names;
    for (const OptionRow& row : Rows) {
        if (row.form.flags & GlobalOptionForm::PerProductName) names.Add(row.name);
        if (row.form.flags & GlobalOptionForm::PerProductFormer) names.Add(row.form.formerName);
    }
    return names;
}
