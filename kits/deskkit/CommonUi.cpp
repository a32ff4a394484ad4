#include "CommonUi.h"

#include <windows.h>

#include <commctrl.h>

#include <atomic>

#include "VProfilePrivate.h"

namespace {

std::atomic<HostnameResolverProvider> g_resolverProvider{nullptr};
std::atomic<ProfileStoreFactoryProvider> g_storeProvider{nullptr};

}  // namespace

bool CommonUiInit(HostnameResolverProvider resolverProvider,
                  ProfileStoreFactoryProvider storeProvider) {
    g_resolverProvider.store(resolverProvider);
    g_storeProvider.store(storeProvider);
    INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_STANDARD_CLASSES};
    return InitCommonControlsEx(&controls) != FALSE;
}

VProfileStoreFactory* GetCommonUiProfileStoreFactory() {
    const ProfileStoreFactoryProvider provider = g_storeProvider.load();
    return provider ? provider() : CurrentProfileStoreFactory();
}

IHostnameResolver* GetCommonUiHostnameResolver() {
    const HostnameResolverProvider provider = g_resolverProvider.load();
    return provider ? provider() : nullptr;
}
