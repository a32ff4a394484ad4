// How the crypto utilities turn a Crypto++ exception into a report, in one
// place. Private to crypto/.
#pragma once

#include <cryptopp/cryptlib.h>

#include "ConfigMessages.h"
#include "VReportMessageParams.h"

inline void RecordCryptoFailure(VReportMessageParams& report, const CryptoPP::Exception& failure) {
    report.Set(CONFIG_CRYPTO_FAILED, VString(failure.what()));
}
