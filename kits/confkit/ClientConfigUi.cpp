#include "ClientConfigUi.h"

#include <atomic>
#include <stdexcept>

#include "VProfilePrivate.h"
#include "VReportMessageParams.h"

namespace {

using ProfileFactoryProvider = VProfileStoreFactory* (*)();
using ReportRouterProvider = VReportMessageRouter* (*)();

constexpr int InterfaceVersion = 1;

std::atomic<ProfileFactoryProvider> g_factoryProvider{nullptr};
std::atomic<ReportRouterProvider> g_routerProvider{nullptr};

}  // namespace

void ClientConfigUiInitProfileFactory(VProfileStoreFactory* (*provider)()) {
    g_factoryProvider.store(provider);
}

bool ClientConfigUiInit(VReportMessageRouter* (*routerProvider)(), int interfaceVersion) {
    if (interfaceVersion != InterfaceVersion)
        throw std::invalid_argument(
            "ClientConfigUiInit: this library has interface version 1 only");
    g_routerProvider.store(routerProvider);
    return VReportMessageParams::LoadFallbackModule(ConfigMessagesModule);
}

VProfileStoreFactory* GetClientConfigProfileStoreFactory() {
    const ProfileFactoryProvider provider = g_factoryProvider.load();
    return provider ? provider() : CurrentProfileStoreFactory();
}

VReportMessageRouter* GetClientConfigReportRouter() {
    const ReportRouterProvider provider = g_routerProvider.load();
    return provider ? provider() : nullptr;
}
