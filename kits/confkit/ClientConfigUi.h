// Confkit's start-up: the provider of profile stores that the configuration
// library calls for every store it opens, the report router provider, and the
// library's texts.
#pragma once

class VProfileStoreFactory;
class VReportMessageRouter;

// Keeps provider (may be null), which the library calls back for every store
// it opens. Call first at start-up, on the UI thread.
void ClientConfigUiInitProfileFactory(VProfileStoreFactory* (*provider)());

// Keeps the router provider (may be null; a provider may answer null: no
// router), and loads the configuration library's texts (ConfigMessages.dll,
// beside the program) as the reports' fallback module. interfaceVersion is the
// version of this interface the caller was built for: 1 is the only one, any
// other value is misuse (std::invalid_argument). False when the texts cannot be
// loaded: reports then name their codes instead of showing their texts.
bool ClientConfigUiInit(VReportMessageRouter* (*routerProvider)(), int interfaceVersion);

// The factory the library opens stores with now: the provider's answer, or
// CurrentProfileStoreFactory() when none was given. Not owned. Any thread.
VProfileStoreFactory* GetClientConfigProfileStoreFactory();

// The router the provider answers; null when there is no provider. Not owned. Any thread.
VReportMessageRouter* GetClientConfigReportRouter();
