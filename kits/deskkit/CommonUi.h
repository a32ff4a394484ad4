// Deskkit's start-up: the providers that the library calls for a host-name
// resolver and for the profile store, and the common controls it needs.
#pragma once

class IHostnameResolver;
class VProfileStoreFactory;

using HostnameResolverProvider = IHostnameResolver* (*)();
using ProfileStoreFactoryProvider = VProfileStoreFactory* (*)();

// Keeps both providers (either may be null) and registers the common control
// classes (list views and the like). Call once at start-up, on the UI thread,
// before any other Deskkit function. False when the controls cannot be
// registered; the providers are kept all the same.
bool CommonUiInit(HostnameResolverProvider resolverProvider,
                  ProfileStoreFactoryProvider storeProvider);

// The factory of the store Deskkit reads and writes now: the provider's answer,
// or CurrentProfileStoreFactory() when no provider was given. Not owned. Any thread.
VProfileStoreFactory* GetCommonUiProfileStoreFactory();

// The provider's resolver; null when there is no provider. Not owned. Any thread.
IHostnameResolver* GetCommonUiHostnameResolver();
